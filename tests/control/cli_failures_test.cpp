// Failures of the real kestrel program that must be said out loud: lost output,
// floods of error reports, unknown names, folders that give nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

constexpr const char* kFullDisk = "kestrel: writing standard output: No space left on device\n";

class CliFailures : public ::testing::Test {
protected:
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }

    // Runs kestrel with standard output sent to `target` and its error log under dir/state.
    Outcome KestrelTo(const std::string& target, const std::string& args) {
        ScratchDir streams;
        const fs::path err = streams.path() / "stderr";
        const std::string command = "cd '" + dir.string() + "' && XDG_STATE_HOME='" + (dir / "state").string() +
                                    "' '" KESTREL_BINARY_DIR "/tools/kestrel' " + args + " >" + target + " 2>'" +
                                    err.string() + "' </dev/null";
        const int raw = std::system(command.c_str());
        return Outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, "", ReadFileBytes(err)};
    }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

TEST_F(CliFailures, EveryCommandThatLosesItsOutputSaysWhyAndFails) {
    std::ofstream(dir / "a.cpp") << "class A {\npublic:\n    void Run();\n};\nvoid A::Run() {\n}\n";
    // Far more than one buffer of output, so that writes fail in the middle of the run too.
    std::string many;
    for (int i = 0; i < 4000; ++i) many += "void f" + std::to_string(i) + "(int a, int b) {\n}\n";
    std::ofstream(dir / "many.cpp") << many;
    ASSERT_EQ(Kestrel("new p.kpr a.cpp many.cpp").status, 0);
    for (const char* args : {"tree p.kpr", "tree --expand --keys p.kpr", "tree --files p.kpr", "dump p.kpr",
                             "find p.kpr --class a", "where p.kpr a.cpp 5", "scan a.cpp many.cpp",
                             "scan --dump-lines many.cpp", "scan --help", "--help", "help tree"}) {
        const Outcome full = KestrelTo("/dev/full", args);
        EXPECT_EQ(full.status, 1) << args;
        EXPECT_EQ(full.err, kFullDisk) << args;
        EXPECT_EQ(KestrelTo("/dev/null", args).status, 0) << args;
    }
    // A command that failed already still names the lost output.
    const Outcome missing = KestrelTo("/dev/full", "scan a.cpp missing.cpp");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find(kFullDisk), std::string::npos) << missing.err;
}

}  // namespace
