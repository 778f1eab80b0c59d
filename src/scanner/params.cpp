#include "scanner/params.h"

#include <algorithm>
#include <limits>

#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr size_t npos = std::u16string_view::npos;

// A list gathered over many lines can take in the rest of the file, and every
// declaration inside it would repeat that; gathering stops past this many units.
constexpr int64_t kMaxParamUnits = 65536;

// The trimmed pieces of a list joined into `text`, keeping only the first
// kMaxParamUnits units.
class Gathered {
public:
    explicit Gathered(std::u16string& text) : text_(text) { text_.clear(); }
    Gathered& Add(std::u16string_view piece) {
        piece = TrimmedView(piece);
        text_.append(piece.substr(0, std::min(piece.size(), kMaxUnits - text_.size())));
        return *this;
    }
    bool Full() const { return text_.size() == kMaxUnits; }
    const std::u16string& Text() const { return text_; }

private:
    static constexpr size_t kMaxUnits = static_cast<size_t>(kMaxParamUnits);
    std::u16string& text_;
};

void Enclose(const Gathered& gathered, std::u16string& out) {
    out.assign(1, u'(');
    out.append(TrimmedView(gathered.Text()));
    out.push_back(u')');
}

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
        if (size_t start = line.find_first_not_of(u' '); start != npos) {
            textLines_.push_back(n);
            trimmedBefore_.push_back(trimmedBefore_.back() + static_cast<int64_t>(line.find_last_not_of(u' ') + 1 - start));
        }
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

ParamCollector::LineRange ParamCollector::TextLinesBetween(int32_t from, int32_t to) const {
    return {std::lower_bound(textLines_.begin(), textLines_.end(), from),
            std::lower_bound(textLines_.begin(), textLines_.end(), to)};
}

int64_t ParamCollector::TrimmedUnits(const LineRange& range) const {
    return trimmedBefore_[static_cast<size_t>(range.second - textLines_.begin())] -
           trimmedBefore_[static_cast<size_t>(range.first - textLines_.begin())];
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

const std::u16string& ParamCollector::CollectParams(const RWord& wrd) {
    result_.clear();
    Trap(kModule, "Function CollectParams", [&] {
        std::u16string_view text = wrd.word;
        size_t open = FindUnit(text, u'(');
        if (open == npos) return;
        text = text.substr(open + 1);

        // Fast paths that do not count nesting.
        if (!text.empty() && text.back() == u')') {
            result_.assign(u"(").append(text);
            return;
        }
        if (!text.empty() && text.back() == u';') {
            size_t close = FindLastUnit(text, u')');
            if (close != npos) {
                result_.assign(u"(").append(text.substr(0, close + 1));
                return;
            }
        }

        int32_t depth = 1;
        size_t at = WalkDepth(text, depth);
        if (at != npos) {
            Enclose(Gathered(gathered_).Add(text.substr(0, at)), result_);
            return;
        }
        if (!indexed_) BuildIndex();
        const int32_t first = wrd.Line + 1;
        int32_t closing = 0, depthThere = 0;
        const bool closes = FindClosingLine(first, depth, closing, depthThere);
        std::u16string_view tail;
        if (closes) {
            std::u16string_view last = LineAt(closing);
            tail = last.substr(0, WalkDepth(last, depthThere));
        }
        // Measured before anything is copied, so that a list that never closes costs
        // nothing and a huge one only what it keeps.
        const LineRange inner = TextLinesBetween(first, closes ? closing : lineCount_ + 1);
        const int64_t length = static_cast<int64_t>(TrimmedView(text).size() + TrimmedView(tail).size()) +
                               TrimmedUnits(inner);
        if (!closes && length <= kMaxParamUnits) {
            result_.assign(u"()");  // never closes: what was collected is dropped
            return;
        }
        // Pieces from several lines are joined without a separator.
        Gathered gathered(gathered_);
        gathered.Add(text);
        for (auto n = inner.first; n != inner.second && !gathered.Full(); ++n) gathered.Add(LineAt(*n));
        Enclose(gathered.Add(tail), result_);
    });
    return result_;
}

}  // namespace kestrel
