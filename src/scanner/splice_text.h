#pragma once
// A line being cut down in place. Cutting a piece out of the middle of a long line and
// searching again from its start would rebuild and re-read the line for every piece;
// here the kept text grows at the front of the buffer while the unread rest stays
// where it is, so each character is moved at most once.
#include <cstddef>
#include <string>
#include <string_view>

#include "scanner/text_search.h"

namespace kestrel {

class SpliceText {
public:
    static constexpr size_t npos = std::u16string_view::npos;

    // Works on `buffer` until Finish() writes the result back into it.
    explicit SpliceText(std::u16string& buffer) : buf_(buffer), rest_(0) {}

    size_t Size() const { return kept_ + buf_.size() - rest_; }

    // Where the earlier of two patterns first starts at or after `from` in the current
    // text, and which (`first` when both start there); an empty pattern is never found.
    // Kept characters are compared one by one, so callers pass a `from` close to the
    // last cut (see JunctionStart).
    EarlierFound FindEarlier(std::u16string_view first, std::u16string_view second, size_t from) const;
    // First occurrence of a pattern that is not empty.
    size_t Find(std::u16string_view pattern, size_t from) const { return FindEarlier(pattern, {}, from).at; }

    // Removes [begin, end) of the current text.
    void Erase(size_t begin, size_t end);
    // Keeps only the first `length` characters.
    void Truncate(size_t length) { Erase(length, Size()); }

    // After a cut at `at`, the earliest place where a pattern of `length` characters can
    // newly occur: it would have to start in the kept text and run into the rest.
    static size_t JunctionStart(size_t at, size_t length) {
        size_t back = length > 0 ? length - 1 : 0;
        return at > back ? at - back : 0;
    }

    // Writes the current text back into the buffer.
    void Finish();

private:
    char16_t At(size_t i) const { return i < kept_ ? buf_[i] : buf_[rest_ + (i - kept_)]; }
    bool MatchesAt(size_t i, std::u16string_view pattern) const;

    std::u16string& buf_;
    size_t kept_ = 0;  // the current text is buf_[0, kept_) followed by buf_[rest_, size)
    size_t rest_;
};

}  // namespace kestrel
