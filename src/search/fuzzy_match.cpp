#include "search/fuzzy_match.h"

#include <algorithm>
#include <limits>

#include "common/text.h"

namespace kestrel {

namespace {

// The weights follow fzf's, which people have tuned their habits to.
constexpr int32_t kMatch = 16;
constexpr int32_t kGapStart = 3;
constexpr int32_t kGapExtension = 1;
constexpr int32_t kConsecutive = 4;
constexpr int32_t kWordStart = 8;      // at the start or after a separator
constexpr int32_t kCaseOrDigitChange = 7;
constexpr int32_t kFirstUnitFactor = 2;  // where the first unit lands weighs double
constexpr int32_t kPrefix = 8;
constexpr int32_t kLengthCap = 32;     // extra length beyond this costs no more
constexpr int32_t kUnmatched = std::numeric_limits<int32_t>::min() / 4;

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool IsLower(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= 128 && UpperUnit(c) != c); }
bool IsUpper(char16_t c) { return (c >= u'A' && c <= u'Z'); }
// Letters, digits and every unit beyond ASCII (names of other scripts) make up words;
// '_', ':', '.', '$', '~' and the rest of ASCII separate them.
bool IsWordUnit(char16_t c) { return IsDigit(c) || (c >= u'a' && c <= u'z') || IsUpper(c) || c >= 128; }

int32_t BonusAt(std::u16string_view name, size_t j) {
    if (j == 0) return kWordStart;
    const char16_t previous = name[j - 1], unit = name[j];
    if (!IsWordUnit(previous)) return kWordStart;
    if (IsLower(previous) && IsUpper(unit)) return kCaseOrDigitChange;
    if (IsDigit(previous) != IsDigit(unit)) return kCaseOrDigitChange;
    return 0;
}

}  // namespace

char16_t FoldUnit(char16_t c) { return UpperUnit(c); }

std::u16string FoldText(std::u16string_view text) { return UpperCase(text); }

uint64_t UnitMask(std::u16string_view text) {
    uint64_t mask = 0;
    for (char16_t c : text) {
        const char16_t f = FoldUnit(c);
        int bit = 63;
        if (f >= u'A' && f <= u'Z') bit = f - u'A';
        else if (IsDigit(f)) bit = 26 + (f - u'0');
        else if (f == u'_') bit = 36;
        mask |= uint64_t{1} << bit;
    }
    return mask;
}

FuzzyQuery::FuzzyQuery(std::u16string_view text) {
    for (char16_t c : text) {
        if (c == u' ') continue;
        if (folded_.size() == kMaxUnits) break;
        folded_ += FoldUnit(c);
    }
    mask_ = UnitMask(folded_);
}

std::optional<int32_t> FuzzyQuery::Score(std::u16string_view name, std::vector<uint32_t>* positions) const {
    thread_local std::u16string folded;
    folded.resize(name.size());
    for (size_t j = 0; j < name.size(); ++j) folded[j] = FoldUnit(name[j]);
    return ScoreFolded(name, folded, positions);
}

std::optional<int32_t> FuzzyQuery::ScoreFolded(std::u16string_view name, std::u16string_view folded,
                                               std::vector<uint32_t>* positions) const {
    const size_t m = folded_.size(), n = name.size();
    if (m == 0) return 0;
    if (n < m) return std::nullopt;

    // Most names fail here, in one pass: the units do not appear in order at all. The
    // pass also gives each unit's earliest place, and one from the end its latest: the
    // alignments all lie between, and so does the work below.
    thread_local std::vector<size_t> earliest, latest;
    earliest.resize(m);
    latest.resize(m);
    size_t found = 0;
    for (size_t j = 0; j < n && found < m; ++j)
        if (folded[j] == folded_[found]) earliest[found++] = j;
    if (found < m) return std::nullopt;
    for (size_t j = n, i = m; i-- > 0;) {
        while (folded[--j] != folded_[i]) {
        }
        latest[i] = j;
    }

    // best[i][j]: the best score of the query's first i+1 units with unit i matched at
    // position j. Gaps cost kGapStart for their first unit and kGapExtension for each
    // further one; a gap before the first unit costs nothing. Rows are kept whole only
    // when the positions are asked for; otherwise two take turns, and the part of a row
    // that the row two before wrote is cleared before it is used again.
    thread_local std::vector<int32_t> rows;
    const size_t kept = positions ? m : 2;
    rows.assign(kept * n, kUnmatched);
    auto row = [&](size_t i) { return rows.data() + (i % kept) * n; };

    int32_t* first = row(0);
    for (size_t j = earliest[0]; j <= latest[0]; ++j) {
        if (folded[j] != folded_[0]) continue;
        first[j] = kMatch + BonusAt(name, j) * kFirstUnitFactor + (j == 0 ? kPrefix : 0);
    }
    for (size_t i = 1; i < m; ++i) {
        const int32_t* before = row(i - 1);
        int32_t* current = row(i);
        if (kept == 2 && i >= 2) std::fill(current + earliest[i - 2], current + latest[i - 2] + 1, kUnmatched);
        int32_t afterGap = kUnmatched;  // best of before[k] - gap cost, over k <= j - 2
        for (size_t j = earliest[i - 1] + 1; j <= latest[i]; ++j) {
            if (j >= 2) afterGap = std::max(afterGap - kGapExtension, before[j - 2] - kGapStart);
            if (j < earliest[i] || folded[j] != folded_[i]) continue;
            const int32_t reach = std::max(before[j - 1] + kConsecutive, afterGap);
            if (reach > kUnmatched / 2) current[j] = reach + kMatch + BonusAt(name, j);
        }
    }
    const int32_t* last = row(m - 1);
    const auto end = std::max_element(last + earliest[m - 1], last + latest[m - 1] + 1);
    const int32_t lengthCost = static_cast<int32_t>(std::min<size_t>(n - m, kLengthCap)) / 4;

    if (positions) {
        // Walk back along the choices that gave the best score.
        positions->assign(m, 0);
        size_t j = static_cast<size_t>(end - last);
        for (size_t i = m; i-- > 0;) {
            (*positions)[i] = static_cast<uint32_t>(j);
            if (i == 0) break;
            const int32_t* before = row(i - 1);
            const int32_t need = row(i)[j] - kMatch - BonusAt(name, j);
            if (before[j - 1] + kConsecutive == need) {
                --j;
                continue;
            }
            for (size_t k = 0; k + 1 < j; ++k) {
                const int32_t gap = static_cast<int32_t>(j - k - 1);
                if (before[k] - kGapStart - (gap - 1) * kGapExtension == need) {
                    j = k;
                    break;
                }
            }
        }
    }
    return *end - lengthCost;
}

}  // namespace kestrel
