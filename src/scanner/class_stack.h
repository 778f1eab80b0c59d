#pragma once
// The classes whose bodies are open, innermost on top. Bounded: at most 1024 classes
// can be open at once.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

class clsStack {
public:
    static constexpr size_t kCapacity = 1024;

    // A 1025th entry raises "Subscript out of range" for the caller's error trap.
    void Push(std::u16string_view Data, int32_t Level);
    // Popping an empty stack does nothing.
    void Pop();
    // The top entry's class name, or "" when empty.
    const std::u16string& Data() const;
    // The block depth of the top entry's header, or -1 when empty.
    int32_t Level() const { return top_ > 0 ? entries_[static_cast<size_t>(top_) - 1].Level : -1; }
    // How many more Pushes can succeed.
    size_t Room() const { return kCapacity - static_cast<size_t>(top_); }

private:
    struct Entry {
        std::u16string Data;
        int32_t Level = 0;
    };
    // Grows with the deepest nesting seen: a scanner is made for every file, and most
    // files open a class or two, so the full depth is not built up front. Entries past
    // the top keep their storage for the next class opened at that depth.
    std::vector<Entry> entries_;
    int32_t top_ = 0;
};

}  // namespace kestrel
