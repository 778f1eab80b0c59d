// The project commands of the real kestrel program, run as a user would.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

class Cli : public ::testing::Test {
protected:
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }
    static std::string Examples() { return "'" KESTREL_SOURCE_DIR "/examples'"; }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

TEST_F(Cli, NewThenTreeExpandedOverTheExamples) {
    Outcome made = Kestrel("new examples.kpr " + Examples());
    ASSERT_EQ(made.status, 0) << made.err;
    Outcome tree = Kestrel("tree --expand examples.kpr");
    ASSERT_EQ(tree.status, 0) << tree.err;
    // The plain tree is the keyed one without each line's key, image and tag.
    const std::string keyed = Golden("examples_tree_keys.txt");
    EXPECT_EQ(Kestrel("tree examples.kpr --expand --keys").out, keyed);
    EXPECT_EQ(tree.out, std::regex_replace(keyed, std::regex("  \\[.*"), ""));
    EXPECT_EQ(Kestrel("tree --files examples.kpr").out,
              "examples\n  Definition\n    shapes.h\n  Implementation\n    shapes.cpp\n");
    // Scanning on several threads or on one writes the same bytes.
    for (const char* jobs : {"1", "3"}) {
        ASSERT_EQ(Kestrel(std::string("new jobs.kpr --jobs ") + jobs + " " + Examples()).status, 0);
        EXPECT_EQ(ReadFileBytes(dir / "jobs.kpr"), ReadFileBytes(dir / "examples.kpr")) << jobs;
        ASSERT_EQ(Kestrel(std::string("update jobs.kpr --jobs ") + jobs).status, 0);
        EXPECT_EQ(ReadFileBytes(dir / "jobs.kpr"), ReadFileBytes(dir / "examples.kpr")) << jobs;
    }
    // Without --expand every class waits behind its placeholder.
    EXPECT_NE(Kestrel("tree examples.kpr").out.find("  Shape\n    |\n"), std::string::npos);
}

TEST_F(Cli, TypesComeFromExtensionsOrFromTypeOptions) {
    fs::create_directories(dir / "src" / ".hidden");
    std::ofstream(dir / "src" / "b.cpp") << "int b() {\n}\n";
    std::ofstream(dir / "src" / "a.h") << "int a();\n";
    std::ofstream(dir / "src" / "notes.txt") << "x\n";
    std::ofstream(dir / "src" / ".hidden" / "c.cpp") << "int c() {\n}\n";
    std::ofstream(dir / "src" / "e.HXX") << "int e();\n";
    std::ofstream(dir / "list") << "src/notes.txt\n";
    // An absolute path that is not normal is made so; an extension counts in any case.
    const std::string roundabout = "'" + (dir / "src" / ".." / "src" / "." / "e.HXX").string() + "'";
    ASSERT_EQ(Kestrel("new p.kpr --id 5 src " + roundabout + " --type form --files-from list").status, 0);
    Outcome dump = Kestrel("dump p.kpr");
    EXPECT_EQ(dump.status, 0);
    std::istringstream lines(dump.out);
    std::string line, files;
    while (std::getline(lines, line))
        if (line.rfind("file ", 0) == 0 || line.rfind("project ", 0) == 0) files += line.substr(0, line.find(" classes")) + "\n";
    EXPECT_EQ(files, "project language 0 id 5 files 4\nfile \"src/a.h\" type 2\nfile \"src/b.cpp\" type 1\n"
                     "file \"src/e.HXX\" type 2\nfile \"src/notes.txt\" type 3\n");
}

TEST_F(Cli, AddRemoveUpdateWhereAndFind) {
    std::ofstream(dir / "a.h") << "class A {\npublic:\n    void Run();\n};\n";
    std::ofstream(dir / "a.cpp") << "void A::Run() {\n    go();\n}\n";
    ASSERT_EQ(Kestrel("new p.kpr a.h").status, 0);
    ASSERT_EQ(Kestrel("add p.kpr a.cpp").status, 0);
    Outcome twice = Kestrel("add p.kpr a.cpp");
    EXPECT_EQ(twice.status, 0);
    EXPECT_NE(twice.err.find("already in the project"), std::string::npos);

    Outcome where = Kestrel("where p.kpr a.cpp 2");
    EXPECT_EQ(where.status, 0);
    EXPECT_EQ(where.out, "A::Run() line 1\n");
    EXPECT_EQ(Kestrel("where p.kpr a.h 1").status, 1);

    EXPECT_EQ(Kestrel("find p.kpr --class a --type def").out, "A\t" + (dir / "a.h").string() + "\n");
    EXPECT_EQ(Kestrel("find p.kpr --function Run").out, "Run\t" + (dir / "a.cpp").string() + "\tline 1\n");
    EXPECT_EQ(Kestrel("find p.kpr --function run").status, 1);

    std::ofstream(dir / "a.cpp") << "void A::Run() {\n}\nvoid A::Stop() {\n}\n";
    ASSERT_EQ(Kestrel("update p.kpr").status, 0);
    EXPECT_EQ(Kestrel("where p.kpr a.cpp 4").out, "A::Stop() line 3\n");

    ASSERT_EQ(Kestrel("remove p.kpr a.cpp").status, 0);
    EXPECT_EQ(Kestrel("tree --expand p.kpr").out, "p\n  A\n    Functions\n      Run()\n");
}

TEST_F(Cli, FailuresNameTheFileAndTheReasonOnOneLine) {
    std::ofstream(dir / "bad.kpr") << "not a project";
    const struct { std::string args; int status; std::string message; } cases[] = {
        {"tree missing.kpr", 1, "kestrel: missing.kpr: No such file or directory\n"},
        {"dump bad.kpr", 1, "kestrel: bad.kpr: not a kestrel project file (wrong signature)\n"},
        {"remove bad.kpr a.cpp", 1, "kestrel: bad.kpr: not a kestrel project file (wrong signature)\n"},
        {"new nowhere/p.kpr", 1, "kestrel: " + (dir / "nowhere/p.kpr").string() +
                                     ": cannot write the project file: folder " + (dir / "nowhere").string() +
                                     " does not exist\n"},
        {"new p.kpr missing.cpp", 1, "kestrel: missing.cpp: no such file or folder\n"},
        {"new p.kpr --colour", 2, "kestrel new: unknown option '--colour' (kestrel new --help shows the usage)\n"},
        {"new p.kpr --type header x", 2,
         "kestrel new: --type must be impl, def, form, noparse or 1 to 4, not 'header' (kestrel new --help shows the "
         "usage)\n"},
    };
    for (const auto& c : cases) {
        Outcome run = Kestrel(c.args);
        EXPECT_EQ(run.status, c.status) << c.args;
        EXPECT_EQ(run.err, c.message) << c.args;
    }
    EXPECT_FALSE(fs::exists(dir / "p.kpr"));  // nothing half made
    EXPECT_EQ(ReadFileBytes(dir / "bad.kpr"), "not a project");
}

}  // namespace
