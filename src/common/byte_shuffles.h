#pragma once
// Byte shuffles (SSSE3), where the processor has them: the table that squeezes chosen
// code units out of eight, and whether the shuffles may be used at all. Texts that drop
// some of their units (key packing, white-space cleaning) move the rest to the front
// eight units at a time with one shuffle from this table.
#include <array>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KESTREL_BYTE_SHUFFLES 1
#endif

namespace kestrel {

#ifdef KESTREL_BYTE_SHUFFLES

// For each set of units to drop among eight (bit i: unit i goes), the byte shuffle that
// moves the others, in order, to the front (zeros after them), and how many they are.
// (A count from a table: without the popcnt instruction, std::popcount is a library call.)
struct KeepShuffles {
    alignas(16) std::array<std::array<uint8_t, 16>, 256> shuffle{};
    std::array<uint8_t, 256> kept{};
};
inline constexpr KeepShuffles kKeepShuffles = [] {
    KeepShuffles table;
    for (unsigned dropped = 0; dropped < 256; ++dropped) {
        std::array<uint8_t, 16>& to = table.shuffle[dropped];
        to.fill(0x80);  // zero
        unsigned kept = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            if (dropped >> unit & 1) continue;
            to[2 * kept] = static_cast<uint8_t>(2 * unit);
            to[2 * kept + 1] = static_cast<uint8_t>(2 * unit + 1);
            ++kept;
        }
        table.kept[dropped] = static_cast<uint8_t>(kept);
    }
    return table;
}();

// Until this is set (a text handled while another file sets up its statics) the
// routines take their one-unit-at-a-time path: the same results, only slower.
inline const bool kHasByteShuffles = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("ssse3") != 0;
}();

#endif

}  // namespace kestrel
