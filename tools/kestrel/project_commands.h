#pragma once
// The project commands of kestrel: each takes the arguments after its name and
// returns the exit status.
#include <string>
#include <vector>

namespace kestrel::cli {

int RunNew(const std::vector<std::string>& args);
int RunAdd(const std::vector<std::string>& args);
int RunRemove(const std::vector<std::string>& args);
int RunUpdate(const std::vector<std::string>& args);
int RunTree(const std::vector<std::string>& args);
int RunDump(const std::vector<std::string>& args);
int RunWhere(const std::vector<std::string>& args);
int RunFind(const std::vector<std::string>& args);

}  // namespace kestrel::cli
