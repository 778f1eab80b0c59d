#include "scanner/splice_text.h"

#include <algorithm>

namespace kestrel {

bool SpliceText::MatchesAt(size_t i, std::u16string_view pattern) const {
    if (i + pattern.size() > Size()) return false;
    for (size_t k = 0; k < pattern.size(); ++k) {
        if (At(i + k) != pattern[k]) return false;
    }
    return true;
}

size_t SpliceText::Find(std::u16string_view pattern, size_t from, size_t before) const {
    before = std::min(before, Size() + 1);
    if (from >= before) return npos;
    for (size_t i = from; i < std::min(kept_, before); ++i) {
        if (MatchesAt(i, pattern)) return i;
    }
    if (before <= kept_) return npos;
    // The unread rest, cut where an occurrence would start too late.
    size_t start = rest_ + (std::max(from, kept_) - kept_);
    size_t stop = std::min(buf_.size(), rest_ + (before - kept_) - 1 + pattern.size());
    if (start > stop) return npos;
    size_t at = std::u16string_view(buf_).substr(start, stop - start).find(pattern);
    return at == npos ? npos : start + at - rest_ + kept_;
}

void SpliceText::Erase(size_t begin, size_t end) {
    end = std::min(end, Size());
    if (begin >= end) return;
    if (end <= kept_) {
        std::copy(buf_.begin() + static_cast<std::ptrdiff_t>(end), buf_.begin() + static_cast<std::ptrdiff_t>(kept_),
                  buf_.begin() + static_cast<std::ptrdiff_t>(begin));
        kept_ -= end - begin;
        return;
    }
    if (begin > kept_) {
        // Move the unread characters before the cut to the end of the kept text.
        size_t move = begin - kept_;
        std::copy(buf_.begin() + static_cast<std::ptrdiff_t>(rest_),
                  buf_.begin() + static_cast<std::ptrdiff_t>(rest_ + move),
                  buf_.begin() + static_cast<std::ptrdiff_t>(kept_));
        rest_ += move;
        kept_ = begin;
    }
    rest_ += end - kept_;
    kept_ = begin;
}

void SpliceText::Finish() {
    if (rest_ != kept_) {
        std::copy(buf_.begin() + static_cast<std::ptrdiff_t>(rest_), buf_.end(),
                  buf_.begin() + static_cast<std::ptrdiff_t>(kept_));
        buf_.resize(Size());
    }
    rest_ = kept_ = buf_.size();
}

}  // namespace kestrel
