#pragma once
// The second pass for modern C++: writes each statement the C++ block pass listed as
// the function or variable it declares, and each class end.
#include "scanner/result_list.h"
#include "scanner/scan_output.h"

namespace kestrel {

void WriteCppResults(ResultList& results, ScanOutput& output);

}  // namespace kestrel
