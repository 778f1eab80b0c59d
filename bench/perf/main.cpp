// kestrel_perf: the measurements of bench/run that need the library itself rather
// than the command-line program. Each subcommand prints "key<TAB>value<TAB>unit" lines.
#include <cstdio>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "perf_commands.h"

int main(int argc, char** argv) {
    using Command = int (*)(const std::vector<std::string>&);
    const std::map<std::string, Command> commands = {
        {"scan", kestrel::perf::ScanOnly},
        {"generate", kestrel::perf::Generate},
        {"load", kestrel::perf::LoadProject},
        {"build", kestrel::perf::BuildProject},
        {"rescan", kestrel::perf::Rescan},
        {"fill", kestrel::perf::Fill},
    };
    if (argc < 2 || !commands.count(argv[1])) {
        std::fprintf(stderr, "usage: kestrel_perf COMMAND ARGS...; commands:");
        for (const auto& [name, _] : commands) std::fprintf(stderr, " %s", name.c_str());
        std::fprintf(stderr, "\n");
        return 2;
    }
    try {
        return commands.at(argv[1])(std::vector<std::string>(argv + 2, argv + argc));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kestrel_perf %s: %s\n", argv[1], e.what());
        return 1;
    }
}
