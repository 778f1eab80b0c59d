#pragma once
// The block-level pass: tracks braces and open class bodies over the comment-free
// lines and lists every statement that stands at file level or directly in a class
// body, with its line, access scope and class. Deeper statements are dropped.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/result_list.h"
#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

// The scope of the first access word found in `line` (the syntax table's scope words,
// tried start, middle, end), or -1 when there is none.
// `present` holds at least the units of `line`; words it cannot hold are not searched.
int16_t CheckScope(const SyntaxTable& syntax, std::u16string_view line, const UnitSet& present = UnitSet::Anything());

// Rewrites lines 1 to lineCount in place (what is consumed is cut away) and appends
// the statements found to `results`. `present`, when given, holds the units of each
// line (same indices as `lines`), so words a line cannot hold are not searched for.
void TakeLevelsOut(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                   int16_t nLang, ResultList& results, const std::vector<UnitSet>* present = nullptr);

}  // namespace kestrel
