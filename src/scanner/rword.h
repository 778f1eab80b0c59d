#pragma once
// The scanner's small records: a keyword of the syntax table, or one result of a scan.
#include <cstdint>
#include <string_view>

namespace kestrel {

// The texts are views: a keyword's into the vocabulary the syntax table is built from,
// which lives as long as the program; a result's into the storage of its result list,
// valid until the list is cleared.
struct RWord {
    std::u16string_view word;
    int16_t length = 0;
    int16_t Bag = 0;
    std::u16string_view szBag;
    std::u16string_view Class;
    int32_t Line = 0;
    int16_t Scope = 0;
};

// Up to three keywords of one kind, or the opening and closing text of an include form.
struct RTriple {
    RWord StartWord;
    RWord EndWord;
    RWord MiddleWord;
};

// Result kinds carried in RWord::Scope next to the access scopes 0 to 3.
inline constexpr int16_t kResultEndClass = 253;
inline constexpr int16_t kResultVariable = 254;
inline constexpr int16_t kResultInclude = 255;

}  // namespace kestrel
