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
// buffer (see PackKeyUnits), which is then hashed four units (one 64-bit word) per
// multiplication.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestrel {

// Writes the units of text[0, n) upper-cased to `to`, spaces left out, and answers how
// many it wrote. It may write up to n units, spaces included, past the last one kept.
size_t PackKeyUnits(const char16_t* text, size_t n, char16_t* to);
// The same one unit at a time, as PackKeyUnits does on processors without byte shuffles.
size_t PackKeyUnitsOneByOne(const char16_t* text, size_t n, char16_t* to);

class KeyHash {
public:
    // Provided, so that KeyHash() leaves the buffer as it is instead of zeroing it.
    KeyHash() {}

    KeyHash& Add(std::u16string_view text) {
        while (!text.empty()) {
            // At most three units wait in the buffer here, so a chunk always fits.
            const size_t n = std::min(text.size(), kChunk);
            packed_ += PackKeyUnits(text.data(), n, buffer_ + packed_);
            text.remove_prefix(n);
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
    // Three waiting units and a chunk, spaces included.
    char16_t buffer_[3 + kChunk];
};

}  // namespace kestrel
