#include "scanner/unit_set.h"

namespace kestrel {

namespace {

UnitSet OfOneByOne(std::u16string_view text) {
    UnitSet set;
    for (char16_t c : text) set.Add(c);
    return set;
}

#ifdef KESTREL_BYTE_SHUFFLES
// Sixteen units at a time, narrowed to bytes first: a unit above 255 becomes 255 or 0,
// neither of them tracked.
__attribute__((target("ssse3"))) UnitSet OfWithShuffles(std::u16string_view text) {
    const char16_t* units = text.data();
    const size_t n = text.size();
    UnitsOfSixteenBytes seen{};
    size_t i = 0;
    for (; n - i >= 16; i += 16) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i + 8));
        AddSorted(seen, SortIntoTrackedUnits(_mm_packus_epi16(first, second)));
    }
    UnitSet set = TrackedUnitsIn(seen);
    for (; i < n; ++i) set.Add(units[i]);
    return set;
}
#endif

}  // namespace

UnitSet UnitSet::Of(std::u16string_view text) {
#ifdef KESTREL_BYTE_SHUFFLES
    if (text.size() >= 16 && kHasByteShuffles) return OfWithShuffles(text);
#endif
    return OfOneByOne(text);
}

}  // namespace kestrel
