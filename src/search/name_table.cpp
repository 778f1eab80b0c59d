#include "search/name_table.h"

#include "search/fuzzy_match.h"

namespace kestrel {

NameTable::NameTable() : ids_(0, Hash{this}, Equal{this}) {}

NameTable::Id NameTable::Take(std::u16string_view name, Use use) {
    if (const auto found = ids_.find(name); found != ids_.end()) {
        Entry& entry = entries_[*found];
        ++entry.uses;
        if (use == Use::SymbolName) ++entry.symbols;
        return *found;
    }
    Id id;
    if (free_.empty()) {
        id = static_cast<Id>(entries_.size());
        entries_.emplace_back();
        masks_.push_back(0);
    } else {
        id = free_.back();
        free_.pop_back();
    }
    Entry& entry = entries_[id];
    entry.at = static_cast<uint32_t>(texts_.size());
    entry.length = static_cast<uint32_t>(name.size());
    entry.uses = 1;
    entry.symbols = use == Use::SymbolName ? 1 : 0;
    texts_.append(name);
    texts_.append(FoldText(name));
    masks_[id] = UnitMask(Folded(id));
    ids_.insert(id);
    return id;
}

void NameTable::Release(Id id, Use use) {
    Entry& entry = entries_[id];
    if (use == Use::SymbolName) --entry.symbols;
    if (--entry.uses != 0) return;
    ids_.erase(id);
    unusedUnits_ += 2 * size_t{entry.length};
    entry = Entry{};
    masks_[id] = 0;
    free_.push_back(id);
    if (unusedUnits_ > texts_.size() / 2) Compact();
}

void NameTable::Compact() {
    std::u16string kept;
    kept.reserve(texts_.size() - unusedUnits_);
    for (Entry& entry : entries_) {
        if (entry.uses == 0) continue;
        const auto at = static_cast<uint32_t>(kept.size());
        kept.append(texts_, entry.at, 2 * size_t{entry.length});
        entry.at = at;
    }
    texts_ = std::move(kept);
    unusedUnits_ = 0;
}

size_t NameTable::MemoryBytes() const {
    return entries_.capacity() * sizeof(Entry) + masks_.capacity() * sizeof(uint64_t) +
           texts_.capacity() * sizeof(char16_t) + free_.capacity() * sizeof(Id) +
           ids_.size() * (sizeof(Id) + 2 * sizeof(void*)) + ids_.bucket_count() * sizeof(void*);
}

}  // namespace kestrel
