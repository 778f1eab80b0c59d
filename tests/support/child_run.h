#pragma once
// The real kestrel program run in a child process of its own, so that what the
// system counted for it alone (its peak memory) can be read back, and so that limits
// set for it (fewer threads, less memory) bind nothing else.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/scratch.h"

namespace kestrel::test {

struct ChildOutcome {
    int status;        // exit status, or -1 when the child did not exit normally
    long peakRssKb;    // the child's largest resident set
    std::string err;   // its standard error
};

// Runs kestrel with `args` in `cwd`, standard output thrown away; `limit` runs in the
// child just before the program starts.
inline ChildOutcome RunKestrelAlone(const std::filesystem::path& cwd, const std::vector<std::string>& args,
                                    const std::function<void()>& limit = {}) {
    ScratchDir streams;
    const std::string errPath = (streams.path() / "stderr").string();
    const std::string program = KESTREL_BINARY_DIR "/tools/kestrel";
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int null = ::open("/dev/null", O_RDWR);
        const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (null < 0 || err < 0 || ::chdir(cwd.c_str()) != 0) ::_exit(126);
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(err, 2);
        if (limit) limit();
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
    int raw = 0;
    struct rusage usage {};
    if (child < 0 || ::wait4(child, &raw, 0, &usage) != child) return {-1, 0, "cannot run kestrel"};
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, usage.ru_maxrss, ReadFileBytes(errPath)};
}

}  // namespace kestrel::test
