#include "scanner/result_list.h"

#include <algorithm>
#include <cstring>

#include "common/text.h"

namespace kestrel {

RWord& ResultList::Add(std::u16string_view word, int32_t line, int16_t scope, std::u16string_view className,
                       const UnitSet& units) {
    if (className.empty()) lastClass_ = {};
    else if (!SameText(className, lastClass_)) lastClass_ = Keep(className);
    units_.push_back(units);
    RWord& r = records_.emplace_back();
    r.word = Keep(word);
    r.Line = line;
    r.Scope = scope;
    r.Class = lastClass_;
    return r;
}

std::u16string_view ResultList::Keep(std::u16string_view text) {
    if (text.empty()) return {};
    char16_t* at;
    if (text.size() > kBlockUnits) {
        at = large_.emplace_back(std::make_unique_for_overwrite<char16_t[]>(text.size())).get();
    } else {
        if (block_ < blocks_.size() && kBlockUnits - used_ < text.size()) {
            ++block_;
            used_ = 0;
        }
        if (block_ == blocks_.size()) blocks_.push_back(std::make_unique_for_overwrite<char16_t[]>(kBlockUnits));
        at = blocks_[block_].get() + used_;
        used_ += text.size();
    }
    std::memcpy(at, text.data(), text.size() * sizeof(char16_t));
    return {at, text.size()};
}

void ResultList::clear() {
    records_.clear();
    units_.clear();
    block_ = used_ = 0;
    large_.clear();
    lastClass_ = {};
}

void ResultList::Trim(size_t maxRecords, size_t maxUnits) {
    clear();
    if (records_.capacity() > maxRecords) {
        std::vector<RWord>().swap(records_);
        std::vector<UnitSet>().swap(units_);
    }
    blocks_.resize(std::min(blocks_.size(), maxUnits / kBlockUnits));
}

}  // namespace kestrel
