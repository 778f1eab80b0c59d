#include "scanner/params.h"

#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

bool HasParen(const std::u16string& s) {
    return s.find_first_of(u"()") != std::u16string::npos;
}

// Walks `text` counting parentheses into `depth`; returns the index of the ")" that
// brings it to 0, or npos.
size_t WalkDepth(std::u16string_view text, int32_t& depth) {
    for (size_t k = 0; k < text.size(); ++k) {
        if (text[k] == u'(') ++depth;
        else if (text[k] == u')' && --depth == 0) return k;
    }
    return std::u16string_view::npos;
}

}  // namespace

const std::u16string& ParamCollector::LineAt(int32_t n) const {
    static const std::u16string empty;
    return n >= 1 && n <= lineCount_ && static_cast<size_t>(n) < lines_.size() ? lines_[static_cast<size_t>(n)] : empty;
}

int32_t ParamCollector::NextParenLine(int32_t n) {
    if (nextParen_.empty()) {
        nextParen_.assign(static_cast<size_t>(lineCount_) + 2, lineCount_ + 1);
        for (int32_t k = lineCount_; k >= 1; --k) {
            nextParen_[static_cast<size_t>(k)] = HasParen(LineAt(k)) ? k : nextParen_[static_cast<size_t>(k) + 1];
        }
    }
    return n > lineCount_ ? lineCount_ + 1 : nextParen_[static_cast<size_t>(n < 1 ? 1 : n)];
}

std::u16string ParamCollector::CollectParams(const RWord& wrd) {
    std::u16string result;
    Trap(kModule, "Function CollectParams", [&] {
        std::u16string_view text = wrd.word;
        size_t open = text.find(u'(');
        if (open == std::u16string_view::npos) return;
        text = text.substr(open + 1);

        // Fast paths that do not count nesting.
        if (!text.empty() && text.back() == u')') {
            result = u"(" + std::u16string(text);
            return;
        }
        if (!text.empty() && text.back() == u';') {
            size_t close = text.rfind(u')');
            if (close != std::u16string_view::npos) {
                result = u"(" + std::u16string(text.substr(0, close + 1));
                return;
            }
        }

        int32_t depth = 1;
        size_t at = WalkDepth(text, depth);
        std::u16string collected;
        if (at != std::u16string_view::npos) {
            collected = TrimSpaces(text.substr(0, at));
        } else {
            // Find the closing line first, looking only at lines that hold a
            // parenthesis; the pieces are joined only when the list closes at all.
            int32_t first = wrd.Line + 1;
            int32_t n = first;
            size_t closeAt = std::u16string_view::npos;
            for (; (n = NextParenLine(n)) <= lineCount_; ++n) {
                closeAt = WalkDepth(LineAt(n), depth);
                if (closeAt != std::u16string_view::npos) break;
            }
            if (n > lineCount_) {
                result = u"()";
                return;
            }
            // Pieces from several lines are joined without a separator.
            collected = TrimSpaces(text);
            for (int32_t k = first; k < n; ++k) collected += TrimSpaces(LineAt(k));
            collected += TrimSpaces(std::u16string_view(LineAt(n)).substr(0, closeAt));
        }
        result = u"(" + TrimSpaces(collected) + u")";
    });
    return result;
}

}  // namespace kestrel
