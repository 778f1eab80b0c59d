#include <gtest/gtest.h>

#include "project_support.h"
#include "support/error_capture.h"

using namespace kestrel;
using namespace kestrel::test;
using Calls = std::vector<std::string>;

namespace {

// Two scanned-looking files and a form, with host fields at every level.
void BuildSample(Project& p) {
    FilePtr view = p.files->Add(u"/proj/src/view.cpp", FILETYPE_NOPARSE);  // filled by hand below
    view->FileType(FILETYPE_IMPLEMENTATION);
    view->WriteDeclare__(u"CView::Draw", 5, PUBLIC_SCOPE, u"(int x)");
    view->WriteDeclare__(u"CView::Draw", 6, PROTECTED_SCOPE, u"()");
    view->WriteVariable__(u"CView::m_x", 7, PRIVATE_SCOPE, u"int");
    view->WriteVariable__(u"CView::m_name", 8, PRIVATE_SCOPE, u"");
    view->WriteEndClass__(u"CView", 9);
    view->WriteDeclare__(u"main", 20, PUBLIC_SCOPE, u"(int argc, char** argv)");
    view->UserData = u"file tag \u00e9";
    view->UserId = 42;
    view->item(1)->UserData = u"class tag";
    view->item(1)->UserId = -3;
    view->item(1)->func(2)->SetUserData(u"entry tag");
    view->item(1)->func(2)->UserId = 77;

    FilePtr util = p.files->Add(u"/lib/util.h", FILETYPE_NOPARSE);
    util->FileType(FILETYPE_DEFINITION);
    util->WriteVariable__(u"Util::count", 3, PUBLIC_SCOPE, u"static int");

    p.files->Add(u"/proj/main.frm", FILETYPE_FORM);
    p.host.language = LANGUAGE_BASIC;
    p.host.id = 1234;
}

// Files directly inside: a save must leave no temporary behind.
int RegularFiles(const ScratchDir& dir) {
    int n = 0;
    for (auto& e : std::filesystem::directory_iterator(dir.path())) n += e.is_regular_file();
    return n;
}

std::string Dump(const clsAllFiles& files) {
    std::string out;
    auto item = [&](const ItemPtr& i, bool withKey) {
        out += "    " + ToUtf8(i->Name()) + "|" + std::to_string(i->Line) + "|" + std::to_string(i->Scope) + "|" +
               std::to_string(i->UserId) + "|" + ToUtf8(i->UserData()) + "|" + ToUtf8(i->Params()) +
               (withKey ? "|" + ToUtf8(i->KeyVal()) : "") + "\n";
    };
    for (const FilePtr& f : files.Files()) {
        out += ToUtf8(f->GetTrueFile()) + "|" + std::to_string(f->FileType()) + "|" + std::to_string(f->UserId) + "|" +
               ToUtf8(f->UserData) + "\n";
        for (const ClassPtr& c : f->Classes()) {
            out += "  " + ToUtf8(c->Name) + "|" + std::to_string(c->EndLine) + "|" + ToUtf8(c->UserData) + "|" +
                   std::to_string(c->UserId) + "\n";
            for (const ItemPtr& v : c->Variables()) item(v, false);
            for (const ItemPtr& fn : c->Functions()) item(fn, true);
        }
    }
    return out;
}

}  // namespace

TEST(ProjectFile, AnEmptyProjectIsTwentySixBytes) {
    ScratchDir dir;
    Project p;
    p.host.fileName = FromUtf8(dir / "empty.kpr");
    p.host.language = LANGUAGE_JAVA;
    p.host.id = 5;
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(ReadFileBytes(dir / "empty.kpr"), S("KESTREL1.1") + N(1) + N(5) + N(0));
}

