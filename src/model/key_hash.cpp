#include "model/key_hash.h"

#include <array>

#include "common/text.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KESTREL_BYTE_SHUFFLES 1
#endif

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

// For each set of spaces among eight units (bit i: unit i is one), the byte shuffle
// that moves the other units, in order, to the front, and how many they are. (A count
// from a table: without the popcnt instruction, std::popcount is a library call.)
struct KeepShuffles {
    std::array<std::array<uint8_t, 16>, 256> shuffle{};
    std::array<uint8_t, 256> kept{};
};
constexpr KeepShuffles kKeepShuffles = [] {
    KeepShuffles table;
    for (unsigned spaces = 0; spaces < 256; ++spaces) {
        std::array<uint8_t, 16>& to = table.shuffle[spaces];
        to.fill(0x80);  // zero
        unsigned kept = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            if (spaces >> unit & 1) continue;
            to[2 * kept] = static_cast<uint8_t>(2 * unit);
            to[2 * kept + 1] = static_cast<uint8_t>(2 * unit + 1);
            ++kept;
        }
        table.kept[spaces] = static_cast<uint8_t>(kept);
    }
    return table;
}();

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

// Until this is set (a key hashed while another file sets up its statics) keys are
// packed one unit at a time: the same units, only slower.
const bool kHasByteShuffles = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("ssse3") != 0;
}();

}  // namespace

size_t PackKeyUnits(const char16_t* text, size_t n, char16_t* to) {
    return kHasByteShuffles ? PackWithShuffles(text, n, to) : PackKeyUnitsOneByOne(text, n, to);
}

#else

size_t PackKeyUnits(const char16_t* text, size_t n, char16_t* to) { return PackKeyUnitsOneByOne(text, n, to); }

#endif

}  // namespace kestrel
