#pragma once
// The subcommands of kestrel_perf, one per measurement.
#include <string>
#include <vector>

namespace kestrel::perf {

int ScanOnly(const std::vector<std::string>& args);
int Generate(const std::vector<std::string>& args);
int LoadProject(const std::vector<std::string>& args);
int BuildProject(const std::vector<std::string>& args);
int Rescan(const std::vector<std::string>& args);
int Fill(const std::vector<std::string>& args);

}  // namespace kestrel::perf
