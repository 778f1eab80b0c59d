#include <gtest/gtest.h>

#include "common/constants.h"
#include "model/all_files.h"
#include "support/recording_sink.h"
#include "support/text_lines.h"

using namespace kestrel;
using Calls = std::vector<std::string>;

namespace {

struct RescanFixture : ::testing::Test {
    std::shared_ptr<test::RecordingSink> sink = std::make_shared<test::RecordingSink>();
    std::shared_ptr<clsAllFiles> files = std::make_shared<clsAllFiles>();
    FilePtr file;

    RescanFixture() {
        files->SetSinkObject__(sink);
        // Listed as a form so Add does not read the disk; scanned from memory below.
        file = files->Add(u"/proj/view.h", FILETYPE_FORM);
        file->FileType(FILETYPE_DEFINITION);
    }
    std::vector<std::u16string> NamesOf(const clsClassObject::Items& items) {
        std::vector<std::u16string> out;
        for (const ItemPtr& i : items) out.emplace_back(i->Name());
        return out;
    }
};

using Names = std::vector<std::u16string>;

}  // namespace

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

TEST_F(RescanFixture, UpdateFileInTheProjectLanguageMakesTheNameRelative) {
    EXPECT_EQ(file->RelativeFilename(), u"view.h");
    sink->language = LANGUAGE_BASIC;
    test::TextLines basic{u"Private Sub Form_Load()", u"End Sub", u"Public Function Twice(x As Integer) As Integer",
                          u"End Function"};
    file->UpdateEmbeededFile(basic);
    ClassPtr globals = file->GetClass(u"Globals");
    ASSERT_TRUE(globals);
    EXPECT_GE(globals->IsFunctionDefined(u"Form_Load"), 1);
    EXPECT_GE(globals->IsFunctionDefined(u"Twice"), 3);
}
