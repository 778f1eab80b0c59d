// kestrel_search_bench PROJECT...: loads the projects, indexes every symbol of them
// in one SymbolIndex, and times queries of 1 to 12 units as a person types them: a
// few letters of a real name, in order, letter case ignored.
//
// Prints the index's build time and size next to the model's, then per query length
// the median and 99th percentile of the query time, each also as a multiple of the
// baseline: one query that matches everything (an empty one), which visits every
// symbol once and so is what any search that looks at each name must pay.
//
// Times are the processor time of the querying thread, so that other work on the
// machine does not blur them; run it on one core (taskset) to keep wall and
// processor time the same.
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "common/text.h"
#include "control/headless_project.h"
#include "search/symbol_index.h"

using namespace kestrel;

// The calling thread's processor time.
struct Clock {
    using duration = std::chrono::nanoseconds;
    using time_point = std::chrono::time_point<Clock, duration>;
    static time_point now() {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return time_point(duration(int64_t(t.tv_sec) * 1000000000 + t.tv_nsec));
    }
};

namespace {

// Resident memory now, from /proc: what the model takes is the growth while loading.
size_t ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4096;
}

double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

double Percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, static_cast<size_t>(p * values.size()))];
}

// `length` units of `name`, in order, lower-cased: what someone who knows the name
// types. Half the queries start at the name's start.
std::u16string QueryFrom(const std::u16string& name, size_t length, std::mt19937& random) {
    std::vector<size_t> at(name.size());
    for (size_t i = 0; i < at.size(); ++i) at[i] = i;
    std::shuffle(at.begin() + 1, at.end(), random);
    const bool fromStart = random() % 2 == 0;
    std::vector<size_t> chosen(at.begin() + (fromStart ? 0 : 1), at.begin() + (fromStart ? 0 : 1) + length);
    std::sort(chosen.begin(), chosen.end());
    std::u16string query;
    for (size_t i : chosen) query += (name[i] >= u'A' && name[i] <= u'Z') ? char16_t(name[i] + 32) : name[i];
    return query;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: kestrel_search_bench PROJECT...\n");
        return 2;
    }
    std::vector<std::shared_ptr<HeadlessProject>> projects;
    const size_t before = ResidentBytes();
    for (int i = 1; i < argc; ++i) {
        auto project = HeadlessProject::Create();
        if (!project->Load(FromUtf8(argv[i]))) {
            std::fprintf(stderr, "cannot load %s\n", argv[i]);
            return 1;
        }
        projects.push_back(project);
    }
    const size_t model = ResidentBytes() - before;

    SymbolIndex index;
    const auto buildStart = Clock::now();
    for (auto& project : projects)
        for (const FilePtr& file : project->files()->Files()) index.UpdateFile(*file);
    const double build = Milliseconds(Clock::now() - buildStart);
    const size_t symbols = index.SymbolCount();
    std::printf("symbols %zu in %zu files\n", symbols, index.FileCount());
    std::printf("index build %.0f ms, %.0f bytes per symbol (model: %.0f bytes per symbol)\n", build,
                double(index.MemoryBytes()) / symbols, double(model) / symbols);

    SymbolQuery everything;
    everything.limit = 0;
    std::vector<std::u16string> names;
    for (const SymbolHit& hit : index.Find(everything))
        if (hit.name.size() > 12) names.push_back(hit.name);  // room for 12 units after the first

    SymbolQuery empty;
    std::vector<double> baseline;
    for (int run = 0; run < 21; ++run) {
        const auto start = Clock::now();
        index.Find(empty);
        baseline.push_back(Milliseconds(Clock::now() - start));
    }
    const double base = Percentile(baseline, 0.5);
    std::printf("baseline (every symbol visited once, empty query): %.2f ms\n\n", base);
    std::printf("length  median ms  p99 ms  median/base  p99/base\n");

    std::mt19937 random(20261124);
    std::vector<double> all;
    constexpr int kQueriesPerLength = 200;
    for (size_t length = 1; length <= 12; ++length) {
        std::vector<double> times;
        for (int q = 0; q < kQueriesPerLength; ++q) {
            SymbolQuery query;
            query.text = QueryFrom(names[random() % names.size()], length, random);
            const auto start = Clock::now();
            index.Find(query);
            times.push_back(Milliseconds(Clock::now() - start));
        }
        all.insert(all.end(), times.begin(), times.end());
        const double median = Percentile(times, 0.5), p99 = Percentile(times, 0.99);
        std::printf("%6zu  %9.2f  %6.2f  %11.2f  %8.2f\n", length, median, p99, median / base, p99 / base);
    }
    std::printf("   all  %9.2f  %6.2f  %11.2f  %8.2f\n", Percentile(all, 0.5), Percentile(all, 0.99),
                Percentile(all, 0.5) / base, Percentile(all, 0.99) / base);
    return 0;
}
