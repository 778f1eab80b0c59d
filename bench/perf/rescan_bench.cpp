// kestrel_perf rescan [FILES]: a project of FILES small files (default 10,000) plus one
// file of 5,000 lines, which is then rescanned from lines held in memory, as an
// editor does after an edit (UpdateEmbeededFile with a line source). Reports the best
// and the median time of one rescan.
#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "common/constants.h"
#include "common/text.h"
#include "model/all_files.h"
#include "perf_commands.h"
#include "perf_common.h"
#include "project_host.h"
#include "scanner/scan_output.h"

namespace kestrel::perf {

namespace {

class MemoryLines : public LineSource {
public:
    explicit MemoryLines(std::vector<std::u16string> lines) : lines_(std::move(lines)) {}
    int32_t GetLineCount() override { return static_cast<int32_t>(lines_.size()); }
    std::u16string Line(int32_t n) override {
        return n >= 1 && n <= GetLineCount() ? lines_[static_cast<size_t>(n - 1)] : std::u16string();
    }
    std::vector<std::u16string>& lines() { return lines_; }

private:
    std::vector<std::u16string> lines_;
};

// 5,000 lines: a class of 250 members declared, then defined with bodies.
std::vector<std::u16string> EditedFile(int edit) {
    std::vector<std::u16string> lines;
    lines.push_back(u"// the file being edited, revision " + ToText(edit));
    lines.push_back(u"class Edited {");
    lines.push_back(u"public:");
    for (int m = 0; m < 250; ++m) {
        lines.push_back(u"    int Member" + ToText(m) + u"(int a, const char* b);  // member " + ToText(m));
        lines.push_back(u"    long field" + ToText(m) + u";");
    }
    lines.push_back(u"};");
    while (lines.size() < 5000) {
        const std::u16string m = ToText(static_cast<long long>(lines.size()));
        lines.push_back(u"int Edited::Helper" + m + u"(int a, const char* b)");
        lines.push_back(u"{");
        lines.push_back(u"    int x = a * 2; /* doubled */");
        lines.push_back(u"    if (b && *b == '{') x += 1;");
        lines.push_back(u"    return x + " + ToText(edit) + u";");
        lines.push_back(u"}");
    }
    lines.resize(5000);
    return lines;
}

}  // namespace

int Rescan(const std::vector<std::string>& args) {
    const int files = args.empty() ? 10000 : std::atoi(args[0].c_str());
    TempDir dir;
    const std::vector<std::string> small = WriteClassFiles(dir.path(), files / 2, 1, 3);
    std::string edited;
    for (const std::u16string& line : EditedFile(0)) edited += ToUtf8(line) + "\n";
    WriteFile(dir / "edited.cpp", edited);

    BenchHost host;
    host.view->NewProject(FromUtf8(dir / "bench.kpr"), LANGUAGE_C, 1);
    AllFilesPtr all = host.view->files();
    for (const std::string& path : small)
        all->Add(FromUtf8(path), path.ends_with(".h") ? FILETYPE_DEFINITION : FILETYPE_IMPLEMENTATION);
    all->Add(FromUtf8(dir / "edited.cpp"), FILETYPE_IMPLEMENTATION);
    FilePtr file = all->item(all->count());

    std::vector<double> times;
    for (int edit = 1; edit <= 21; ++edit) {
        MemoryLines source(EditedFile(edit));
        // Every other edit renames a few members, so entries go and come as well.
        if (edit % 2 == 0)
            for (int k = 10; k < 20; ++k) source.lines()[static_cast<size_t>(k)] += u" int Renamed" + ToText(edit) + u"();";
        times.push_back(TimeMs([&] { file->UpdateEmbeededFile(source); }));
    }
    std::sort(times.begin(), times.end());
    Report("rescan_files", static_cast<double>(all->count()), "files");
    Report("rescan_best_ms", times.front(), "ms");
    Report("rescan_median_ms", times[times.size() / 2], "ms");
    return 0;
}

}  // namespace kestrel::perf
