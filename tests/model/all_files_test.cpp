// The project's file collection over real files, and rescans of a file from memory.
#include <gtest/gtest.h>

#include <functional>
#include <sys/stat.h>

#include "common/constants.h"
#include "model/all_files.h"
#include "support/recording_sink.h"
#include "support/scratch.h"
#include "support/text_lines.h"

using namespace kestrel;
using Calls = std::vector<std::string>;
namespace fs = std::filesystem;

namespace {

// A project folder with a header and an implementation of the same class.
struct ProjectFixture : ::testing::Test, test::RecordedFiles<> {
    test::ScratchDir scratch;
    const fs::path& dir = scratch.path();

    ProjectFixture() {
        fs::create_directories(dir / "src");
        Write("src/view.h",
              "class CView\n{\npublic:\n    void Draw(int x);\n    int m_x;\n};\n");
        Write("src/view.cpp", "#include \"view.h\"\n\nvoid CView::Draw( int x )\n{\n}\n\nint main()\n{\n}\n");
        sink->ProjectDir = FromUtf8(dir.string() + "/");
    }
    void Write(const std::string& name, const std::string& text) { test::WriteFileBytes(dir / name, text); }
    std::u16string Path(const std::string& name) { return FromUtf8((dir / name).string()); }
};

struct RescanFixture : ::testing::Test, test::RecordedFiles<> {
    FilePtr file = files->Add(u"/proj/view.h", FILETYPE_FORM);  // a form: Add does not read the disk

    RescanFixture() { file->FileType(FILETYPE_DEFINITION); }  // scanned from memory below
    static std::vector<std::u16string> NamesOf(const clsClassObject::Items& items) {
        std::vector<std::u16string> out;
        for (const ItemPtr& i : items) out.emplace_back(i->Name());
        return out;
    }
};

using Names = std::vector<std::u16string>;

}  // namespace

TEST_F(ProjectFixture, AddShowsScansAndOffersEveryClassNode) {
    FilePtr h = files->Add(Path("src/view.h"), FILETYPE_DEFINITION);
    ASSERT_TRUE(h);
    EXPECT_TRUE(h->Dirty);
    EXPECT_EQ(h->RelativeFilename(), u"src/view.h");
    EXPECT_EQ(h->FileName(), Path("src/view.h"));
    EXPECT_EQ(sink->Take(), (Calls{"AddFile " + (dir / "src/view.h").string(), "AddFunction CView::Draw src/view.h",
                                   "AddVariable CView::m_x src/view.h", "AddClassNode CView src/view.h"}));
    // The same name again is refused.
    EXPECT_EQ(files->Add(Path("src/view.h"), FILETYPE_DEFINITION), nullptr);
    EXPECT_EQ(files->count(), 1);
    EXPECT_TRUE(sink->calls.empty());
}

TEST_F(ProjectFixture, HeaderAndImplementationMeetUnderOneClassKey) {
    FilePtr h = files->Add(Path("src/view.h"), FILETYPE_DEFINITION);
    FilePtr cpp = files->Add(Path("src/view.cpp"), FILETYPE_IMPLEMENTATION);
    ItemPtr declared = h->GetClass(u"CView")->func(1);
    ItemPtr defined = cpp->GetClass(u"cview")->func(1);
    ASSERT_TRUE(declared && defined);
    EXPECT_EQ(declared->KeyVal(), defined->KeyVal());
    EXPECT_EQ(files->FindClass(u"CVIEW", FILETYPE_DEFINITION), h->GetClass(u"CView"));
    EXPECT_EQ(files->FindClass(u"CView", FILETYPE_IMPLEMENTATION), cpp->GetClass(u"CView"));
    EXPECT_EQ(files->FindClass(u"CView", FILETYPE_FORM), nullptr);  // no fallback to other types
    EXPECT_EQ(files->FindClass_File(u"cview", FILETYPE_IMPLEMENTATION), cpp);
    EXPECT_EQ(files->FindFunction(u"main", FILETYPE_IMPLEMENTATION), cpp);
    EXPECT_EQ(files->FindFunction(u"main", FILETYPE_DEFINITION), nullptr);
    h->GetClass(u"CView")->UserData = u"doc";
    EXPECT_EQ(files->FindClass_ByUserData(u"doc", FILETYPE_DEFINITION), h->GetClass(u"CView"));

    test::ClassList host;
    files->EnumAllClasses(&host, FILETYPE_IMPLEMENTATION);
    EXPECT_EQ(host.seen, (Calls{"CView||0", "Globals||0"}));
}

