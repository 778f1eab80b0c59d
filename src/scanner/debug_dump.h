#pragma once
// The two diagnostic formats: the line array and the result list, UTF-8, one LF-ended
// line per entry. Shared by the scanner's dump files and `kestrel scan --dump-*`.
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "scanner/result_list.h"

namespace kestrel {

// "N -- text" for N from 1 to lastLine.
void WriteLineDump(std::ostream& out, const std::vector<std::u16string>& lines, int32_t lastLine);
// "Line:12,Class:CFoo,Scope:1 -- int Count;" for each result in order.
void WriteResultDump(std::ostream& out, const ResultList& results);

}  // namespace kestrel
