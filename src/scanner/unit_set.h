#pragma once
// Which code units a line holds, recorded while the line is cleaned. The passes look
// for a handful of delimiters and keywords in every line; most lines hold none of
// them, and the set answers that without reading the line again. Lines only ever lose
// characters after they are cleaned, so the set recorded then stays a superset.
#include <cstdint>
#include <string_view>

namespace kestrel {

class UnitSet {
public:
    // A set that may hold anything: every search runs.
    static UnitSet Anything() {
        UnitSet s;
        s.bits_[0] = s.bits_[1] = ~uint64_t{0};
        s.other_ = true;
        return s;
    }

    void Add(char16_t c) {
        if (c < 128) bits_[c >> 6] |= uint64_t{1} << (c & 63);
        else other_ = true;
    }

    // Adds at once what a loop gathered in registers: the bits of units 0-63 and
    // 64-127, and whether any unit was above 127.
    void AddGathered(uint64_t low, uint64_t high, bool other) {
        bits_[0] |= low;
        bits_[1] |= high;
        other_ = other_ || other;
    }

    // The units of `pattern`: gathered once for a keyword or delimiter, so that each
    // line's set answers for it in a few instructions.
    static UnitSet Of(std::u16string_view pattern) {
        UnitSet s;
        for (char16_t c : pattern) s.Add(c);
        return s;
    }

    // False only when some unit of `needed` is certainly absent, so a pattern made of
    // those units cannot occur. Units above 127 are not told apart.
    bool MayHold(const UnitSet& needed) const {
        return (needed.bits_[0] & ~bits_[0]) == 0 && (needed.bits_[1] & ~bits_[1]) == 0 && (other_ || !needed.other_);
    }

private:
    uint64_t bits_[2] = {0, 0};
    bool other_ = false;
};

// A keyword or delimiter that the passes look for, with the units it needs. The text
// is a view: the syntax table it comes from outlives the pass.
struct SoughtText {
    explicit SoughtText(std::u16string_view text) : text(text), units(UnitSet::Of(text)) {}
    std::u16string_view text;
    UnitSet units;
};

}  // namespace kestrel
