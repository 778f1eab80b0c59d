// kestrel_perf build LIST [LANGUAGE [THREADS]]: scans every file of a list into a new
// project without a view, as `kestrel new` does (headers as definitions, the rest as
// implementations, scanned ahead on THREADS workers, by default one per core; 1 scans
// on the main thread), and reports the time and the memory of the scanned project per
// 1,000 items: what it holds once built, and the peak while scanning.
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "common/constants.h"
#include "common/text.h"
#include "control/headless_project.h"
#include "model/all_files.h"
#include "perf_commands.h"
#include "perf_common.h"
#include "project_host.h"

namespace kestrel::perf {

namespace {

int32_t FileTypeOf(std::string_view path) {
    constexpr std::array<std::string_view, 5> kHeaders = {".h", ".hh", ".hpp", ".hxx", ".inl"};
    for (std::string_view extension : kHeaders)
        if (path.ends_with(extension)) return FILETYPE_DEFINITION;
    return FILETYPE_IMPLEMENTATION;
}

}  // namespace

int BuildProject(const std::vector<std::string>& args) {
    if (args.empty()) throw std::runtime_error("usage: kestrel_perf build LIST [LANGUAGE [THREADS]]");
    const std::vector<std::string> paths = ReadList(args[0]);
    const int32_t language = args.size() > 1 ? std::atoi(args[1].c_str()) : LANGUAGE_C;
    const int threads = args.size() > 2 ? std::atoi(args[2].c_str()) : 0;
    TempDir dir;

    ResetPeakResident();
    const int64_t before = ResidentBytes();
    auto project = HeadlessProject::Create();
    const double ms = TimeMs([&] {
        project->NewProject(FromUtf8(dir / "build.kpr"), language, 1);
        std::vector<std::pair<std::u16string, int32_t>> files;
        for (const std::string& path : paths) files.emplace_back(FromUtf8(path), FileTypeOf(path));
        AllFilesPtr all = project->files();
        if (threads > 0) all->SetScanThreads(threads > 1 ? static_cast<unsigned>(threads) : 0);
        all->ScanAheadOfAdd(files);
        for (const auto& [name, type] : files) all->Add(name, type);
    });
    const int64_t after = ResidentBytes();
    const int64_t peak = PeakResidentBytes();
    const long long items = CountItems(*project->files());

    Report("build_ms", ms, "ms");
    Report("build_items", static_cast<double>(items), "items");
    Report("build_kb_per_1000_items", PerItem(after - before, items), "kB");
    Report("build_peak_kb_per_1000_items", PerItem(peak - before, items), "kB");
    return 0;
}

}  // namespace kestrel::perf
