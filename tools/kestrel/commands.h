#pragma once
// The command groups of the kestrel program. Each lives in its own file and gets the
// arguments that follow its name; it returns the process exit status.
#include <ostream>

namespace kestrel::cli {

int RunScan(int argc, char** argv);
void ScanHelp(std::ostream& out);

}  // namespace kestrel::cli
