// The kestrel scan command line, run as a real program over the example project.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Runs kestrel with `args` (shell words) in the source directory.
Outcome Kestrel(const std::string& args) {
    // Tests run in parallel processes: one file per process and call.
    static int calls = 0;
    std::string err = ::testing::TempDir() + "kestrel-scan-stderr-" + std::to_string(::getpid()) + "-" +
                      std::to_string(++calls) + ".txt";
    std::string command = std::string("cd '") + KESTREL_SOURCE_DIR + "' && '" + KESTREL_BINARY_DIR +
                          "/tools/kestrel' " + args + " 2>'" + err + "'";
    Outcome run{};
    FILE* pipe = ::popen(command.c_str(), "r");
    char buffer[4096];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, got);
    int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = ReadFile(err);
    std::remove(err.c_str());
    return run;
}

std::string Golden(const std::string& name) {
    return ReadFile(std::string(KESTREL_SOURCE_DIR) + "/tests/golden/" + name);
}

}  // namespace

TEST(ScanCommand, TracesOfTheExampleFilesMatchTheGoldenFiles) {
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
}

TEST(ScanCommand, DumpsMatchTheGoldenFiles) {
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
}

TEST(ScanCommand, UnlistedLanguagesScanNothing) {
    Outcome run = Kestrel("scan --language 6 examples/shapes.cpp");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    // 65536 + 1 narrows to Java.
    EXPECT_EQ(Kestrel("scan --language 65537 examples/Inventory.java").out, Golden("Inventory.java.trace"));
}

TEST(ScanCommand, UsageErrorsAndHelp) {
    Outcome help = Kestrel("scan --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--dump-results"), std::string::npos);
    EXPECT_NE(help.out.find("--language"), std::string::npos);
    EXPECT_EQ(Kestrel("scan --language cobol examples/shapes.h").status, 2);
    EXPECT_EQ(Kestrel("scan").status, 2);
    EXPECT_EQ(Kestrel("scan --bogus x").status, 2);
    EXPECT_EQ(Kestrel("frobnicate").status, 2);
    Outcome top = Kestrel("--help");
    EXPECT_EQ(top.status, 0);
    EXPECT_NE(top.out.find("scan"), std::string::npos);
    EXPECT_EQ(Kestrel("scan examples").err, "kestrel scan: examples: Is a directory\n");
}
