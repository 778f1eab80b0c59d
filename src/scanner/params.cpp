#include "scanner/params.h"

#include <algorithm>
#include <limits>

#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr size_t npos = std::u16string_view::npos;

// Walks `text` counting parentheses into `depth`; returns the index of the ")" that
// brings it to 0, or npos.
size_t WalkDepth(std::u16string_view text, int32_t& depth) {
    for (size_t k = 0; k < text.size(); ++k) {
        if (text[k] == u'(') ++depth;
        else if (text[k] == u')' && --depth == 0) return k;
    }
    return npos;
}

}  // namespace

const std::u16string& ParamCollector::LineAt(int32_t n) const {
    static const std::u16string empty;
    return n >= 1 && n <= lineCount_ && static_cast<size_t>(n) < lines_.size() ? lines_[static_cast<size_t>(n)] : empty;
}

void ParamCollector::BuildIndex() {
    indexed_ = true;
    int32_t balance = 0;
    for (int32_t n = 1; n <= lineCount_; ++n) {
        const std::u16string& line = LineAt(n);
        if (line.find_first_not_of(u' ') != npos) textLines_.push_back(n);
        if (line.find_first_of(u"()") == npos) continue;
        int32_t running = 0, low = 0;
        for (char16_t c : line) {
            if (c == u'(') ++running;
            else if (c == u')') low = std::min(low, --running);
        }
        parenLines_.push_back(n);
        balanceBefore_.push_back(balance);
        lowest_.push_back(balance + low);
        balance += running;
    }
    leaves_ = 1;
    while (leaves_ < lowest_.size()) leaves_ *= 2;
    lowestTree_.assign(2 * leaves_, std::numeric_limits<int32_t>::max());
    std::copy(lowest_.begin(), lowest_.end(), lowestTree_.begin() + static_cast<std::ptrdiff_t>(leaves_));
    for (size_t node = leaves_ - 1; node >= 1; --node) {
        lowestTree_[node] = std::min(lowestTree_[2 * node], lowestTree_[2 * node + 1]);
    }
}

// The first position >= from in [low, high) whose lowest_ is at most `limit`, or -1.
int32_t ParamCollector::FirstAtMost(size_t node, size_t low, size_t high, size_t from, int32_t limit) const {
    if (high <= from || lowestTree_[node] > limit) return -1;
    if (high - low == 1) return static_cast<int32_t>(low);
    size_t middle = (low + high) / 2;
    int32_t found = FirstAtMost(2 * node, low, middle, from, limit);
    return found >= 0 ? found : FirstAtMost(2 * node + 1, middle, high, from, limit);
}

bool ParamCollector::FindClosingLine(int32_t from, int32_t depth, int32_t& line, int32_t& depthThere) const {
    // Lines without parentheses leave the depth alone; a list closes in the first line
    // whose lowest running balance takes the depth it enters with down to 0.
    size_t first = static_cast<size_t>(std::lower_bound(parenLines_.begin(), parenLines_.end(), from) - parenLines_.begin());
    if (first == parenLines_.size()) return false;
    int32_t at = FirstAtMost(1, 0, leaves_, first, balanceBefore_[first] - depth);
    if (at < 0) return false;
    line = parenLines_[static_cast<size_t>(at)];
    depthThere = depth + balanceBefore_[static_cast<size_t>(at)] - balanceBefore_[first];
    return true;
}

std::u16string ParamCollector::CollectParams(const RWord& wrd) {
    std::u16string result;
    Trap(kModule, "Function CollectParams", [&] {
        std::u16string_view text = wrd.word;
        size_t open = text.find(u'(');
        if (open == npos) return;
        text = text.substr(open + 1);

        // Fast paths that do not count nesting.
        if (!text.empty() && text.back() == u')') {
            result = u"(" + std::u16string(text);
            return;
        }
        if (!text.empty() && text.back() == u';') {
            size_t close = text.rfind(u')');
            if (close != npos) {
                result = u"(" + std::u16string(text.substr(0, close + 1));
                return;
            }
        }

        int32_t depth = 1;
        size_t at = WalkDepth(text, depth);
        std::u16string collected;
        if (at != npos) {
            collected = TrimSpaces(text.substr(0, at));
        } else {
            if (!indexed_) BuildIndex();
            const int32_t first = wrd.Line + 1;
            int32_t closing = 0, depthThere = 0;
            if (!FindClosingLine(first, depth, closing, depthThere)) {
                result = u"()";  // never closes: what was collected is dropped
                return;
            }
            // Pieces from several lines are joined without a separator.
            collected = TrimSpaces(text);
            auto n = std::lower_bound(textLines_.begin(), textLines_.end(), first);
            for (; n != textLines_.end() && *n < closing; ++n) collected += TrimSpaces(LineAt(*n));
            std::u16string_view last = LineAt(closing);
            collected += TrimSpaces(last.substr(0, WalkDepth(last, depthThere)));
        }
        result = u"(" + TrimSpaces(collected) + u")";
    });
    return result;
}

}  // namespace kestrel
