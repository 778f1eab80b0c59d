// kestrel_perf fill [FILES CLASSES FUNCTIONS]: a project of FILES x 2 files with
// CLASSES classes of FUNCTIONS functions each (default 100 x 2 x 100 = 20,000
// functions) is saved, then loaded with AsyncLoad on, the load timer run tick by tick,
// and every class node expanded one after another. Each of these is one step the
// host's event loop waits for; the longest is reported.
#include <algorithm>
#include <cstdlib>

#include "common/constants.h"
#include "common/text.h"
#include "model/all_files.h"
#include "perf_commands.h"
#include "perf_common.h"
#include "project_host.h"

namespace kestrel::perf {

int Fill(const std::vector<std::string>& args) {
    const int files = args.size() > 0 ? std::atoi(args[0].c_str()) : 100;
    const int classes = args.size() > 1 ? std::atoi(args[1].c_str()) : 2;
    const int functions = args.size() > 2 ? std::atoi(args[2].c_str()) : 100;
    TempDir dir;
    const std::u16string project = FromUtf8(dir / "fill.kpr");
    {
        BenchHost builder;
        builder.view->NewProject(project, LANGUAGE_C, 1);
        for (const std::string& path : WriteClassFiles(dir.path(), files, classes, functions))
            builder.view->files()->Add(FromUtf8(path), path.ends_with(".h") ? FILETYPE_DEFINITION : FILETYPE_IMPLEMENTATION);
        builder.view->Save();
    }

    BenchHost host;
    host.view->AsyncLoad(true);
    double longest = 0, total = 0;
    auto step = [&](double ms) {
        longest = std::max(longest, ms);
        total += ms;
    };
    const double load = TimeMs([&] { host.view->Load(project); });
    step(load);
    long long ticks = 0;
    double longestTick = 0;
    while (host.platform.timer.Enabled()) {
        const double ms = TimeMs([&] { host.platform.timer.Advance(host.platform.timer.Remaining()); });
        longestTick = std::max(longestTick, ms);
        step(ms);
        ++ticks;
    }
    double longestExpand = 0;
    const std::vector<NodeId> nodes = ClassNodes(host.platform.classTree);
    for (NodeId node : nodes) {
        const double ms = TimeMs([&] { host.platform.classTree.UserExpand(node); });
        longestExpand = std::max(longestExpand, ms);
        step(ms);
    }
    Report("fill_functions", static_cast<double>(files) * classes * functions, "functions");
    Report("fill_load_ms", load, "ms");
    Report("fill_ticks", static_cast<double>(ticks), "ticks");
    Report("fill_longest_tick_ms", longestTick, "ms");
    Report("fill_class_nodes", static_cast<double>(nodes.size()), "nodes");
    Report("fill_longest_expand_ms", longestExpand, "ms");
    Report("fill_longest_step_ms", longest, "ms");
    Report("fill_total_ms", total, "ms");
    return 0;
}

}  // namespace kestrel::perf
