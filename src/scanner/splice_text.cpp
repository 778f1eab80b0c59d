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

EarlierFound SpliceText::FindEarlier(std::u16string_view first, std::u16string_view second, size_t from) const {
    for (size_t i = from; i < kept_; ++i) {
        if (!first.empty() && MatchesAt(i, first)) return {i, false};
        if (!second.empty() && MatchesAt(i, second)) return {i, true};
    }
    const size_t start = rest_ + (std::max(from, kept_) - kept_);
    if (start > buf_.size()) return {npos, false};
    EarlierFound found = FindEarlierOf(std::u16string_view(buf_).substr(start), first, second);
    if (found.at != npos) found.at += start - rest_ + kept_;
    return found;
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
