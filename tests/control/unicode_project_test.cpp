// Projects whose paths, names and host data go beyond Latin-1, whose file names differ
// only in letter case, and whose strings are longer than a reader takes: made, updated
// and dumped by the real kestrel program over real files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "common/text.h"
#include "control/headless_project.h"
#include "model/class_object.h"
#include "model/one_item.h"
#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel;
using namespace kestrel::test;

class UnicodeProject : public ::testing::Test {
protected:
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }
    void Write(const std::string& name, const std::string& text) {
        fs::create_directories((dir / name).parent_path());
        std::ofstream(dir / name, std::ios::binary) << text;
    }
    // Every line of `kestrel dump` that holds `part`.
    std::string DumpLinesWith(const std::string& project, const std::string& part) {
        Outcome dump = Kestrel("dump " + project);
        EXPECT_EQ(dump.status, 0) << dump.err;
        std::string lines, line;
        std::istringstream in(dump.out);
        while (std::getline(in, line))
            if (line.find(part) != std::string::npos) lines += line + "\n";
        return lines;
    }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

// Cyrillic and Japanese folders, a file named with a character outside the Basic
// Multilingual Plane, a Chinese function name and a mathematical letter outside the
// plane in its parameters. (Class names beyond Latin-1 are the model tests' part: the
// scanner does not take them from a class header.)
const std::string kFolder = "\xd0\xbf\xd1\x80\xd0\xbe\xd0\xb5\xd0\xba\xd1\x82/\xe3\x83\x87\xe3\x83\xbc\xe3\x82\xbf";  // проект/データ
const std::string kFile = kFolder + "/\xf0\x9f\x98\x80.h";                                                      // 😀.h
const std::string kClass = "Widget";
const std::string kParams = "(int \xf0\x9d\x91\xa5)";  // (int 𝑥)
const std::string kMethod = "\xe6\x8f\x8f\xe7\x94\xbb";                                                          // 描画
const std::string kUserData = "\xf0\x9f\x93\x81 \xe3\x83\xa1\xe3\x83\xa2";                                       // 📁 メモ

}  // namespace

TEST_F(UnicodeProject, PathsNamesAndUserDataSurviveNewUpdateAndDump) {
    Write(kFile, "class " + kClass + "\n{\npublic:\n    void " + kMethod + kParams + ";\n};\n");
    Outcome made = Kestrel("new p.kpr '" + kFolder + "'");
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(ReadFileBytes(dir / "p.kpr").substr(4, 10), "KESTREL1.2");
    EXPECT_EQ(DumpLinesWith("p.kpr", "file "), "file \"" + kFile + "\" type 2 classes 1 userid 0 userdata \"\"\n");
    EXPECT_EQ(DumpLinesWith("p.kpr", "function "), "    function \"" + kMethod + "\" line 4 scope 1 userid 0 userdata \"\" "
                                                   "params \"" + kParams + "\" key \"" + kMethod + "(INT\xf0\x9d\x91\xa5)\"\n");

    // The host tags the class; the command line has no way to, a host does it through
    // the library.
    {
        auto host = HeadlessProject::Create();
        ASSERT_TRUE(host->Load(FromUtf8((dir / "p.kpr").string())));
        host->files()->item(1)->UserData = FromUtf8(kUserData);
        host->files()->item(1)->GetClass(FromUtf8(kClass))->UserData = FromUtf8(kUserData);
        ASSERT_TRUE(host->Save());
    }
    // Updated from the disk, the file is found again under its name: its new member
    // comes in and the host's tags stay.
    const std::string added = "\xd0\xb4\xd0\xbe\xd0\xb1\xd0\xb0\xd0\xb2\xd0\xb8\xd1\x82\xd1\x8c";  // добавить
    Write(kFile, "class " + kClass + "\n{\npublic:\n    void " + kMethod + kParams + ";\n    void " + added + "();\n};\n");
    Outcome updated = Kestrel("update p.kpr");
    ASSERT_EQ(updated.status, 0) << updated.err;
    EXPECT_EQ(DumpLinesWith("p.kpr", "userdata \"" + kUserData),
              "file \"" + kFile + "\" type 2 classes 1 userid 0 userdata \"" + kUserData + "\"\n"
              "  class \"" + kClass + "\" endline 6 userdata \"" + kUserData + "\" userid 0 variables 0 functions 2\n");
    EXPECT_NE(DumpLinesWith("p.kpr", "function ").find("\"" + added + "\" line 5"), std::string::npos);
}

TEST_F(UnicodeProject, FileNamesThatDifferOnlyInLetterCaseAreBothKept) {
    Write("xt_RATEEST.h", "class xt_rateest_target_info\n{\npublic:\n    int interval;\n};\n");
    Write("xt_rateest.h", "class xt_rateest_match_info\n{\npublic:\n    int flags;\n};\n");
    Outcome made = Kestrel("new p.kpr xt_RATEEST.h xt_rateest.h");
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.err.find("already in the project"), std::string::npos) << made.err;
    EXPECT_EQ(DumpLinesWith("p.kpr", "class "),
              "  class \"xt_rateest_target_info\" endline 5 userdata \"\" userid 0 variables 1 functions 0\n"
              "  class \"xt_rateest_match_info\" endline 5 userdata \"\" userid 0 variables 1 functions 0\n");
    ASSERT_EQ(Kestrel("update p.kpr").status, 0);
    EXPECT_EQ(DumpLinesWith("p.kpr", "file "), "file \"xt_RATEEST.h\" type 2 classes 1 userid 0 userdata \"\"\n"
                                               "file \"xt_rateest.h\" type 2 classes 1 userid 0 userdata \"\"\n");
}

TEST_F(UnicodeProject, AParameterListTooLongToReadIsCutAndWhatFollowsItStays) {
    std::string params;
    for (int i = 0; i < 8000; ++i) params += "int a" + std::to_string(i) + ", ";  // about 70,000 bytes
    Write("long.cpp", "void Long(" + params + "int last)\n{\n}\n\nvoid After()\n{\n}\n");
    Write("next.cpp", "void Next()\n{\n}\n");
    Outcome made = Kestrel("new p.kpr long.cpp next.cpp");
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(DumpLinesWith("p.kpr", "file "), "file \"long.cpp\" type 1 classes 1 userid 0 userdata \"\"\n"
                                               "file \"next.cpp\" type 1 classes 1 userid 0 userdata \"\"\n");
    const std::string functions = DumpLinesWith("p.kpr", "function ");
    // The parameter text keeps its first 31,999 characters.
    const std::string cut = ("(" + params).substr(0, 31999);
    EXPECT_NE(functions.find("\"Long\" line 1 scope 1 userid 0 userdata \"\" params \"" + cut + "\" key"), std::string::npos);
    EXPECT_NE(functions.find("\"After\" line 5"), std::string::npos);
    EXPECT_NE(functions.find("\"Next\" line 1"), std::string::npos);
    // An update reads the project it wrote, all of it. (The cut function differs from
    // the one scanned, so it is replaced and goes to the end of its class.)
    Outcome updated = Kestrel("update p.kpr");
    ASSERT_EQ(updated.status, 0) << updated.err;
    const std::string again = DumpLinesWith("p.kpr", "function ");
    EXPECT_EQ(again.size(), functions.size());
    for (const char* name : {"\"Long\" line 1", "\"After\" line 5", "\"Next\" line 1"})
        EXPECT_NE(again.find(name), std::string::npos) << name;
}
