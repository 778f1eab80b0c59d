#include "scanner/result_list.h"

#include <algorithm>
#include <string>

namespace kestrel {

namespace {

void Shorten(std::u16string& s, size_t maxUnits) {
    if (s.capacity() > maxUnits) std::u16string().swap(s);
}

}  // namespace

RWord& ResultList::Add() {
    if (count_ == slots_.size()) slots_.emplace_back();
    RWord& r = slots_[count_++];
    used_ = std::max(used_, count_);
    // Every field starts afresh; only the strings' storage carries over.
    r.word.clear();
    r.length = 0;
    r.Bag = 0;
    r.szBag.clear();
    r.Class.clear();
    r.Line = 0;
    r.Scope = 0;
    return r;
}

void ResultList::Trim(size_t maxSlots, size_t maxUnits) {
    count_ = 0;
    if (slots_.size() > maxSlots) {
        slots_.resize(maxSlots);
        slots_.shrink_to_fit();
    }
    used_ = std::min(used_, slots_.size());
    for (size_t k = 0; k < used_; ++k) {
        Shorten(slots_[k].word, maxUnits);
        Shorten(slots_[k].szBag, maxUnits);
        Shorten(slots_[k].Class, maxUnits);
    }
    used_ = 0;
}

}  // namespace kestrel