TEST(ProjectFile, SaveLoadSaveGivesTheSameModelAndTheSameBytes) {
    ScratchDir dir;
    Project first;
    BuildSample(first);
    first.host.fileName = FromUtf8(dir / "p.kpr");
    ASSERT_TRUE(first.Save());
    for (const FilePtr& f : first.files->Files()) EXPECT_FALSE(f->Dirty);

    Project second;
    ASSERT_TRUE(second.Load(dir / "p.kpr"));
    // Saved before anything asks a class for its members, and again below after all have.
    second.host.fileName = FromUtf8(dir / "untouched.kpr");
    ASSERT_TRUE(second.Save());
    EXPECT_EQ(ReadFileBytes(dir / "untouched.kpr"), ReadFileBytes(dir / "p.kpr"));
    EXPECT_EQ(second.host.language, LANGUAGE_BASIC);
    EXPECT_EQ(second.host.id, 1234);
    EXPECT_EQ(Dump(*second.files), Dump(*first.files));
    ASSERT_EQ(second.files->count(), 3);
    EXPECT_EQ(second.files->item(2)->FileName(), u"/lib/util.h");
    EXPECT_EQ(second.files->item(u"/LIB/UTIL.H"), second.files->item(2));
    EXPECT_EQ(second.files->item(2)->item(1)->var(1)->KeyVal(), u"count");
    for (const FilePtr& f : second.files->Files()) EXPECT_FALSE(f->Dirty);
    // Classes with entries get a placeholder node, then the file its node.
    EXPECT_EQ(second.sink->Take(),
              (Calls{"AddClassNode CView src/view.cpp", "AddClassNode Globals src/view.cpp", "AddFile src/view.cpp",
                     "AddClassNode Util ../lib/util.h", "AddFile ../lib/util.h", "AddFile main.frm"}));

    second.host.fileName = FromUtf8(dir / "again.kpr");
    ASSERT_TRUE(second.Save());
    EXPECT_EQ(ReadFileBytes(dir / "again.kpr"), ReadFileBytes(dir / "p.kpr"));
}

TEST(ProjectFile, VersionTenFilesCarryNoParameterText) {
    ScratchDir dir;
    WriteFileBytes(dir / "old.kpr", S("KESTREL1.0") + N(0) + N(9) + N(1) + S("a.cpp") + N(FILETYPE_IMPLEMENTATION) + N(1) +
                                    N(0) + S("") + S("A") + N(0) + S("") + N(0) + N(0) + N(1) +
                                    ItemRecord("f", 4, "", false));
    Project p;
    ASSERT_TRUE(p.Load(dir / "old.kpr"));
    ClassPtr a = p.files->item(1)->item(1);
    ASSERT_EQ(a->CountFunc(), 1);
    EXPECT_EQ(a->func(u"f")->Line, 4);
}

TEST(ProjectFile, SignatureVersionReadsLikeANumber) {
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL1.1"), 11);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL1.0"), 10);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL 2 "), 20);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL.25"), 2);  // 2.5 rounds half to even
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL.35"), 4);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTRELabc"), 0);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL1e1"), 100);
    EXPECT_EQ(clsSaveIntoFile::VersionOf(u"KESTREL1x1"), 10);
}

TEST(ProjectFile, RefusedFiles) {
    ScratchDir dir;
    Project p;
    p.host.fileName = u"before";
    // A signature that differs only in letter case empties FileName.
    WriteFileBytes(dir / "case.kpr", S("Kestrel1.1") + N(0) + N(0) + N(0));
    EXPECT_FALSE(p.Load(dir / "case.kpr"));
    EXPECT_EQ(p.host.fileName, u"");
    // A first number other than 10, from -32768 on, leaves FileName as it was.
    p.host.fileName = u"before";
    WriteFileBytes(dir / "text.kpr", "just some text");
    EXPECT_FALSE(p.Load(dir / "text.kpr"));
    WriteFileBytes(dir / "low.kpr", N(-32768) + N(0) + N(0));
    EXPECT_FALSE(p.Load(dir / "low.kpr"));
    WriteFileBytes(dir / "empty.kpr", "");
    EXPECT_FALSE(p.Load(dir / "empty.kpr"));
    EXPECT_EQ(p.host.fileName, u"before");
    // A missing file names the file a later Save creates.
    EXPECT_FALSE(p.Load(dir / "missing.kpr"));
    EXPECT_EQ(p.host.fileName, FromUtf8(dir / "missing.kpr"));
    EXPECT_EQ(p.files->count(), 0);
    EXPECT_TRUE(p.sink->calls.empty());
}