TEST_F(ProjectFixture, ItemFindFileAndRemoveLookups) {
    FilePtr h = files->Add(Path("src/view.h"), FILETYPE_DEFINITION);
    FilePtr bare = files->Add(u"notes.txt", FILETYPE_NOPARSE);
    EXPECT_EQ(files->item(1), h);
    EXPECT_EQ(files->item(3), nullptr);
    EXPECT_EQ(files->item(Path("src/VIEW.h")), nullptr);  // another file, with POSIX paths
    EXPECT_EQ(files->item(u"/anywhere/notes.txt"), bare);  // found by its file name part
    EXPECT_EQ(files->item(u"/anywhere/other.txt"), nullptr);
    EXPECT_EQ(files->FindFile(Path("src/view.h")), h);
    EXPECT_EQ(files->FindFile(Path("src/VIEW.h")), nullptr);
    EXPECT_EQ(files->FindFile(Path("notes.txt")), bare);
    // Removal tells the sink only of a file it has.
    sink->Take();
    EXPECT_FALSE(files->Remove(Path("src/other.h")));
    EXPECT_FALSE(files->Remove(Path("SRC/view.h")));
    EXPECT_TRUE(sink->calls.empty());
    EXPECT_TRUE(files->Remove(Path("src/view.h")));
    EXPECT_EQ(sink->Take(), (Calls{"RemoveFile src/view.h"}));
    EXPECT_EQ(files->count(), 1);
}

TEST_F(ProjectFixture, FileNamesThatDifferOnlyInLetterCaseAreTwoFilesWithPosixPaths) {
    // As in the Linux headers: both files exist side by side.
    fs::create_directories(dir / "include");
    Write("include/xt_RATEEST.h", "class xt_rateest_target_info\n{\npublic:\n    int interval;\n};\n");
    Write("include/xt_rateest.h", "class xt_rateest_match_info\n{\npublic:\n    int flags;\n};\n");
    FilePtr upper = files->Add(Path("include/xt_RATEEST.h"), FILETYPE_DEFINITION);
    FilePtr lower = files->Add(Path("include/xt_rateest.h"), FILETYPE_DEFINITION);
    ASSERT_TRUE(upper && lower);
    EXPECT_EQ(files->count(), 2);
    EXPECT_TRUE(upper->GetClass(u"xt_rateest_target_info"));
    EXPECT_TRUE(lower->GetClass(u"xt_rateest_match_info"));
    EXPECT_EQ(files->item(Path("include/xt_RATEEST.h")), upper);
    EXPECT_EQ(files->item(Path("include/xt_rateest.h")), lower);
    EXPECT_EQ(files->item(Path("include/XT_RATEEST.H")), nullptr);
    EXPECT_TRUE(files->Remove(Path("include/xt_RATEEST.h")));
    EXPECT_EQ(files->count(), 1);
    EXPECT_EQ(files->item(1), lower);
    // Class keys do not change: a class is found in any letter case.
    EXPECT_EQ(files->FindClass(u"XT_RATEEST_MATCH_INFO", FILETYPE_DEFINITION), lower->GetClass(u"xt_rateest_match_info"));
}

TEST(FileNameCase, WindowsPathsStayCaseBlind) {
    test::RecordedFiles<> project;
    project.sink->style = PathStyle::Windows;
    project.sink->ProjectDir = u"C:\\proj\\";
    FilePtr a = project.files->Add(u"C:\\proj\\View.cpp", FILETYPE_NOPARSE);  // listed only: nothing is read
    ASSERT_TRUE(a);
    EXPECT_EQ(project.files->Add(u"C:\\PROJ\\VIEW.CPP", FILETYPE_NOPARSE), nullptr);
    EXPECT_EQ(project.files->item(u"c:\\proj\\view.cpp"), a);
    EXPECT_TRUE(project.files->Remove(u"C:\\Proj\\view.CPP"));
    EXPECT_EQ(project.files->count(), 0);
}

TEST_F(ProjectFixture, UpdateAllFilesCollapsesFirstAndFollowsTheDisk) {
    FilePtr h = files->Add(Path("src/view.h"), FILETYPE_DEFINITION);
    files->Add(Path("src/view.cpp"), FILETYPE_IMPLEMENTATION);
    h->Dirty = false;
    sink->Take();
    Write("src/view.h", "class CView\n{\npublic:\n    int m_x;\n};\n");
    fs::remove(dir / "src/view.cpp");  // a missing file scans as empty
    files->UpdateAllFiles();
    EXPECT_EQ(sink->Take(),
              (Calls{"Collapse", "AddVariable CView::m_x src/view.h", "RemoveFunction CView::Draw src/view.h",
                     "RemoveFunction CView::Draw src/view.cpp", "RemoveClass CView src/view.cpp",
                     "RemoveFunction Globals::main src/view.cpp", "RemoveClass Globals src/view.cpp"}));
    EXPECT_TRUE(h->Dirty);
    files->SetAllDirty();
    EXPECT_TRUE(files->item(2)->Dirty);
    files->RemoveAllFiles__();
    EXPECT_EQ(files->count(), 0);
    EXPECT_TRUE(sink->calls.empty());
}

