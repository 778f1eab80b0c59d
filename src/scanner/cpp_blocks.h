#pragma once
// The block-level pass for modern C++. Where the C-family pass reads line by line and
// counts braces, this one joins a declaration from its lines up to its ";" or "{",
// sees namespace and extern "C" blocks through, reads struct and union bodies as class
// bodies, follows only the first branch of each #if and passes over #define bodies.
// What it lists is one statement per result: its text, the line of its name, the
// access in force and the class (or namespace) that holds it.
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/result_list.h"
#include "scanner/unit_set.h"

namespace kestrel {

// Reads lines 1 to lineCount (comments removed, literals emptied) and appends the
// declaration statements and class ends found to `results`. The lines stay as they are.
// `present`, when given, holds the units of each line (same indices as `lines`).
void TakeCppLevelsOut(const std::vector<std::u16string>& lines, int32_t lineCount, ResultList& results,
                      const std::vector<UnitSet>* present = nullptr);

}  // namespace kestrel
