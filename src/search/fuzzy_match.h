#pragma once
// Fuzzy matching of a typed query against a symbol name, in the manner people know from
// fzf and "Go to Symbol": the query's units appear in the name in order, letter case
// ignored. Among the ways they can appear, the best one is scored: matches at word
// starts (the start, after '_', ':' or another separator, a lower-to-upper change, the
// first digit of a number or the first letter after one) and contiguous runs count
// more, gaps cost; a name that starts with the query and a shorter name score higher.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

class FuzzyQuery {
public:
    // Spaces are dropped: a space between two words of the query matches the '_' that
    // joins them in a name, or nothing, as in "empty range" for EmptyRange.
    explicit FuzzyQuery(std::u16string_view text);

    // An empty query matches every name with score 0.
    bool Empty() const { return folded_.empty(); }
    // The query's units, folded, spaces dropped.
    std::u16string_view Units() const { return folded_; }

    // The score of the best alignment, or nothing when the units do not all appear in
    // order. `positions`, when given, receives the matched units' positions.
    std::optional<int32_t> Score(std::u16string_view name, std::vector<uint32_t>* positions = nullptr) const;
    // As Score, for a name whose folded form (FoldText) is at hand: an index folds each
    // name once, not once per query.
    std::optional<int32_t> ScoreFolded(std::u16string_view name, std::u16string_view folded,
                                       std::vector<uint32_t>* positions = nullptr) const;

    // The units a name must hold for the query to match it, as a set (see UnitMask):
    // a name whose set lacks one of them is passed over without being scored.
    uint64_t Mask() const { return mask_; }

    // Queries longer than this are cut: nobody types more, and scoring stays bounded.
    static constexpr size_t kMaxUnits = 64;

private:
    std::u16string folded_;
    uint64_t mask_ = 0;
};

// The case-blind form matching compares: the simple upper-case mapping.
char16_t FoldUnit(char16_t c);
std::u16string FoldText(std::u16string_view text);

// A set of the folded units of a text: a bit per letter, digit and '_', one bit shared
// by every other unit. Used to skip names that cannot match before scoring them.
uint64_t UnitMask(std::u16string_view text);

}  // namespace kestrel
