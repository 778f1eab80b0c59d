#pragma once
// Normalising white space in one line, and removing comments from the line array.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

// Tabs become spaces, runs of spaces become one space, leading spaces go.
// A trailing space survives. Changes `line` in place and returns it.
std::u16string& CleanLine(std::u16string& line);
// As CleanLine, recording in `present` every code unit the cleaned line holds.
std::u16string& CleanLine(std::u16string& line, UnitSet& present);
// How many bytes after a line CleanAsciiLine may read, and ignores.
inline constexpr size_t kAsciiLinePadding = 16;
// As CleanLine with `present`, on a line of ASCII bytes, each one unit: decoding and
// cleaning in one pass. `line`'s old text is replaced. The kAsciiLinePadding bytes
// after `bytes` must be readable: a line's last bytes are read sixteen at a time.
void CleanAsciiLine(std::string_view bytes, std::u16string& line, UnitSet& present);

// Removes one-line and multi-line comments from lines 1 to lineCount, carrying an
// open multi-line comment from line to line. Knows nothing of string literals.
// `present`, when given, holds the units of each line (same indices as `lines`), so
// lines that cannot hold a marker are passed over unread.
void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                    const std::vector<UnitSet>* present = nullptr);

}  // namespace kestrel
