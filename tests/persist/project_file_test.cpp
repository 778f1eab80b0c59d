#include <gtest/gtest.h>

#include "project_support.h"

using namespace kestrel;
using namespace kestrel::test;
using Calls = std::vector<std::string>;
using ProjectFile = ProjectOnDisk;

namespace {

// Files directly inside: a save must leave no temporary behind.
int RegularFiles(const ScratchDir& dir) {
    int n = 0;
    for (auto& e : std::filesystem::directory_iterator(dir.path())) n += e.is_regular_file();
    return n;
}

}  // namespace

TEST_F(ProjectFile, SaveLoadSaveGivesTheSameModelAndTheSameBytes) {
    Project first;
    BuildSample(first);
    ASSERT_TRUE(SaveAs("first.kpr", first));
    for (const FilePtr& f : first.files->Files()) EXPECT_FALSE(f->Dirty);

    ASSERT_TRUE(p.Load(dir / "first.kpr"));
    // Saved before anything asks a class for its members, and again below after all have.
    ASSERT_TRUE(SaveAs("untouched.kpr"));
    EXPECT_EQ(Bytes("untouched.kpr"), Bytes("first.kpr"));
    EXPECT_EQ(p.host.language, LANGUAGE_BASIC);
    EXPECT_EQ(p.host.id, 1234);
    ASSERT_EQ(p.files->count(), 3);
    EXPECT_EQ(p.files->item(2)->FileName(), u"/lib/util.h");
    EXPECT_EQ(p.files->item(u"/lib/util.h"), p.files->item(2));
    EXPECT_EQ(p.files->item(2)->item(1)->var(1)->KeyVal(), u"count");
    for (const FilePtr& f : p.files->Files()) EXPECT_FALSE(f->Dirty);
    // Classes with entries get a placeholder node, then the file its node.
    EXPECT_EQ(p.sink->Take(),
              (Calls{"AddClassNode CView src/view.cpp", "AddClassNode Globals src/view.cpp", "AddFile src/view.cpp",
                     "AddClassNode Util ../lib/util.h", "AddFile ../lib/util.h", "AddFile main.frm"}));
    ASSERT_TRUE(SaveAs("again.kpr"));
    EXPECT_EQ(Bytes("again.kpr"), Bytes("first.kpr"));
}

TEST(ProjectFileSignature, VersionReadsLikeANumber) {
    const std::pair<std::u16string, int32_t> cases[] = {
        {u"KESTREL1.1", 11}, {u"KESTREL1.0", 10}, {u"KESTREL1.2", 12}, {u"KESTREL 2 ", 20},
        {u"KESTREL.25", 2},  // 2.5: half to even
        {u"KESTREL.35", 4},  {u"KESTRELabc", 0},  {u"KESTREL1e1", 100}, {u"KESTREL1x1", 10},
    };
    for (const auto& [signature, version] : cases)
        EXPECT_EQ(clsSaveIntoFile::VersionOf(signature), version) << ToUtf8(signature);
}

TEST_F(ProjectFile, RefusedFiles) {
    p.host.fileName = u"before";
    // A signature that differs only in letter case empties FileName.
    EXPECT_FALSE(LoadBytes(ProjectBytes({}, "Kestrel1.1")));
    EXPECT_EQ(p.host.fileName, u"");
    // A first number other than 10, from -32768 on, leaves FileName as it was.
    p.host.fileName = u"before";
    for (const std::string& bytes : {std::string("just some text"), N(-32768) + N(0) + N(0), std::string()})
        EXPECT_FALSE(LoadBytes(bytes));
    EXPECT_EQ(p.host.fileName, u"before");
    // A missing file names the file a later Save creates.
    EXPECT_FALSE(p.Load(dir / "missing.kpr"));
    EXPECT_EQ(p.host.fileName, FromUtf8(dir / "missing.kpr"));
    EXPECT_EQ(p.files->count(), 0);
    EXPECT_TRUE(p.sink->calls.empty());
}

