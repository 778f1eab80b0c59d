// The kestrel scan command line, run as a real program over the example project.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/scratch.h"

using namespace kestrel::test;

namespace {

Outcome Kestrel(const std::string& args) { return RunKestrel(KESTREL_SOURCE_DIR, args); }

}  // namespace

TEST(ScanCommand, TracesAndDumpsOfTheExampleFilesMatchTheGoldenFiles) {
    // Unlisted languages scan nothing; wide language numbers are narrowed to 16 bits.
    const std::pair<std::string, std::string> cases[] = {
        {"--language c examples/shapes.h", "shapes.h.trace"},
        {"--language c examples/shapes.cpp", "shapes.cpp.trace"},
        {"--language java examples/Inventory.java", "Inventory.java.trace"},
        {"--language basic examples/Utilities.bas", "Utilities.bas.trace"},
        {"--language 2 examples/Account.cls", "Account.cls.trace"},
        {"--dump-lines examples/shapes.cpp", "shapes.cpp.lines"},
        {"--language=java --dump-results examples/Inventory.java", "Inventory.java.results"},
        {"--language 65537 examples/Inventory.java", "Inventory.java.trace"},
        {"--language 6 examples/shapes.cpp", ""},
    };
    for (const auto& [args, golden] : cases) {
        Outcome run = Kestrel("scan " + args);
        EXPECT_EQ(run.status, 0) << args;
        EXPECT_EQ(run.err, "") << args;
        EXPECT_EQ(run.out, golden.empty() ? "" : Golden(golden)) << args;
    }
}

TEST(ScanCommand, SeveralFilesGetAFileLineEachAndAMissingOneIsReported) {
    Outcome run = Kestrel("scan -l basic examples/Utilities.bas examples/missing.bas examples/Account.cls");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "file\texamples/Utilities.bas\n" + Golden("Utilities.bas.trace") +
                           "file\texamples/missing.bas\n"
                           "file\texamples/Account.cls\n" +
                           Golden("Account.cls.trace"));
    EXPECT_EQ(run.err, "kestrel scan: examples/missing.bas: No such file or directory\n");
    EXPECT_EQ(Kestrel("scan examples").err, "kestrel scan: examples: Is a directory\n");
}

TEST(ScanCommand, UsageErrorsAndHelp) {
    for (const char* args : {"scan --language cobol examples/shapes.h", "scan", "scan --bogus x", "frobnicate"})
        EXPECT_EQ(Kestrel(args).status, 2) << args;
    for (const char* args : {"scan --help", "--help"}) EXPECT_EQ(Kestrel(args).status, 0) << args;
}
