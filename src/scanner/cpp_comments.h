#pragma once
// Comment removal for C++ that knows its literals: a comment marker inside a string,
// character or raw-string literal starts nothing. Literals are emptied on the way
// ("" and ''), so later passes meet neither their braces nor their semicolons.
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/syntax.h"

namespace kestrel {

// Rewrites lines 1 to lineCount in place. Block comments and raw strings may run over
// several lines; an unterminated ordinary literal ends with its line.
void RemoveCppComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax);

}  // namespace kestrel
