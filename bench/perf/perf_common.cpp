#include "perf_common.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

namespace kestrel::perf {

namespace {

// A "VmRSS:" or "VmHWM:" field of /proc/self/status, in bytes.
int64_t StatusField(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::string prefix = std::string(field) + ":";
    while (std::getline(status, line)) {
        if (line.compare(0, prefix.size(), prefix) == 0) return std::atoll(line.c_str() + prefix.size()) * 1024;
    }
    return 0;
}

}  // namespace

double CpuMs() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    auto ms = [](const timeval& t) { return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

int64_t ResidentBytes() { return StatusField("VmRSS"); }
int64_t PeakResidentBytes() { return StatusField("VmHWM"); }

void ResetPeakResident() { std::ofstream("/proc/self/clear_refs") << "5"; }

std::vector<std::string> ReadList(const std::string& listPath) {
    std::ifstream in(listPath);
    if (!in) throw std::runtime_error("cannot read " + listPath);
    std::vector<std::string> paths;
    for (std::string line; std::getline(in, line);)
        if (!line.empty()) paths.push_back(line);
    return paths;
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out) throw std::runtime_error("cannot write " + path);
}

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kestrel-perf-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot create a temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

void Report(const std::string& key, double value, const std::string& unit) {
    std::printf("%s\t%.3f\t%s\n", key.c_str(), value, unit.c_str());
    std::fflush(stdout);
}

}  // namespace kestrel::perf
