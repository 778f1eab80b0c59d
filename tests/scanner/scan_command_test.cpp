// The kestrel scan command line, run as a real program over the example project.
#include <gtest/gtest.h>

#include <string>

#include "support/scratch.h"

using namespace kestrel::test;

namespace {

Outcome Kestrel(const std::string& args) { return RunKestrel(KESTREL_SOURCE_DIR, args); }

}  // namespace

TEST(ScanCommand, TracesAndDumpsOfTheExampleFilesMatchTheGoldenFiles) {
    struct Case {
        const char* file;
        const char* language;
    };
    for (Case c : {Case{"shapes.h", "cpp"}, {"shapes.cpp", "c"}, {"Inventory.java", "java"}, {"Utilities.bas", "basic"},
                   {"Account.cls", "2"}}) {
        Outcome run = Kestrel(std::string("scan --language ") + c.language + " examples/" + c.file);
        EXPECT_EQ(run.status, 0) << c.file;
        EXPECT_EQ(run.err, "") << c.file;
        EXPECT_EQ(run.out, Golden(std::string(c.file) + ".trace")) << c.file;
    }
    EXPECT_EQ(Kestrel("scan --dump-lines examples/shapes.cpp").out, Golden("shapes.cpp.lines"));
    EXPECT_EQ(Kestrel("scan --language=java --dump-results examples/Inventory.java").out,
              Golden("Inventory.java.results"));
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

TEST(ScanCommand, UnlistedLanguagesScanNothingAndWideNumbersAreNarrowed) {
    Outcome run = Kestrel("scan --language 6 examples/shapes.cpp");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(Kestrel("scan --language 65537 examples/Inventory.java").out, Golden("Inventory.java.trace"));
}

TEST(ScanCommand, UsageErrorsAndHelp) {
    for (const char* args : {"scan --language cobol examples/shapes.h", "scan", "scan --bogus x", "frobnicate"})
        EXPECT_EQ(Kestrel(args).status, 2) << args;
    Outcome help = Kestrel("scan --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--dump-results"), std::string::npos);
    EXPECT_NE(help.out.find("--language"), std::string::npos);
    Outcome top = Kestrel("--help");
    EXPECT_EQ(top.status, 0);
    EXPECT_NE(top.out.find("scan"), std::string::npos);
}
