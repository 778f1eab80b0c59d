#pragma once
// The statements one scan finds, in order. Cleared between scans without destroying
// its records, so that a scanner reused on one thread fills the strings (and their
// capacity) the previous scan left instead of allocating new ones.
#include <cstddef>
#include <vector>

#include "scanner/rword.h"

namespace kestrel {

class ResultList {
public:
    // The next record, with every field back at its default value.
    RWord& Add();
    // Forgets the records but keeps their storage.
    void clear() { count_ = 0; }

    size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    RWord& operator[](size_t k) { return slots_[k]; }
    const RWord& operator[](size_t k) const { return slots_[k]; }
    RWord* begin() { return slots_.data(); }
    RWord* end() { return slots_.data() + count_; }
    const RWord* begin() const { return slots_.data(); }
    const RWord* end() const { return slots_.data() + count_; }

    // The number of records whose storage is kept.
    size_t Slots() const { return slots_.size(); }
    // Empties the list and lets go of whatever a huge scan grew: records past
    // `maxSlots` and strings longer than `maxUnits`.
    void Trim(size_t maxSlots, size_t maxUnits);

private:
    std::vector<RWord> slots_;  // slots_[0, count_) are live, the rest wait for reuse
    size_t count_ = 0;
    size_t used_ = 0;  // slots filled since the last Trim: the ones that may hold long strings
};

}  // namespace kestrel
