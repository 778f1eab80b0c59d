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

// A variable whose last character lies above the scanner's separator table is
// reported and lost: one error report per line.
std::string Reported(int lines) {
    std::string text;
    for (int i = 0; i < lines; ++i) text += "int v" + std::to_string(i) + "\xC4\x81;\n";
    return text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

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

TEST_F(CliFailures, ARunShowsTwentyErrorReportsAndTheErrorLogKeepsTwentyPerOperation) {
    std::ofstream(dir / "bad.cpp") << Reported(35);
    std::ofstream(dir / "few.cpp") << Reported(3);
    const Outcome made = Kestrel("new p.kpr bad.cpp few.cpp");
    EXPECT_EQ(made.status, 1);
    const std::vector<std::string> shown = Lines(made.err);
    ASSERT_EQ(shown.size(), 21u) << made.err;
    EXPECT_EQ(shown[19], "kestrel: error in clsQuillbox.cls (Sub ProcessCVariable): Subscript out of range");
    EXPECT_EQ(shown[20], "kestrel: 18 more error reports not shown");
    EXPECT_EQ(Lines(Kestrel("new q.kpr few.cpp").err).size(), 3u);  // no count line when nothing is held back

    // kestrel scan leaves its reports to the error log: one operation per file scanned.
    ASSERT_EQ(KestrelTo("/dev/null", "scan bad.cpp few.cpp bad.cpp").status, 0);
    const std::vector<std::string> logged = Lines(ReadFileBytes(dir / "state/kestrel/error.log"));
    ASSERT_EQ(logged.size(), 21u + 3u + 21u);
    for (size_t end : {20u, 44u})
        EXPECT_NE(logged[end].find("clsQuillbox.cls\tFunction ParseFile\t0 15 more error reports of this operation left out"),
                  std::string::npos)
            << logged[end];
    EXPECT_NE(logged[21].find("\tSub ProcessCVariable\t9 Subscript out of range"), std::string::npos);
}

TEST_F(CliFailures, AnUnknownLanguageNameListsTheNamesThatAreKnown) {
    std::ofstream(dir / "a.cpp") << "int a;\n";
    const Outcome made = Kestrel("new p.kpr --language klingon a.cpp");
    EXPECT_EQ(made.status, 2);
    EXPECT_EQ(made.err, "kestrel new: --language must be c, cpp, c++, java, basic, vb or a language number, not "
                        "'klingon' (kestrel new --help shows the usage)\n");
    const Outcome scanned = Kestrel("scan --language klingon a.cpp");
    EXPECT_EQ(scanned.status, 2);
    EXPECT_EQ(scanned.err, "kestrel scan: unknown language 'klingon' (use c, cpp, c++, java, basic, vb or a language "
                           "number)\n");
    // Every listed name is taken by both commands.
    for (const char* name : {"c", "cpp", "c++", "java", "basic", "vb", "3"}) {
        EXPECT_EQ(Kestrel(std::string("new p.kpr --language ") + name + " a.cpp").status, 0) << name;
        EXPECT_EQ(Kestrel(std::string("scan --language ") + name + " a.cpp").status, 0) << name;
    }
}

TEST_F(CliFailures, AFolderWithoutSourceFilesOfTheLanguageFailsAndWritesNothing) {
    fs::create_directories(dir / "java" / ".hidden");
    std::ofstream(dir / "java" / "A.java") << "class A {\n}\n";
    std::ofstream(dir / "java" / "notes.txt") << "x\n";
    std::ofstream(dir / "java" / ".hidden" / "b.cpp") << "int b;\n";
    std::ofstream(dir / "a.cpp") << "int a;\n";
    const Outcome made = Kestrel("new p.kpr a.cpp java");
    EXPECT_EQ(made.status, 1);
    EXPECT_EQ(made.err, "kestrel: java: no source file of the project's language in this folder "
                        "(.h .hh .hpp .hxx .inl .c .cc .cpp .cxx)\n");
    EXPECT_FALSE(fs::exists(dir / "p.kpr"));
    // add says so too and leaves the project as it was.
    ASSERT_EQ(Kestrel("new p.kpr a.cpp").status, 0);
    const std::string before = ReadFileBytes(dir / "p.kpr");
    EXPECT_EQ(Kestrel("add p.kpr java").status, 1);
    EXPECT_EQ(ReadFileBytes(dir / "p.kpr"), before);
    // The same folder serves a Java project.
    EXPECT_EQ(Kestrel("new j.kpr --language java java").status, 0);
}

TEST_F(CliFailures, FolderWalksSkipBinaryFilesWithOneNoteWhileNamedFilesAreScanned) {
    fs::create_directories(dir / "src" / "sub");
    std::ofstream(dir / "src" / "text.cpp") << "int text;\n";
    WriteFileBytes(dir / "src" / "blob.cpp", std::string("int blob;\n\0\x01\x02", 13));
    WriteFileBytes(dir / "src" / "sub" / "image.h", std::string(100, '\0'));
    // A NUL past the first 8 KB, and UTF-16 text with its byte-order mark, are text.
    WriteFileBytes(dir / "src" / "late.cpp", "int late;\n" + std::string(8192, ' ') + std::string(1, '\0'));
    WriteFileBytes(dir / "src" / "wide.cpp", std::string("\xFF\xFEi\0n\0t\0 \0w\0;\0\n\0", 16));
    const Outcome made = Kestrel("new p.kpr src");
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.err, "kestrel: skipped 2 binary files in folders (a NUL byte in the first 8 KB)\n");
    const std::string tree = Kestrel("tree --files p.kpr").out;
    EXPECT_EQ(tree, "p\n  Implementation\n    late.cpp\n    text.cpp\n    wide.cpp\n");

    // Named one by one, or listed, a file is scanned as it is.
    std::ofstream(dir / "list") << "src/sub/image.h\n";
    const Outcome named = Kestrel("new q.kpr src/blob.cpp --files-from list");
    EXPECT_EQ(named.status, 0);
    EXPECT_EQ(named.err, "");
    EXPECT_EQ(Kestrel("tree --files q.kpr").out, "q\n  Definition\n    image.h\n  Implementation\n    blob.cpp\n");
    // A folder of binary files alone gives nothing.
    EXPECT_EQ(Kestrel("new r.kpr src/sub").status, 1);
}

TEST_F(CliFailures, AProjectPathThroughAFileSaysThatItIsAFile) {
    fs::create_directories(dir / "other");
    std::ofstream(dir / "other" / "real.kst") << "x";
    std::ofstream(dir / "a.cpp") << "int a;\n";
    const std::string file = (dir / "other" / "real.kst").string();
    for (const std::string project : {"other/real.kst/", "other/real.kst/deeper/p.kpr"}) {
        const Outcome made = Kestrel("new " + project + " a.cpp");
        EXPECT_EQ(made.status, 1);
        EXPECT_EQ(made.err, "kestrel: " + (dir / project).string() + ": cannot write the project file: " + file +
                                " is a file, not a folder\n");
    }
    EXPECT_EQ(ReadFileBytes(dir / "other" / "real.kst"), "x");
}

}  // namespace
