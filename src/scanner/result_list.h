#pragma once
// The statements one scan finds, in order, with their texts. Cleared between scans
// without giving back its storage, so that a scanner reused on one thread writes over
// what the previous scan left instead of allocating anew: the records in one array, the
// texts one after another in blocks, and a run of results of one class shares one copy
// of its name.
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "scanner/rword.h"
#include "scanner/unit_set.h"

namespace kestrel {

class ResultList {
public:
    // Appends a record with these fields (the others at their defaults); the texts are
    // copied into the list. `units` holds at least the tracked units of `word`.
    RWord& Add(std::u16string_view word, int32_t line, int16_t scope, std::u16string_view className,
               const UnitSet& units = UnitSet::Anything());
    // Forgets the records and their texts but keeps the storage.
    void clear();

    size_t size() const { return records_.size(); }
    bool empty() const { return records_.empty(); }
    RWord& operator[](size_t k) { return records_[k]; }
    // What record k may hold, for the analysers to pass over searches that cannot succeed.
    const UnitSet& UnitsOf(size_t k) const { return units_[k]; }
    const RWord& operator[](size_t k) const { return records_[k]; }
    RWord* begin() { return records_.data(); }
    RWord* end() { return records_.data() + records_.size(); }
    const RWord* begin() const { return records_.data(); }
    const RWord* end() const { return records_.data() + records_.size(); }

    // How many records the list has room for.
    size_t RecordRoom() const { return records_.capacity(); }
    // Empties the list and lets go of whatever a huge scan grew past these bounds.
    void Trim(size_t maxRecords, size_t maxUnits);

private:
    static constexpr size_t kBlockUnits = size_t{1} << 15;

    std::u16string_view Keep(std::u16string_view text);

    std::vector<RWord> records_;
    std::vector<UnitSet> units_;  // beside records_
    // Texts, in blocks of kBlockUnits filled one after another; a text longer than a
    // block gets storage of its own.
    std::vector<std::unique_ptr<char16_t[]>> blocks_;
    size_t block_ = 0;  // the block being filled
    size_t used_ = 0;   // units used in it
    std::vector<std::unique_ptr<char16_t[]>> large_;
    std::u16string_view lastClass_;  // the class name kept last, shared by the next result of that class
};

}  // namespace kestrel
