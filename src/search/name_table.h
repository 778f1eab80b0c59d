#pragma once
// The distinct names of an index's symbols, each held once with its folded form and
// unit set, and counted by how many symbols use it. A project repeats its names many
// times over (every override, every member of that name in another class, a class in
// its header and its implementation file), so a query scores each distinct name once.
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrel {

class NameTable {
public:
    using Id = uint32_t;

    // The id of `name`, taken once more: as the name of a symbol, or as another
    // symbol's container.
    enum class Use { SymbolName, Container };
    Id Take(std::u16string_view name, Use use);
    // Lets go of one use taken so; the name is forgotten with its last.
    void Release(Id id, Use use);

    std::u16string_view Text(Id id) const { return entries_[id].text; }
    std::u16string_view Folded(Id id) const { return entries_[id].folded; }
    uint64_t Mask(Id id) const { return entries_[id].mask; }
    bool Live(Id id) const { return entries_[id].uses != 0; }
    // How many symbols bear the name.
    uint32_t Symbols(Id id) const { return entries_[id].symbols; }
    // One past the highest id: ids are reused, so this stays near the count of names.
    size_t Bound() const { return entries_.size(); }
    size_t MemoryBytes() const;

private:
    struct Entry {
        std::u16string text;
        std::u16string folded;
        uint64_t mask = 0;
        uint32_t uses = 0;
        uint32_t symbols = 0;
    };
    // A deque, so that growing it moves no entry: the map's keys view the entries' texts.
    std::deque<Entry> entries_;
    std::vector<Id> free_;
    std::unordered_map<std::u16string_view, Id> ids_;
};

}  // namespace kestrel