TEST(ProjectFile, AFileWithoutSignatureStartsWithItsLanguageBelowTheThreshold) {
    ScratchDir dir;
    WriteFileBytes(dir / "raw.kpr", N(-40000) + N(3) + N(1) + S("b.bas") + N(FILETYPE_IMPLEMENTATION) + N(1) + N(0) + S("") +
                                    S("Globals") + N(0) + S("") + N(0) + N(0) + N(1) + ItemRecord("Main", 2, "", false));
    Project p;
    ASSERT_TRUE(p.Load(dir / "raw.kpr"));
    EXPECT_EQ(p.host.language, -40000);
    EXPECT_EQ(p.host.id, 3);
    EXPECT_EQ(p.files->item(1)->item(1)->func(1)->Name(), u"Main");
}

TEST(ProjectFile, DuplicateEntriesAreRenamedDuplicateFilesDropped) {
    ScratchDir dir;
    std::string cls = S("C") + N(0) + S("") + N(0) + N(3) + ItemRecord("count", 1) + ItemRecord("COUNT", 2) +
                      ItemRecord("count", 3) + N(3) + ItemRecord("f", 4, "(int)") + ItemRecord("F", 5, "( int )") +
                      ItemRecord("count#1", 6);
    std::string fileRecord = S("a.cpp") + N(FILETYPE_IMPLEMENTATION) + N(1) + N(0) + S("") + cls;
    std::string second = S("b.cpp") + N(FILETYPE_IMPLEMENTATION) + N(1) + N(0) + S("") + S("B") + N(0) + S("") + N(0) +
                         N(0) + N(0);
    WriteFileBytes(dir / "dups.kpr", S("KESTREL1.1") + N(0) + N(0) + N(3) + fileRecord + fileRecord + second);
    Project p;
    ASSERT_TRUE(p.Load(dir / "dups.kpr"));
    ASSERT_EQ(p.files->count(), 2);  // the repeated a.cpp is read past and dropped
    ClassPtr c = p.files->item(1)->item(1);
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

TEST(ProjectFile, ALoadedClassFirstAskedByKeyHasItsDuplicatesRenamedAlready) {
    // Loading files a class's members only when it is first asked for them: a lookup
    // by a renamed key must find them renamed, whatever the question is.
    ScratchDir dir;
    std::string cls = S("C") + N(0) + S("") + N(0) + N(2) + ItemRecord("n", 1) + ItemRecord("N", 2) + N(2) +
                      ItemRecord("f", 3, "(int)") + ItemRecord("F", 4, "( int )");
    WriteFileBytes(dir / "first.kpr", S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.cpp") + N(FILETYPE_IMPLEMENTATION) +
                                      N(1) + N(0) + S("") + cls);
    Project p;
    ASSERT_TRUE(p.Load(dir / "first.kpr"));
    ClassPtr c = p.files->item(1)->item(1);
    ASSERT_NE(c->func(u"f#1"), nullptr);
    EXPECT_EQ(c->func(u"f#1")->Line, 4);
    EXPECT_EQ(c->var(u"N#1")->Line, 2);
    EXPECT_EQ(c->CountFunc(), 2);
    EXPECT_EQ(c->CountVars(), 2);
}

TEST(ProjectFile, ALoadedKeyThatMeetsARenamedOneIsRenamedInTurn) {
    ScratchDir dir;
    std::string cls = S("C") + N(0) + S("") + N(0) + N(2) + ItemRecord("n", 1) + ItemRecord("N#1", 2, "long") +
                      N(4) + ItemRecord("f", 3, "(int)") + ItemRecord("F", 4, "( int )") + ItemRecord("f#1", 5) +
                      ItemRecord("x", 6, "( a b )");
    WriteFileBytes(dir / "renamed.kpr", S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.cpp") +
                                        N(FILETYPE_IMPLEMENTATION) + N(1) + N(0) + S("") + cls);
    Project p;
    ASSERT_TRUE(p.Load(dir / "renamed.kpr"));
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
    p.host.fileName = FromUtf8(dir / "renamed.kpr");
    const std::string before = ReadFileBytes(dir / "renamed.kpr");
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(ReadFileBytes(dir / "renamed.kpr"), before);
}

TEST(ProjectFile, ARepeatedClassEndsThatFileReaderButNotTheLoad) {
    ScratchDir dir;
    std::string emptyClass = S("A") + N(0) + S("") + N(0) + N(0) + N(0);
    WriteFileBytes(dir / "c.kpr", S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.cpp") + N(1) + N(3) + N(0) + S("") +
                                  emptyClass + emptyClass + S("Z") + N(0) + S("") + N(0) + N(0) + N(0));
    ErrorCapture errors;
    Project p;
    EXPECT_TRUE(p.Load(dir / "c.kpr"));
    EXPECT_EQ(errors.Seen(), Calls{"clsOneFile.cls|Sub LoadFromBinaryFile|457"});
    ASSERT_EQ(p.files->count(), 1);
    EXPECT_EQ(p.files->item(1)->count(), 1);
}

TEST(ProjectFile, BackupKeepsThePreviousFile) {
    ScratchDir dir;
    Project p;
    p.host.fileName = FromUtf8(dir / "proj.kst");
    p.host.backup = true;
    ASSERT_TRUE(p.Save());  // nothing to back up yet
    EXPECT_FALSE(std::filesystem::exists(dir / "proj.kst.bak"));
    std::string previous = ReadFileBytes(dir / "proj.kst");
    p.host.id = 99;
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(ReadFileBytes(dir / "proj.kst.bak"), previous);
    EXPECT_NE(ReadFileBytes(dir / "proj.kst"), previous);
    // Without the switch the backup is left alone.
    p.host.backup = false;
    p.host.id = 100;
    ASSERT_TRUE(p.Save());
    EXPECT_EQ(ReadFileBytes(dir / "proj.kst.bak"), previous);
    EXPECT_EQ(RegularFiles(dir), 2);
}

TEST(ProjectFile, ASaveThatCannotWriteAnswersFalseAndKeepsTheOldFile) {
    ScratchDir dir;
    Project p;
    p.host.fileName = FromUtf8(dir / "missing-folder/p.kpr");
    EXPECT_FALSE(p.Save());
    p.host.fileName = u"";
    EXPECT_FALSE(p.Save());
    // A project name taken by a folder: the rename fails and the folder stays.
    std::filesystem::create_directories(dir.path() / "taken" / "inside");
    p.host.fileName = FromUtf8(dir / "taken");
    EXPECT_FALSE(p.Save());
    EXPECT_TRUE(std::filesystem::is_directory(dir.path() / "taken" / "inside"));
    EXPECT_EQ(RegularFiles(dir), 0);
    // A read-only project file stays as it was, even for the superuser.
    p.host.fileName = FromUtf8(dir / "p.kpr");
    WriteFileBytes(dir / "p.kpr", "old bytes");
    std::filesystem::permissions(dir.path() / "p.kpr", std::filesystem::perms::owner_read | std::filesystem::perms::group_read);
    EXPECT_FALSE(p.Save());
    EXPECT_EQ(ReadFileBytes(dir / "p.kpr"), "old bytes");
    EXPECT_EQ(RegularFiles(dir), 1);
    std::filesystem::permissions(dir.path() / "p.kpr", std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
    EXPECT_TRUE(p.Save());
}