TEST_F(ProjectFile, OlderFilesCarryNoParameterText) {
    ASSERT_TRUE(LoadBytes(ProjectBytes({FileRecord("a.cpp", {ClassRecord("A", {}, {ItemRecord("f", 4, "", false)})})},
                                       "KESTREL1.0")));
    ClassPtr a = p.files->item(1)->item(1);
    ASSERT_EQ(a->CountFunc(), 1);
    EXPECT_EQ(a->func(u"f")->Line, 4);
    // A file without signature starts with its language, below the threshold.
    Project raw;
    WriteFileBytes(dir / "raw.kpr", N(-40000) + N(3) + N(1) +
                                        FileRecord("b.bas", {ClassRecord("Globals", {}, {ItemRecord("Main", 2, "", false)})}));
    ASSERT_TRUE(raw.Load(dir / "raw.kpr"));
    EXPECT_EQ(raw.host.language, -40000);
    EXPECT_EQ(raw.host.id, 3);
    EXPECT_EQ(raw.files->item(1)->item(1)->func(1)->Name(), u"Main");
}

TEST_F(ProjectFile, DuplicateEntriesAreRenamedDuplicateFilesDropped) {
    const std::string a = FileRecord(
        "a.cpp", {ClassRecord("C", {ItemRecord("count", 1), ItemRecord("COUNT", 2), ItemRecord("count", 3)},
                              {ItemRecord("f", 4, "(int)"), ItemRecord("F", 5, "( int )"), ItemRecord("count#1", 6)})});
    ASSERT_TRUE(LoadBytes(ProjectBytes({a, a, FileRecord("b.cpp", {ClassRecord("B")})})));
    ASSERT_EQ(p.files->count(), 2);  // the repeated a.cpp is read past and dropped
    ClassPtr c = p.files->item(1)->item(1);
    // Members are filed when the class is first asked for them: a first question by a
    // renamed key must find them renamed already.
    EXPECT_EQ(c->func(u"f#1")->Line, 5);
    EXPECT_EQ(c->var(u"count#1")->Line, 2);
    ASSERT_EQ(c->CountVars(), 3);
    EXPECT_EQ(c->var(1)->KeyVal(), u"count");
    EXPECT_EQ(c->var(2)->KeyVal(), u"COUNT#1");
    EXPECT_EQ(c->var(3)->KeyVal(), u"count#2");
    ASSERT_EQ(c->CountFunc(), 3);
    EXPECT_EQ(c->func(1)->KeyVal(), u"F(INT)");
    EXPECT_EQ(c->func(2)->KeyVal(), u"F#1");  // retries use the plain name
    EXPECT_EQ(c->func(3)->KeyVal(), u"COUNT#1");
    // The class without entries is loaded but gets no node.
    EXPECT_EQ(p.files->item(2)->count(), 1);
    EXPECT_EQ(p.sink->Take(), (Calls{"AddClassNode C a.cpp", "AddFile a.cpp", "AddClassNode C a.cpp", "AddFile b.cpp"}));
}

TEST_F(ProjectFile, ALoadedKeyThatMeetsARenamedOneIsRenamedInTurn) {
    ASSERT_TRUE(LoadBytes(ProjectBytes({FileRecord(
        "a.cpp", {ClassRecord("C", {ItemRecord("n", 1), ItemRecord("N#1", 2, "long")},
                              {ItemRecord("f", 3, "(int)"), ItemRecord("F", 4, "( int )"), ItemRecord("f#1", 5),
                               ItemRecord("x", 6, "( a b )")})})})));
    ClassPtr c = p.files->item(1)->item(1);
    ASSERT_EQ(c->CountFunc(), 4);
    EXPECT_EQ(c->func(2)->KeyVal(), u"F#1");
    EXPECT_EQ(c->func(3)->KeyVal(), u"f#1#1");  // its own key was taken by the renamed F
    EXPECT_EQ(c->func(4)->KeyVal(), u"X(AB)");
    EXPECT_EQ(c->func(u"x(ab)")->Line, 6);
    EXPECT_EQ(c->func(u"F#1")->Line, 4);
    EXPECT_EQ(c->func(u"f#1#1")->Line, 5);
    ASSERT_EQ(c->CountVars(), 2);
    EXPECT_EQ(c->var(u"n#1")->Line, 2);  // a variable's name is its key, "#" or not
    // Saved again, the file is the same.
    const std::string before = Bytes("p.kpr");
    ASSERT_TRUE(SaveAs("p.kpr"));
    EXPECT_EQ(Bytes("p.kpr"), before);
}

