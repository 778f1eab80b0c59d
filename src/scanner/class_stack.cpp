#include "scanner/class_stack.h"

namespace kestrel {

void clsStack::Push(std::u16string_view Data, int32_t Level) {
    Entry& entry = entries_.at(static_cast<size_t>(top_) + 1);
    ++top_;
    entry.Data.assign(Data);  // into the storage an earlier class left at this depth
    entry.Level = Level;
}

void clsStack::Pop() {
    if (--top_ < 0) top_ = 0;
}

const std::u16string& clsStack::Data() const {
    return entries_[static_cast<size_t>(top_ > 0 ? top_ : 0)].Data;
}

}  // namespace kestrel