TEST_F(ProjectFixture, AFileThatBecomesUnreadableScansAsEmptyAndComesBack) {
    FilePtr cpp = files->Add(Path("src/view.cpp"), FILETYPE_IMPLEMENTATION);
    const Calls emptied{"RemoveFunction CView::Draw src/view.cpp", "RemoveClass CView src/view.cpp",
                        "RemoveFunction Globals::main src/view.cpp", "RemoveClass Globals src/view.cpp"};
    const std::function<void()> breakers[] = {
        [&] { fs::create_directory(dir / "src/view.cpp"); },                     // a folder now
        [&] { ASSERT_EQ(::mkfifo((dir / "src/view.cpp").c_str(), 0644), 0); },  // a pipe nobody writes to
    };
    for (auto& breakFile : breakers) {
        sink->Take();
        fs::remove(dir / "src/view.cpp");
        breakFile();
        cpp->UpdateFile();
        EXPECT_EQ(sink->Take(), emptied);
        EXPECT_EQ(files->count(), 1);  // still listed, so a later rescan finds it again
        fs::remove(dir / "src/view.cpp");
        Write("src/view.cpp", "void CView::Draw( int x )\n{\n}\nint main()\n{\n}\n");
        cpp->UpdateFile();
        EXPECT_EQ(cpp->count(), 2);
    }
}

TEST_F(RescanFixture, KeepsWhatWasSeenAgainAppendsWhatIsNewRemovesWhatIsGone) {
    test::TextLines before{u"class CView",          u"{",          u"public:",      u"  void Draw(int x);",
                           u"  void Hide();",       u"  int m_a;", u"  int m_b;",   u"};",
                           u"class COld",           u"{",          u"public:",      u"  void Gone();",
                           u"};"};
    file->UpdateEmbeededFile(before);
    sink->Take();
    ClassPtr view = file->GetClass(u"CView");
    ItemPtr draw = view->func(1);

    test::TextLines after{u"class CView",           u"{",          u"public:",      u"  void Show();",
                          u"  void Draw(int x);",   u"  int m_b;", u"  int m_c;",   u"};"};
    file->UpdateEmbeededFile(after);
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction CView::Show view.h", "AddFunction CView::Draw view.h",
                                   "AddVariable CView::m_b view.h", "AddVariable CView::m_c view.h",
                                   "RemoveVariable CView::m_a view.h", "RemoveFunction CView::Hide view.h",
                                   "RemoveFunction COld::Gone view.h", "RemoveClass COld view.h"}));
    EXPECT_EQ(file->count(), 1);
    EXPECT_EQ(file->GetClass(u"CView"), view);
    EXPECT_EQ(NamesOf(view->Functions()), (Names{u"Draw", u"Show"}));
    EXPECT_EQ(NamesOf(view->Variables()), (Names{u"m_b", u"m_c"}));
    EXPECT_EQ(view->func(1), draw);  // the same object, refreshed
    EXPECT_EQ(draw->Line, 5);
    EXPECT_EQ(view->EndLine, 8);
    EXPECT_TRUE(file->Dirty);
}

TEST_F(RescanFixture, AnEmptyTextSweepsEveryMemberBeforeItsClass) {
    test::TextLines before{u"class A {", u"public:", u"  void f();", u"  int v;", u"};", u"int g;"};
    file->UpdateEmbeededFile(before);
    sink->Take();
    test::TextLines empty{};
    file->UpdateEmbeededFile(empty);
    EXPECT_EQ(sink->Take(), (Calls{"RemoveVariable A::v view.h", "RemoveFunction A::f view.h", "RemoveClass A view.h",
                                   "RemoveVariable Globals::g view.h", "RemoveClass Globals view.h"}));
    EXPECT_EQ(file->count(), 0);
}

TEST_F(RescanFixture, ScansInTheProjectLanguage) {
    sink->language = LANGUAGE_BASIC;
    test::TextLines basic{u"Private Sub Form_Load()", u"End Sub", u"Public Function Twice(x As Integer) As Integer",
                          u"End Function"};
    file->UpdateEmbeededFile(basic);
    EXPECT_EQ(file->IsFunctionDefined(u"Twice"), 3);
}
