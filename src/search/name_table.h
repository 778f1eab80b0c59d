#pragma once
// The distinct names of an index's symbols, each held once with its folded form and
// unit set, and counted by how many symbols use it. A project repeats its names many
// times over (every override, every member of that name in another class, a class in
// its header and its implementation file), so a query scores each distinct name once.
//
// A query reads every name, so the texts lie one after another in one block and the
// unit sets in an array of their own: reading them is a walk through memory, not a
// pointer chase per name.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kestrel {

class NameTable {
public:
    using Id = uint32_t;

    NameTable();
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;

    // The id of `name`, taken once more: as the name of a symbol, or as another
    // symbol's container.
    enum class Use { SymbolName, Container };
    Id Take(std::u16string_view name, Use use);
    // Lets go of one use taken so; the name is forgotten with its last.
    void Release(Id id, Use use);

    std::u16string_view Text(Id id) const { return {texts_.data() + entries_[id].at, entries_[id].length}; }
    std::u16string_view Folded(Id id) const {
        return {texts_.data() + entries_[id].at + entries_[id].length, entries_[id].length};
    }
    uint64_t Mask(Id id) const { return masks_[id]; }
    bool Live(Id id) const { return entries_[id].uses != 0; }
    // How many symbols bear the name.
    uint32_t Symbols(Id id) const { return entries_[id].symbols; }
    // One past the highest id: ids are reused, so this stays near the count of names.
    size_t Bound() const { return entries_.size(); }
    size_t MemoryBytes() const;

private:
    struct Entry {
        uint32_t at = 0;      // of the text in texts_, its folded form right after it
        uint32_t length = 0;
        uint32_t uses = 0;
        uint32_t symbols = 0;
    };
    // The set finds an id by its text without a copy of the text as key.
    struct Hash {
        using is_transparent = void;
        const NameTable* table;
        size_t operator()(Id id) const { return (*this)(table->Text(id)); }
        size_t operator()(std::u16string_view text) const { return std::hash<std::u16string_view>()(text); }
    };
    struct Equal {
        using is_transparent = void;
        const NameTable* table;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const { return View(a) == View(b); }
        std::u16string_view View(Id id) const { return table->Text(id); }
        std::u16string_view View(std::u16string_view text) const { return text; }
    };
    // Drops the texts of forgotten names once they are most of the block.
    void Compact();

    std::vector<Entry> entries_;
    std::vector<uint64_t> masks_;
    std::u16string texts_;
    size_t unusedUnits_ = 0;  // of forgotten names, still in texts_
    std::vector<Id> free_;
    std::unordered_set<Id, Hash, Equal> ids_;
};

}  // namespace kestrel
