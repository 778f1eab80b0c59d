// kestrel new asked for more scan threads than the machine has, or on a system that
// will not start one more thread: the same project file, never an abort.
#include <gtest/gtest.h>

#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/child_run.h"
#include "support/scratch.h"

using namespace kestrel::test;
namespace fs = std::filesystem;

namespace {

// No new process or thread for the child: as an ordinary user, whose processes the
// limit counts; root is not held to it, so the child becomes nobody first.
void NoMoreThreads() {
    const struct rlimit one {1, 1};
    if (::geteuid() == 0) {
        const struct passwd* nobody = ::getpwnam("nobody");
        if (!nobody || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0) ::_exit(125);
    }
    if (::setrlimit(RLIMIT_NPROC, &one) != 0) ::_exit(125);
    // A sanitized program checks for leaks at its exit on a thread of its own, which
    // the limit refuses as well.
    const char* options = std::getenv("ASAN_OPTIONS");
    const std::string noLeakCheck = std::string(options ? options : "") + (options ? ":" : "") + "detect_leaks=0";
    ::setenv("ASAN_OPTIONS", noLeakCheck.c_str(), 1);
}

}  // namespace

TEST(ScanThreads, TooManyOrNoneToBeHadGiveTheSameProject) {
    ScratchDir dir;
    // Others than nobody may write here, so that a child that became nobody can too.
    fs::permissions(dir.path(), fs::perms::all);
    fs::create_directory(dir.path() / "src");
    for (int i = 0; i < 60; ++i) {
        WriteFileBytes(dir.path() / "src" / ("f" + std::to_string(i) + ".cpp"),
                       "class C" + std::to_string(i) + "\n{\npublic:\n  int v;\n  void f(int a);\n};\n");
    }
    auto made = [&](const std::string& out, const std::string& jobs, const std::function<void()>& limit = {}) {
        fs::create_directory(dir.path() / out);
        fs::permissions(dir.path() / out, fs::perms::all);
        ChildOutcome run = RunKestrelAlone(dir.path(), {"new", out + "/p.kpr", "--jobs", jobs, "src"}, limit);
        EXPECT_EQ(run.status, 0) << jobs << ": " << run.err;
        EXPECT_EQ(run.err, "") << jobs;
        return ReadFileBytes(dir.path() / out / "p.kpr");
    };
    const std::string alone = made("one", "1");
    ASSERT_GT(alone.size(), 1000u);
    EXPECT_EQ(made("many", "40000"), alone);
    EXPECT_EQ(made("none", "2", NoMoreThreads), alone);
}
