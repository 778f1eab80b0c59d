#include "scanner/text_search.h"

#include <vector>

#include "common/text.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

namespace {

constexpr size_t npos = std::u16string_view::npos;

// Up to this length a candidate is checked unit by unit; longer needles go to
// Knuth-Morris-Pratt, whose cost does not grow with the needle.
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
    return npos;
}

#if defined(__SSE2__)
// One bit for each of the `wide` ? 16 : 8 places from `at` on where a candidate
// starts: the needle's first unit there and its last unit `last` places further.
inline unsigned Candidates(const char16_t* at, size_t last, __m128i first, __m128i lastUnit, bool wide) {
    auto matches = [&](const char16_t* p) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + last));
        return _mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, lastUnit));
    };
    const __m128i low = matches(at);
    const __m128i high = wide ? matches(at + 8) : _mm_setzero_si128();
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}
#endif

// A short needle: candidates are the places where its first and its last unit both
// stand at the right distance, found sixteen (or, in a short text, eight) places at a
// time; each is then compared.
size_t ShortSearch(std::u16string_view hay, std::u16string_view needle, size_t from) {
    const size_t n = needle.size();
    const char16_t* h = hay.data();
    const size_t last = n - 1;
    if (hay.size() < n) return npos;
    const size_t end = hay.size() - n + 1;  // candidates lie in [from, end)
    size_t i = from;
#if defined(__SSE2__)
    if (end >= 8) {
        const __m128i first = _mm_set1_epi16(static_cast<short>(needle[0]));
        const __m128i lastUnit = _mm_set1_epi16(static_cast<short>(needle[last]));
        const bool wide = end >= 16;
        const size_t width = wide ? 16 : 8;
        // The final block overlaps the one before it; the places already tried are masked off.
        for (unsigned skip = 0; i < end; i += width) {
            if (i + width > end) {
                skip = static_cast<unsigned>(i - (end - width));
                i = end - width;
            }
            for (unsigned mask = Candidates(h + i, last, first, lastUnit, wide) & ~((1u << skip) - 1); mask != 0;
                 mask &= mask - 1) {
                const size_t at = i + static_cast<size_t>(__builtin_ctz(mask));
                if (n <= 2 || SameText({h + at + 1, n - 2}, needle.substr(1, n - 2))) return at;
            }
        }
        return npos;
    }
#endif
    for (; i < end; ++i) {
        if (h[i] == needle[0] && h[i + last] == needle[last] &&
            (n <= 2 || SameText({h + i + 1, n - 2}, needle.substr(1, n - 2))))
            return i;
    }
    return npos;
}

// The first place at or after `from` holding unit `a` (or, with `kEither`, `b`) that
// `take` accepts, or npos. Places are found eight at a time and handed to `take` in
// order. A single unit is searched for in every line, so it pays for no second compare.
template <bool kEither, class Take>
size_t FirstPlaceOf(std::u16string_view hay, char16_t a, char16_t b, size_t from, Take take) {
    const char16_t* h = hay.data();
    const size_t size = hay.size();
    size_t i = from;
#if defined(__SSE2__)
    if (size >= 8) {
        const __m128i wantedA = _mm_set1_epi16(static_cast<short>(a));
        const __m128i wantedB = _mm_set1_epi16(static_cast<short>(b));
        // The final block overlaps the one before it; the places already tried are masked
        // off. Each unit is two bits of the mask.
        for (unsigned skip = 0; i < size; i += 8) {
            if (i + 8 > size) {
                skip = static_cast<unsigned>(i - (size - 8)) * 2;
                i = size - 8;
            }
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i));
            __m128i either = _mm_cmpeq_epi16(units, wantedA);
            if constexpr (kEither) either = _mm_or_si128(either, _mm_cmpeq_epi16(units, wantedB));
            for (unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(either)) & ~((1u << skip) - 1); mask != 0;
                 mask &= mask - 1, mask &= mask - 1) {
                const size_t at = i + static_cast<size_t>(__builtin_ctz(mask)) / 2;
                if (take(at)) return at;
            }
        }
        return npos;
    }
#endif
    for (; i < size; ++i)
        if ((h[i] == a || (kEither && h[i] == b)) && take(i)) return i;
    return npos;
}

}  // namespace

size_t FindUnit(std::u16string_view hay, char16_t unit, size_t from) {
    return FirstPlaceOf<false>(hay, unit, unit, from, [](size_t) { return true; });
}

EarlierFound FindEarlierOf(std::u16string_view hay, std::u16string_view first, std::u16string_view second,
                           size_t from) {
    if (first.empty() || second.empty()) {
        const bool onlySecond = first.empty();
        const std::u16string_view sought = onlySecond ? second : first;
        return {sought.empty() ? npos : FindText(hay, sought, from), onlySecond};
    }
    // Candidates are the places holding the first unit of either; each is then compared,
    // so the line is read once however far apart the two occur.
    auto startsAt = [&](size_t at, std::u16string_view needle) {
        return needle.size() <= hay.size() - at && SameText(hay.substr(at, needle.size()), needle);
    };
    bool isSecond = false;
    const size_t at = FirstPlaceOf<true>(hay, first[0], second[0], from, [&](size_t place) {
        if (startsAt(place, first)) return true;
        isSecond = startsAt(place, second);
        return isSecond;
    });
    return {at, isSecond};
}

size_t FindText(std::u16string_view hay, std::u16string_view needle, size_t from) {
    if (from > hay.size()) return npos;
    if (needle.empty()) return from;
    if (needle.size() == 1) return FindUnit(hay, needle[0], from);
    if (needle.size() <= kShortNeedle) return ShortSearch(hay, needle, from);
    std::u16string_view rest = hay.substr(from);
    size_t at = KmpSearch(
        rest.size(), [&](size_t i) { return rest[i]; }, needle.size(), [&](size_t i) { return needle[i]; });
    return at == npos ? at : at + from;
}

size_t FindLastUnit(std::u16string_view hay, char16_t unit) {
    const char16_t* h = hay.data();
    size_t i = hay.size();
#if defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    for (; i >= 8; i -= 8) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i - 8));
        const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(a, wanted)));
        if (mask != 0) return i - 8 + static_cast<size_t>(31 - __builtin_clz(mask)) / 2;
    }
#endif
    while (i > 0)
        if (h[--i] == unit) return i;
    return npos;
}

size_t FindLastText(std::u16string_view hay, std::u16string_view needle) {
    if (needle.size() == 1) return FindLastUnit(hay, needle[0]);
    if (needle.size() <= kShortNeedle) return hay.rfind(needle);
    if (needle.size() > hay.size()) return npos;
    // Search the reversed needle in the reversed text.
    const size_t h = hay.size(), n = needle.size();
    size_t at = KmpSearch(
        h, [&](size_t i) { return hay[h - 1 - i]; }, n, [&](size_t i) { return needle[n - 1 - i]; });
    return at == npos ? at : h - at - n;
}

}  // namespace kestrel
