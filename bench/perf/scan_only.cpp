// kestrel_perf scan LIST LANGUAGE [REPEAT]: the scanner alone over every file of a
// list, its declarations counted and dropped, so that the scanner's own share of a
// whole project build can be told apart from the model's and the tree's.
#include <cstdlib>
#include <filesystem>

#include "common/constants.h"
#include "common/text.h"
#include "perf_common.h"
#include "perf_commands.h"
#include "scanner/quillbox.h"

namespace kestrel::perf {

namespace {

class CountingOutput : public ScanOutput {
public:
    int32_t FileType() const override { return FILETYPE_DEFINITION; }
    const std::u16string& FileName() override { return name; }
    void WriteDeclare__(const std::u16string&, int32_t, int16_t, const std::u16string&) override { ++calls; }
    void WriteVariable__(const std::u16string&, int32_t, int16_t, const std::u16string&) override { ++calls; }
    void WriteEndClass__(const std::u16string&, int32_t) override { ++calls; }
    void WriteInclude__(const std::u16string&, int32_t) override { ++calls; }
    std::u16string name;
    long long calls = 0;
};

}  // namespace

int ScanOnly(const std::vector<std::string>& args) {
    if (args.size() < 2) throw std::runtime_error("usage: kestrel_perf scan LIST LANGUAGE [REPEAT]");
    const std::vector<std::string> paths = ReadList(args[0]);
    const int16_t language = static_cast<int16_t>(std::atoi(args[1].c_str()));
    const int repeat = args.size() > 2 ? std::atoi(args[2].c_str()) : 3;
    std::vector<std::u16string> names;
    double bytes = 0;
    for (const std::string& p : paths) {
        names.push_back(FromUtf8(p));
        std::error_code ec;
        bytes += static_cast<double>(std::filesystem::file_size(p, ec));
    }
    double best = 1e300, bestCpu = 1e300;
    long long calls = 0;
    for (int r = 0; r < repeat; ++r) {
        CountingOutput out;
        const double cpuStart = CpuMs();
        best = std::min(best, TimeMs([&] {
            for (const std::u16string& name : names) {
                out.name = name;
                clsQuillbox scanner;
                scanner.ParseFile(out, language);
            }
        }));
        bestCpu = std::min(bestCpu, CpuMs() - cpuStart);
        calls = out.calls;
    }
    Report("scan_ms", best, "ms");
    Report("scan_cpu_ms", bestCpu, "ms");
    Report("scan_mb_per_s", bytes / 1e6 / (best / 1e3), "MB/s");
    Report("scan_calls", static_cast<double>(calls), "calls");
    return 0;
}

}  // namespace kestrel::perf
