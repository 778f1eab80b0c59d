#include "scanner/text_search.h"

#include <vector>

namespace kestrel {

namespace {

// Up to this length the library's search is linear enough (its worst case is
// proportional to the text times the needle length).
constexpr size_t kShortNeedle = 32;

// Knuth-Morris-Pratt over index accessors, so one routine searches both directions.
template <class Hay, class Needle>
size_t KmpSearch(size_t hayLength, Hay hay, size_t needleLength, Needle needle) {
    std::vector<size_t> border(needleLength, 0);
    for (size_t i = 1, k = 0; i < needleLength; ++i) {
        while (k > 0 && needle(i) != needle(k)) k = border[k - 1];
        if (needle(i) == needle(k)) ++k;
        border[i] = k;
    }
    for (size_t i = 0, k = 0; i < hayLength; ++i) {
        while (k > 0 && hay(i) != needle(k)) k = border[k - 1];
        if (hay(i) == needle(k)) ++k;
        if (k == needleLength) return i + 1 - needleLength;
    }
    return std::u16string_view::npos;
}

}  // namespace

size_t FindText(std::u16string_view hay, std::u16string_view needle, size_t from) {
    if (from > hay.size()) return std::u16string_view::npos;
    if (needle.size() <= kShortNeedle) return hay.find(needle, from);
    std::u16string_view rest = hay.substr(from);
    size_t at = KmpSearch(
        rest.size(), [&](size_t i) { return rest[i]; }, needle.size(), [&](size_t i) { return needle[i]; });
    return at == std::u16string_view::npos ? at : at + from;
}

size_t FindLastText(std::u16string_view hay, std::u16string_view needle) {
    if (needle.size() <= kShortNeedle) return hay.rfind(needle);
    if (needle.size() > hay.size()) return std::u16string_view::npos;
    // Search the reversed needle in the reversed text.
    const size_t h = hay.size(), n = needle.size();
    size_t at = KmpSearch(
        h, [&](size_t i) { return hay[h - 1 - i]; }, n, [&](size_t i) { return needle[n - 1 - i]; });
    return at == std::u16string_view::npos ? at : h - at - n;
}

}  // namespace kestrel
