#pragma once
// The vocabulary of one language: comment markers, delimiters, braces and keywords,
// plus the table of characters that end a word.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/rword.h"

namespace kestrel {

class ScanOutput;

struct SyntaxTable {
    std::u16string OneLineComment;
    std::u16string MultiCommentStart;
    std::u16string MultiCommentEnd;
    std::u16string StringDelim;
    std::u16string CharDelim;
    std::vector<RTriple> IncludeWords;
    int16_t DeclareLevel = 0;
    std::u16string BlockStart;
    std::u16string BlockEnd;
    std::u16string ClassWord;
    RTriple ScopeWords;
    RTriple EndProcWords;
    RTriple ProcWords;
    RTriple VarWords;
    std::u16string AssignmentOps;

    // Indexed by character code 0 to 256; true where the character ends a word.
    std::array<bool, 257> SeparatorTable{};

    // Installs the words of nLang. Languages without a table leave the words of the
    // previous call in place; only the include forms, the assignment signs and the
    // separator table are set again. `file` is asked for its FileType by C only.
    void MakeSyntax(ScanOutput& file, int16_t nLang);

    // Whole-word, case-sensitive search for the first occurrence of `word` at or after
    // the 1-based position `start`. Returns its position, 0 when absent or not a whole
    // word, and -1 when the occurrence ends the line.
    int32_t CheckOneWord(std::u16string_view line, std::u16string_view word, int32_t start) const;

    // Looks a character up by its full code, as the class-name and variable-name checks
    // do: a code above 256 lies outside the table and raises "Subscript out of range".
    bool IsSeparator(char16_t c) const { return SeparatorTable.at(c); }
    // Looks a character up by the low 8 bits of its code, as the whole-word test does.
    bool IsSeparatorLow8(char16_t c) const { return SeparatorTable[c & 0xFF]; }
};

}  // namespace kestrel
