#pragma once
// The block-level pass: tracks braces and open class bodies over the comment-free
// lines and lists every statement that stands at file level or directly in a class
// body, with its line, access scope and class. Deeper statements are dropped.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/rword.h"
#include "scanner/syntax.h"

namespace kestrel {

// The scope of the first access word found in `line` (the syntax table's scope words,
// tried start, middle, end), or -1 when there is none.
int16_t CheckScope(const SyntaxTable& syntax, std::u16string_view line);

// Rewrites lines 1 to lineCount in place (what is consumed is cut away) and appends
// the statements found to `results`.
void TakeLevelsOut(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                   int16_t nLang, std::vector<RWord>& results);

}  // namespace kestrel