TEST_F(ProjectFile, ARepeatedClassEndsThatFileReaderButNotTheLoad) {
    ErrorCapture errors;
    EXPECT_TRUE(LoadBytes(ProjectBytes({FileRecord("a.cpp", {ClassRecord("A"), ClassRecord("A"), ClassRecord("Z")})})));
    EXPECT_EQ(errors.Seen(), Calls{"clsOneFile.cls|Sub LoadFromBinaryFile|457"});
    ASSERT_EQ(p.files->count(), 1);
    EXPECT_EQ(p.files->item(1)->count(), 1);
}

TEST_F(ProjectFile, AnEmptyProjectIsTwentySixBytesAndABackupKeepsThePreviousFile) {
    p.host.language = LANGUAGE_JAVA;
    p.host.id = 5;
    p.host.backup = true;
    ASSERT_TRUE(SaveAs("proj.kst"));  // nothing to back up yet
    EXPECT_FALSE(std::filesystem::exists(dir / "proj.kst.bak"));
    const std::string previous = Bytes("proj.kst");
    EXPECT_EQ(previous, S("KESTREL1.1") + N(1) + N(5) + N(0));
    p.host.id = 99;
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(Bytes("proj.kst.bak"), previous);
    EXPECT_NE(Bytes("proj.kst"), previous);
    // Without the switch the backup is left alone.
    p.host.backup = false;
    p.host.id = 100;
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(Bytes("proj.kst.bak"), previous);
    EXPECT_EQ(RegularFiles(dir), 2);
}

TEST_F(ProjectFile, ASaveThatCannotWriteAnswersFalseAndKeepsTheOldFile) {
    namespace fs = std::filesystem;
    EXPECT_FALSE(SaveAs("missing-folder/p.kpr"));
    p.host.fileName = u"";
    EXPECT_FALSE(p.Save());
    // A project name taken by a folder: the rename fails and the folder stays.
    fs::create_directories(dir.path() / "taken" / "inside");
    EXPECT_FALSE(SaveAs("taken"));
    EXPECT_TRUE(fs::is_directory(dir.path() / "taken" / "inside"));
    EXPECT_EQ(RegularFiles(dir), 0);
    // A read-only project file stays as it was, even for the superuser.
    WriteFileBytes(dir / "p.kpr", "old bytes");
    fs::permissions(dir.path() / "p.kpr", fs::perms::owner_read | fs::perms::group_read);
    EXPECT_FALSE(SaveAs("p.kpr"));
    EXPECT_EQ(Bytes("p.kpr"), "old bytes");
    EXPECT_EQ(RegularFiles(dir), 1);
    fs::permissions(dir.path() / "p.kpr", fs::perms::owner_write, fs::perm_options::add);
    EXPECT_TRUE(p.Save());
}

TEST_F(ProjectFile, FilesWhoseNamesDifferOnlyInLetterCaseLoadAsTwoWithPosixPaths) {
    const std::string bytes = ProjectBytes({FileRecord("xt_RATEEST.h", {ClassRecord("A", {ItemRecord("a", 1)})}),
                                            FileRecord("xt_rateest.h", {ClassRecord("B", {ItemRecord("b", 2)})})});
    ASSERT_TRUE(LoadBytes(bytes));
    ASSERT_EQ(p.files->count(), 2);
    EXPECT_EQ(p.files->item(u"/proj/xt_rateest.h")->item(1)->Name, u"B");
    ASSERT_TRUE(SaveAs("again.kpr"));
    EXPECT_EQ(Bytes("again.kpr"), bytes);
    // With Windows paths they are one file: the second is dropped, as any repeated file.
    Project windows;
    windows.sink->style = PathStyle::Windows;
    windows.sink->ProjectDir = u"C:\\proj\\";
    ASSERT_TRUE(windows.Load(dir / "p.kpr"));
    ASSERT_EQ(windows.files->count(), 1);
    EXPECT_EQ(windows.files->item(1)->RelativeFilename(), u"xt_RATEEST.h");
}
