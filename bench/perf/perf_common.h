#pragma once
// Shared pieces of the kestrel_perf measuring program: clocks, memory readings and
// small file helpers. Every subcommand prints "name value unit" lines that bench/run
// collects into its table.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace kestrel::perf {

using Clock = std::chrono::steady_clock;

inline double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Runs work once and answers its wall time in milliseconds.
inline double TimeMs(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return MillisecondsSince(start);
}

// Processor time this process has used so far (user and system), in milliseconds. On
// a machine shared with other work it varies less than the wall clock.
double CpuMs();

// Resident memory of this process now, and at its peak, in bytes (from /proc).
int64_t ResidentBytes();
int64_t PeakResidentBytes();
// Starts the peak over from the resident memory of now (where the system allows it).
void ResetPeakResident();

// The lines of a file list (one path per line, empty lines skipped).
std::vector<std::string> ReadList(const std::string& listPath);

// Writes text to path, failing loudly.
void WriteFile(const std::string& path, const std::string& text);

// A fresh folder under the system's temporary folder, removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// One measured value, printed as "key<TAB>value<TAB>unit".
void Report(const std::string& key, double value, const std::string& unit);

}  // namespace kestrel::perf
