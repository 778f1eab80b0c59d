#include "scanner/class_stack.h"

#include <stdexcept>

namespace kestrel {

void clsStack::Push(std::u16string_view Data, int32_t Level) {
    const size_t k = static_cast<size_t>(top_);
    if (k >= kCapacity) throw std::out_of_range("class stack full");
    if (k == entries_.size()) entries_.emplace_back();
    Entry& entry = entries_[k];
    ++top_;
    entry.Data.assign(Data);
    entry.Level = Level;
}

void clsStack::Pop() {
    if (--top_ < 0) top_ = 0;
}

const std::u16string& clsStack::Data() const {
    static const std::u16string kNone;
    return top_ > 0 ? entries_[static_cast<size_t>(top_) - 1].Data : kNone;
}

}  // namespace kestrel
