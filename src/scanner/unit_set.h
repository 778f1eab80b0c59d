#pragma once
// Which of a few chosen code units a line holds, recorded as the line is read. The
// passes look for a handful of delimiters and keywords in every line; most lines hold
// none of them, and the set answers that without reading the line again. Lines only
// ever lose characters after they are read, so the set recorded then stays a superset.
//
// Up to 32 units are told apart, a bit each: the comment markers and delimiters of every
// language and the letters of their keywords. The set says nothing of any other unit
// (the blank inside "End Sub", say), so a text needs only its tracked units. Eight
// single bytes are what two table look-ups can tell apart exactly, sixteen bytes at a
// time (see SortIntoTrackedUnits), so a line's bytes are sorted in the same look that
// finds where the line ends.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/byte_shuffles.h"

namespace kestrel {

// The units a set tells apart, bit k standing for unit k. All of them ASCII and none a
// blank: UTF-8 bytes below 128 are those very units, and cleaning only turns and drops
// blanks, so a line's raw bytes and its cleaned text hold the same tracked units.
inline constexpr std::u16string_view kTrackedUnits = u"/*\"'{}:clasprivteodubEnFSDmAP";
static_assert(kTrackedUnits.size() <= 32);

// The bit of each byte value: 0 for a unit not tracked.
inline constexpr std::array<uint32_t, 256> kTrackedBit = [] {
    std::array<uint32_t, 256> bits{};
    for (size_t k = 0; k < kTrackedUnits.size(); ++k) bits[kTrackedUnits[k]] = uint32_t{1} << k;
    return bits;
}();

class UnitSet {
public:
    // A set that may hold anything: every search runs.
    static UnitSet Anything() { return FromBits(~uint32_t{0}); }
    static UnitSet FromBits(uint32_t bits) {
        UnitSet s;
        s.bits_ = bits;
        return s;
    }

    // The tracked units of `text`: gathered once for a keyword or delimiter, so that each
    // line's set answers for it in one step, and for a line that was not read from bytes.
    static UnitSet Of(std::u16string_view text);

    void Add(char16_t c) { bits_ |= c < 256 ? kTrackedBit[c] : 0; }

    // False only when some unit of `needed` is certainly absent, so a text made of
    // those units cannot occur.
    bool MayHold(const UnitSet& needed) const { return (needed.bits_ & ~bits_) == 0; }

private:
    uint32_t bits_ = 0;
};

#ifdef KESTREL_BYTE_SHUFFLES
// Sixteen bytes sorted into the tracked units: byte i of group g gets bit k when byte i
// of the text is unit 8g + k; other bytes get nothing.
struct UnitsOfSixteenBytes {
    __m128i group[4];
};
// The low four bits of a byte pick from one table, the high four from another, and
// each unit has its own bit in exactly one entry of each table of its group: only that
// unit has both.
__attribute__((target("ssse3"))) inline UnitsOfSixteenBytes SortIntoTrackedUnits(__m128i bytes) {
    struct Tables {
        alignas(16) uint8_t lowFour[4][16];
        alignas(16) uint8_t highFour[4][16];
    };
    static constexpr Tables kTables = [] {
        Tables t{};
        for (size_t k = 0; k < kTrackedUnits.size(); ++k) {
            const unsigned unit = kTrackedUnits[k];
            t.lowFour[k / 8][unit & 15] |= static_cast<uint8_t>(1u << (k % 8));
            t.highFour[k / 8][unit >> 4] |= static_cast<uint8_t>(1u << (k % 8));
        }
        return t;
    }();
    const __m128i lowFour = _mm_and_si128(bytes, _mm_set1_epi8(0x0F));
    const __m128i highFour = _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(0x0F));
    UnitsOfSixteenBytes sorted;
    for (int g = 0; g < 4; ++g) {
        const __m128i byLow = _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(kTables.lowFour[g])), lowFour);
        const __m128i byHigh = _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(kTables.highFour[g])), highFour);
        sorted.group[g] = _mm_and_si128(byLow, byHigh);
    }
    return sorted;
}

__attribute__((target("ssse3"))) inline void AddSorted(UnitsOfSixteenBytes& seen, const UnitsOfSixteenBytes& sorted) {
    for (int g = 0; g < 4; ++g) seen.group[g] = _mm_or_si128(seen.group[g], sorted.group[g]);
}

// The set that the bytes sorted and added up in `seen` stand for.
__attribute__((target("ssse3"))) inline UnitSet TrackedUnitsIn(const UnitsOfSixteenBytes& seen) {
    // Groups 0 and 1, then 2 and 3, side by side as 16-bit words, those as 32-bit
    // words, and every place OR-ed in.
    const __m128i* g = seen.group;
    const __m128i low = _mm_or_si128(_mm_unpacklo_epi8(g[0], g[1]), _mm_unpackhi_epi8(g[0], g[1]));
    const __m128i high = _mm_or_si128(_mm_unpacklo_epi8(g[2], g[3]), _mm_unpackhi_epi8(g[2], g[3]));
    __m128i words = _mm_or_si128(_mm_unpacklo_epi16(low, high), _mm_unpackhi_epi16(low, high));
    words = _mm_or_si128(words, _mm_srli_si128(words, 8));
    words = _mm_or_si128(words, _mm_srli_si128(words, 4));
    return UnitSet::FromBits(static_cast<uint32_t>(_mm_cvtsi128_si32(words)));
}
#endif

// A keyword or delimiter that the passes look for, with the units it needs. The text
// is a view: the syntax table it comes from outlives the pass.
struct SoughtText {
    explicit SoughtText(std::u16string_view text) : text(text), units(UnitSet::Of(text)) {}
    std::u16string_view text;
    UnitSet units;
};

}  // namespace kestrel
