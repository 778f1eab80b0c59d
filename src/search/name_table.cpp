#include "search/name_table.h"

#include "search/fuzzy_match.h"

namespace kestrel {

NameTable::Id NameTable::Take(std::u16string_view name, Use use) {
    if (const auto found = ids_.find(name); found != ids_.end()) {
        Entry& entry = entries_[found->second];
        ++entry.uses;
        if (use == Use::SymbolName) ++entry.symbols;
        return found->second;
    }
    Id id;
    if (free_.empty()) {
        id = static_cast<Id>(entries_.size());
        entries_.emplace_back();
    } else {
        id = free_.back();
        free_.pop_back();
    }
    Entry& entry = entries_[id];
    entry.text = name;
    entry.folded = FoldText(name);
    entry.mask = UnitMask(entry.folded);
    entry.uses = 1;
    entry.symbols = use == Use::SymbolName ? 1 : 0;
    ids_.emplace(std::u16string_view(entry.text), id);
    return id;
}

void NameTable::Release(Id id, Use use) {
    Entry& entry = entries_[id];
    if (use == Use::SymbolName) --entry.symbols;
    if (--entry.uses != 0) return;
    ids_.erase(std::u16string_view(entry.text));
    entry = Entry{};
    free_.push_back(id);
}

size_t NameTable::MemoryBytes() const {
    size_t bytes = entries_.size() * sizeof(Entry) + free_.capacity() * sizeof(Id);
    for (const Entry& e : entries_) {
        // Texts longer than the string's own inline room live on the heap.
        if (e.text.capacity() > 7) bytes += (e.text.capacity() + 1) * sizeof(char16_t);
        if (e.folded.capacity() > 7) bytes += (e.folded.capacity() + 1) * sizeof(char16_t);
    }
    bytes += ids_.size() * (sizeof(std::u16string_view) + sizeof(Id) + 2 * sizeof(void*));
    bytes += ids_.bucket_count() * sizeof(void*);
    return bytes;
}

}  // namespace kestrel
