#pragma once
// Collects the parameter text of a procedure declaration: from the first "(" of the
// statement to its matching ")", continued over the following lines when the
// statement does not close it.
#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "scanner/rword.h"

namespace kestrel {

class ParamCollector {
public:
    // `lines` is the scanner's line array (entry 0 unused); entries past lineCount
    // count as empty lines. `scannedUnits` is the size of the scanned text, which sets
    // the budget of text that lists may gather from later lines (below).
    ParamCollector(const std::vector<std::u16string>& lines, int32_t lineCount, int64_t scannedUnits)
        : lines_(lines), lineCount_(lineCount), budget_(std::max<int64_t>(0, kMaxUnits + scannedUnits)) {}
    // The scanned text taken as these lines as they stand.
    ParamCollector(const std::vector<std::u16string>& lines, int32_t lineCount)
        : ParamCollector(lines, lineCount, ScannedUnits(lines, lineCount)) {}

    // Code units of lines 1 to lineCount joined by one-unit line ends.
    static int64_t ScannedUnits(const std::vector<std::u16string>& lines, int32_t lineCount);

    // "(" + parameters + ")", "" when the statement holds no "(", and "()" when the
    // list never closes before the end of the text. Gathered text is cut to its first
    // 65,536 units, and a list that never closes but gathers more than that returns the
    // cut text: no real list comes near it.
    // Every list of one collector draws the units it takes from later lines (counted
    // before trimming) on one budget of 65,536 plus the scanned units. A list that
    // would take more than is left takes what is left, its last line cut short, and is
    // cut as above. Without the budget, each of n declarations inside one huge list
    // would copy 65,536 units; with it, the output stays linear in the input.
    // The text stays valid until the next call.
    const std::u16string& CollectParams(const RWord& wrd);
    static constexpr int64_t kMaxUnits = 65536;

private:
    const std::u16string& LineAt(int32_t n) const;
    void BuildIndex();
    // The first line at or after `from` where a list open `depth` levels deep at the
    // start of `from` closes, with the depth it has at the start of that line; false
    // when it never closes.
    bool FindClosingLine(int32_t from, int32_t depth, int32_t& line, int32_t& depthThere) const;
    // The text lines (holding more than blanks) in [from, to), and the sum of their
    // trimmed lengths.
    using LineRange = std::pair<std::vector<int32_t>::const_iterator, std::vector<int32_t>::const_iterator>;
    LineRange TextLinesBetween(int32_t from, int32_t to) const;
    int64_t TrimmedUnits(const LineRange& range) const;
    // Units of lines [from, to), 1 <= from <= to <= lineCount + 1.
    int64_t UnitsBetween(int32_t from, int32_t to) const;
    int32_t FirstAtMost(size_t node, size_t low, size_t high, size_t from, int32_t limit) const;

    const std::vector<std::u16string>& lines_;
    int32_t lineCount_;
    int64_t budget_;  // units lists may still take from later lines
    // Storage reused by every call: the result and the pieces gathered for it.
    std::u16string result_;
    std::u16string gathered_;

    // Built on first use, so that every list that runs past its line costs time in
    // proportion to what it collects, not to the rest of the text:
    bool indexed_ = false;
    std::vector<int64_t> unitsBefore_;  // per line: units of all earlier lines
    std::vector<int32_t> textLines_;   // lines holding more than blanks
    std::vector<int64_t> trimmedBefore_{0};  // per text line: trimmed units of all earlier text lines
    std::vector<int32_t> parenLines_;  // lines holding a parenthesis
    std::vector<int32_t> balanceBefore_;  // per paren line: "(" minus ")" of all earlier lines
    std::vector<int32_t> lowest_;         // per paren line: balanceBefore_ + the lowest running balance in it
    std::vector<int32_t> lowestTree_;     // segment tree of minima over lowest_
    size_t leaves_ = 0;
};

}  // namespace kestrel
