#pragma once
// The hash of a collection key: a text with its spaces left out and every unit mapped
// through UpperUnit, fed in one or more pieces. So every letter case of a key hashes
// alike (an upper-cased key too, as UpperUnit keeps what it gives), an entry's
// KeyText hashes as its key does, and a function's name and parameters hash as the key
// made of them without being joined.
//
// Loading a project hashes the key of every item, and parameter texts are full of
// spaces. A hash that takes one unit at a time and skips the spaces with a test waits
// for a multiplication per unit; here the kept units are first packed into a small
// buffer without a branch (each is stored, and the end moves on only for a non-space),
// and the buffer is hashed four units (one 64-bit word) per multiplication.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "common/text.h"

namespace kestrel {

class KeyHash {
public:
    KeyHash& Add(std::u16string_view text) {
        const char16_t* at = text.data();
        const char16_t* const end = at + text.size();
        while (at != end) {
            // At most three units wait in the buffer here, so a chunk always fits.
            const char16_t* const chunkEnd = at + std::min<size_t>(static_cast<size_t>(end - at), kChunk);
            for (; chunkEnd - at >= 4; at += 4) Pack4(at);
            for (; at != chunkEnd; ++at) Keep(UpperUnit(*at));
            HashWholeWords();
        }
        return *this;
    }

    uint32_t Value() const {
        uint64_t h = state_;
        if (packed_ > 0) {  // the last word, filled up with zeros
            char16_t last[4] = {};
            std::memcpy(last, buffer_, packed_ * sizeof(char16_t));
            h = Mix(h, Word(last));
        }
        // The count of units tells a key from the same key with NUL units after it.
        h ^= kept_ + packed_;
        h ^= h >> 33;
        h *= 0xFF51AFD7ED558CCDu;
        h ^= h >> 33;
        return static_cast<uint32_t>(h);
    }

private:
    static constexpr size_t kChunk = 64;

    // Upper-cases four units and packs those that are not spaces.
    void Pack4(const char16_t* at) {
        uint64_t lanes = Word(at);
        if (lanes & 0xFF80FF80FF80FF80u) {  // a unit beyond ASCII
            for (int i = 0; i < 4; ++i) Keep(UpperUnit(at[i]));
            return;
        }
        // Every lane is below 0x80, so adding less than 0x80 cannot carry out of it:
        // bit 7 tells a lane from 'a' on, and a lane past 'z'.
        const uint64_t fromA = lanes + 0x001F001F001F001Fu;
        const uint64_t pastZ = lanes + 0x0005000500050005u;
        lanes -= (fromA & ~pastZ & 0x0080008000800080u) >> 2;  // 0x20 off each of a..z
        for (int i = 0; i < 4; ++i) Keep(static_cast<char16_t>(lanes >> (16 * i)));
    }
    void Keep(char16_t upper) {
        buffer_[packed_] = upper;
        packed_ += upper != u' ';
    }
    // Hashes the whole words packed and moves what is left of the last to the front.
    void HashWholeWords() {
        const size_t words = packed_ / 4;
        for (size_t w = 0; w < words; ++w) state_ = Mix(state_, Word(buffer_ + 4 * w));
        const size_t rest = packed_ % 4;
        std::memmove(buffer_, buffer_ + 4 * words, rest * sizeof(char16_t));
        kept_ += packed_ - rest;
        packed_ = rest;
    }
    static uint64_t Word(const char16_t* units) {
        uint64_t word;
        std::memcpy(&word, units, sizeof word);
        return word;
    }
    static uint64_t Mix(uint64_t h, uint64_t word) { return std::rotl((h ^ word) * 0x9E3779B97F4A7C15u, 29); }

    uint64_t state_ = 0x243F6A8885A308D3u;
    uint64_t kept_ = 0;  // units hashed into state_
    size_t packed_ = 0;  // units waiting in buffer_
    // Three waiting units and a chunk. A space is stored too, where the next unit
    // overwrites it.
    char16_t buffer_[3 + kChunk];
};

}  // namespace kestrel
