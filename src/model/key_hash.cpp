#include "model/key_hash.h"

#include "common/byte_shuffles.h"
#include "common/text.h"

namespace kestrel {

size_t PackKeyUnitsOneByOne(const char16_t* text, size_t n, char16_t* to) {
    size_t packed = 0;
    for (size_t i = 0; i < n; ++i) {
        // Stored either way: a space is overwritten by the next unit kept. No branch
        // to mispredict on texts where every few units are a space.
        const char16_t upper = UpperUnit(text[i]);
        to[packed] = upper;
        packed += upper != u' ';
    }
    return packed;
}

#ifdef KESTREL_BYTE_SHUFFLES

namespace {

// Eight units at a time: ASCII upper-cased by comparisons, the spaces squeezed out by
// one byte shuffle. A group with a unit beyond ASCII goes one unit at a time.
__attribute__((target("ssse3"))) size_t PackWithShuffles(const char16_t* text, size_t n, char16_t* to) {
    const __m128i space = _mm_set1_epi16(u' ');
    size_t packed = 0;
    size_t i = 0;
    for (; n - i >= 8; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        if (!UpperAsciiEight(units)) {
            packed += PackKeyUnitsOneByOne(text + i, 8, to + packed);
            continue;
        }
        const __m128i spaces = _mm_packs_epi16(_mm_cmpeq_epi16(units, space), _mm_setzero_si128());
        const unsigned spaceBits = static_cast<unsigned>(_mm_movemask_epi8(spaces));
        const __m128i shuffle = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kKeepShuffles.shuffle[spaceBits].data()));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + packed), _mm_shuffle_epi8(units, shuffle));
        packed += kKeepShuffles.kept[spaceBits];
    }
    return packed + PackKeyUnitsOneByOne(text + i, n - i, to + packed);
}

}  // namespace

size_t PackKeyUnits(const char16_t* text, size_t n, char16_t* to) {
    return kHasByteShuffles ? PackWithShuffles(text, n, to) : PackKeyUnitsOneByOne(text, n, to);
}

#else

size_t PackKeyUnits(const char16_t* text, size_t n, char16_t* to) { return PackKeyUnitsOneByOne(text, n, to); }

#endif

}  // namespace kestrel
