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
constexpr int64_t kMaxParamUnits = ParamCollector::kMaxUnits;

// The trimmed pieces of a list joined into `text`, keeping only the first
// kMaxParamUnits units.
class Gathered {
public:
    explicit Gathered(std::u16string& text) : text_(text) { text_.clear(); }
    // Adds `raw` trimmed; answers how many of its units the list took: all of them
    // when it fits, else its leading blanks and what was kept.
    size_t Take(std::u16string_view raw) {
        const std::u16string_view piece = TrimmedView(raw);
        const size_t room = kMaxUnits - text_.size();
        if (piece.size() <= room) {
            text_.append(piece);
            return raw.size();
        }
        text_.append(piece.substr(0, room));
        return static_cast<size_t>(piece.data() - raw.data()) + room;
    }
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

int64_t ParamCollector::ScannedUnits(const std::vector<std::u16string>& lines, int32_t lineCount) {
    const size_t count = std::min(lines.size(), static_cast<size_t>(std::max(lineCount, 0)) + 1);
    int64_t units = count > 1 ? static_cast<int64_t>(count) - 2 : 0;  // the line ends between them
    for (size_t n = 1; n < count; ++n) units += static_cast<int64_t>(lines[n].size());
    return units;
}

const std::u16string& ParamCollector::LineAt(int32_t n) const {
    static const std::u16string empty;
    return n >= 1 && n <= lineCount_ && static_cast<size_t>(n) < lines_.size() ? lines_[static_cast<size_t>(n)] : empty;
}

void ParamCollector::BuildIndex() {
    indexed_ = true;
    int32_t balance = 0;
    unitsBefore_.assign(2, 0);
    for (int32_t n = 1; n <= lineCount_; ++n) {
        const std::u16string& line = LineAt(n);
        unitsBefore_.push_back(unitsBefore_.back() + static_cast<int64_t>(line.size()));
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

int64_t ParamCollector::UnitsBetween(int32_t from, int32_t to) const {
    return unitsBefore_[static_cast<size_t>(to)] - unitsBefore_[static_cast<size_t>(from)];
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
            Gathered gathered(gathered_);
            gathered.Take(text.substr(0, at));
            Enclose(gathered, result_);
            return;
        }
        if (!indexed_) BuildIndex();
        const auto first = static_cast<int32_t>(std::clamp<int64_t>(int64_t{wrd.Line} + 1, 1, int64_t{lineCount_} + 1));
        int32_t closing = 0, depthThere = 0;
        const bool closes = FindClosingLine(first, depth, closing, depthThere);
        std::u16string_view tail;
        if (closes) {
            std::u16string_view last = LineAt(closing);
            tail = last.substr(0, WalkDepth(last, depthThere));
        }
        // Measured before anything is copied, so that a list that never closes costs
        // nothing and a huge one only what it keeps.
        const int32_t end = closes ? closing : lineCount_ + 1;
        const LineRange inner = TextLinesBetween(first, end);
        const int64_t length = static_cast<int64_t>(TrimmedView(text).size() + TrimmedView(tail).size()) +
                               TrimmedUnits(inner);
        const int64_t wanted = UnitsBetween(first, end) + static_cast<int64_t>(tail.size());
        if (wanted <= budget_ && !closes && length <= kMaxParamUnits) {
            budget_ -= wanted;
            result_.assign(u"()");  // never closes: what was collected is dropped
            return;
        }
        // Pieces from several lines are joined without a separator. A list the budget
        // cannot pay for in full takes what is left of it, the last line cut short.
        const int64_t allowed = std::min(wanted, budget_);
        Gathered gathered(gathered_);
        bool going = gathered.Take(text) == text.size();
        int64_t taken = going ? allowed : 0;
        // False once the list stops: at the end of what it may take, or at the first
        // unit past 65,536 (then it has taken the line up to there).
        auto takeFrom = [&](int32_t line, std::u16string_view raw) {
            const int64_t at = UnitsBetween(first, line);
            if (at >= allowed) return false;
            raw = raw.substr(0, static_cast<size_t>(std::min<int64_t>(allowed - at, static_cast<int64_t>(raw.size()))));
            const size_t took = gathered.Take(raw);
            if (took == raw.size()) return true;
            taken = at + static_cast<int64_t>(took);
            return false;
        };
        for (auto n = inner.first; n != inner.second && going; ++n) going = takeFrom(*n, LineAt(*n));
        if (going && closes) takeFrom(closing, tail);
        budget_ -= taken;
        Enclose(gathered, result_);
    });
    return result_;
}

}  // namespace kestrel
