#pragma once
// Normalising white space in one line, and removing comments from the line array.
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/syntax.h"

namespace kestrel {

// Tabs become spaces, runs of spaces become one space, leading spaces go.
// A trailing space survives. Changes `line` in place and returns it.
std::u16string& CleanLine(std::u16string& line);

// Removes one-line and multi-line comments from lines 1 to lineCount, carrying an
// open multi-line comment from line to line. Knows nothing of string literals.
void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax);

}  // namespace kestrel
