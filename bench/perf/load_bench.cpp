// kestrel_perf load PROJECT [REPEAT]: loads a saved project into a TreeView on the
// in-memory platform, as `kestrel tree` and a host do, and reports the best time, the
// memory the loaded project holds per item and the peak per 1,000 items while loading.
// It also reports the best time of loading it into a project without a view, the same
// work `kestrel new` does when it creates the project by scanning, and of that load
// followed by a lookup in every class, which files every class's members under their
// keys (a loaded class does so when first asked): what `dump` or a save goes through.
#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "common/text.h"
#include "control/headless_project.h"
#include "perf_commands.h"
#include "perf_common.h"
#include "project_host.h"

namespace kestrel::perf {

int LoadProject(const std::vector<std::string>& args) {
    if (args.empty()) throw std::runtime_error("usage: kestrel_perf load PROJECT [REPEAT]");
    const std::u16string project = FromUtf8(args[0]);
    const int repeat = args.size() > 1 ? std::atoi(args[1].c_str()) : 5;

    // The first load in a fresh process: what it adds to the resident memory.
    ResetPeakResident();
    const int64_t before = ResidentBytes();
    auto first = std::make_unique<BenchHost>();
    double best = TimeMs([&] {
        if (!first->view->Load(project)) throw std::runtime_error("cannot load " + args[0]);
    });
    const int64_t after = ResidentBytes();
    const int64_t peak = PeakResidentBytes();
    const long long items = CountItems(*first->view);
    first.reset();

    for (int r = 1; r < repeat; ++r) {
        BenchHost host;
        best = std::min(best, TimeMs([&] { host.view->Load(project); }));
    }
    double bestModel = 0;
    for (int r = 0; r < std::max(repeat, 1); ++r) {
        auto model = HeadlessProject::Create();
        const double ms = TimeMs([&] { model->Load(project); });
        bestModel = r == 0 ? ms : std::min(bestModel, ms);
    }
    double bestFiled = 0;
    for (int r = 0; r < std::max(repeat, 1); ++r) {
        auto model = HeadlessProject::Create();
        const double ms = TimeMs([&] {
            model->Load(project);
            AllFilesPtr all = model->files();
            for (int32_t f = 1; f <= all->count(); ++f)
                for (const ClassPtr& c : all->item(f)->Classes()) c->func(u"");
        });
        bestFiled = r == 0 ? ms : std::min(bestFiled, ms);
    }
    Report("load_ms", best, "ms");
    Report("load_model_ms", bestModel, "ms");
    Report("load_filed_ms", bestFiled, "ms");
    Report("load_items", static_cast<double>(items), "items");
    Report("load_bytes_per_item", PerItem(after - before, items), "bytes");
    Report("load_peak_kb_per_1000_items", PerItem(peak - before, items), "kB");
    return 0;
}

}  // namespace kestrel::perf
