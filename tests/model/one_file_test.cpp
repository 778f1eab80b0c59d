#include <gtest/gtest.h>

#include "common/constants.h"
#include "model/one_file.h"
#include "support/error_capture.h"
#include "support/recording_sink.h"

using namespace kestrel;
using Calls = std::vector<std::string>;

namespace {

struct FileFixture : ::testing::Test {
    std::shared_ptr<test::RecordingSink> sink = std::make_shared<test::RecordingSink>();
    FilePtr file = std::make_shared<clsOneFile>();

    FileFixture() {
        file->SetSinkObject(sink);
        file->FileName(u"/proj/src/view.h");
        file->FileType(FILETYPE_DEFINITION);
    }
};

struct Enumerated : ClassEnumerator {
    std::vector<std::string> seen;
    void EnumClass(const std::u16string& Name, const std::u16string& UserData, int32_t UserId) override {
        seen.push_back(ToUtf8(Name) + "|" + ToUtf8(UserData) + "|" + std::to_string(UserId));
    }
};

std::pair<std::u16string, std::u16string> Split(const std::u16string& full) {
    std::pair<std::u16string, std::u16string> out;
    clsOneFile::ExtractClassInfo(full, out.first, out.second);
    return out;
}

}  // namespace

TEST(ExtractClassInfo, SplitsAtTheFirstDoubleColon) {
    using P = std::pair<std::u16string, std::u16string>;
    EXPECT_EQ(Split(u"CFoo::Bar"), (P{u"CFoo", u"Bar"}));
    EXPECT_EQ(Split(u"Bar"), (P{u"Globals", u"Bar"}));
    EXPECT_EQ(Split(u"::Bar"), (P{u"Globals", u"Bar"}));
    EXPECT_EQ(Split(u"  CFoo  ::  Bar "), (P{u"CFoo", u"Bar"}));
    EXPECT_EQ(Split(u"A::B::c"), (P{u"A", u"B::c"}));
    EXPECT_EQ(Split(u" Bar "), (P{u"Globals", u" Bar "}));  // unchanged without "::"
}

TEST_F(FileFixture, DeclarationsGoToTheirClassesCreatedOnFirstUse) {
    file->WriteDeclare__(u"CFoo::Bar", 3, PUBLIC_SCOPE, u"(int)");
    file->WriteVariable__(u"CFoo::m_x", 4, PRIVATE_SCOPE, u"int");
    file->WriteDeclare__(u"main", 9, PRIVATE_SCOPE, u"()");
    file->WriteVariable__(u"::g_count", 1, PRIVATE_SCOPE, u"long");
    file->WriteVariable__(u"CFoo::a, b", 5, PRIVATE_SCOPE, u"int");  // an unsplit list is dropped
    file->WriteEndClass__(u"cfoo", 6);
    file->WriteEndClass__(u"Nowhere", 7);  // ignored
    file->WriteInclude__(u"other.h", 1);
    ASSERT_EQ(file->count(), 2);
    ClassPtr foo = file->item(1);
    EXPECT_EQ(foo->Name, u"CFoo");
    EXPECT_EQ(foo->EndLine, 6);
    EXPECT_EQ(foo->CountFunc(), 1);
    EXPECT_EQ(foo->CountVars(), 1);
    ClassPtr globals = file->item(u"GLOBALS");
    ASSERT_TRUE(globals);
    EXPECT_EQ(globals->func(1)->Scope, PUBLIC_SCOPE);
    EXPECT_EQ(globals->var(1)->Name(), u"g_count");
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction CFoo::Bar /proj/src/view.h", "AddVariable CFoo::m_x /proj/src/view.h",
                                   "AddFunction Globals::main /proj/src/view.h",
                                   "AddVariable Globals::g_count /proj/src/view.h"}));
}

TEST_F(FileFixture, ItemReportsABadIndexWhileGetClassIsQuiet) {
    file->WriteDeclare__(u"CFoo::Bar", 3, PUBLIC_SCOPE, u"()");
    test::ErrorCapture errors;
    EXPECT_EQ(file->GetClass(u"cFOO"), file->item(1));
    EXPECT_EQ(file->GetClass(u"Missing"), nullptr);
    EXPECT_TRUE(errors.reports.empty());
    EXPECT_EQ(file->item(2), nullptr);
    EXPECT_EQ(file->item(u"Missing"), nullptr);
    EXPECT_EQ(errors.Seen(), (Calls{"clsOneFile.cls|Property (Get) item|9", "clsOneFile.cls|Property (Get) item|5"}));
}

TEST_F(FileFixture, FileLevelQueries) {
    file->WriteDeclare__(u"A::f", 10, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"B::g", 20, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"B::f", 30, PUBLIC_SCOPE, u"()");
    file->WriteDeclare__(u"C::h", 20, PUBLIC_SCOPE, u"()");
    file->item(2)->UserData = u"tag";
    file->item(2)->UserId = 7;

    EXPECT_EQ(file->IsFunctionDefined(u"f"), 10);
    EXPECT_EQ(file->IsFunctionDefined(u"F"), -1);
    EXPECT_EQ(file->FindClass_ByUserData(u"tag")->Name, u"B");
    EXPECT_EQ(file->FindClass_ByUserData(u"TAG"), nullptr);
    EXPECT_EQ(file->InProc(25)->Name(), u"g");  // B before C on equal starts
    EXPECT_EQ(file->InProc(31)->Name(), u"f");
    EXPECT_EQ(file->InProc(5), nullptr);

    Enumerated host;
    file->EnumClasses(&host);
    EXPECT_EQ(host.seen, (std::vector<std::string>{"A||0", "B|tag|7", "C||0"}));
    test::ErrorCapture errors;
    file->EnumClasses(nullptr);
    EXPECT_EQ(errors.reports.size(), 1u);

    sink->Take();
    file->AddAllFromTheClass__(u"b", sink.get());
    EXPECT_EQ(sink->Take(), (Calls{"AddFunction B::g /proj/src/view.h", "AddFunction B::f /proj/src/view.h"}));
    file->AddAllFromTheClass__(u"Missing", sink.get());
    EXPECT_TRUE(sink->calls.empty());
}

TEST_F(FileFixture, FileNameIsMadeAbsoluteOnceAndCached) {
    file->FileName(u"src/view.h");
    EXPECT_EQ(file->FileName(), u"/proj/src/view.h");
    file->FileName(u"other.h");  // replaces the stored name, keeps the cache
    EXPECT_EQ(file->RelativeFilename(), u"other.h");
    EXPECT_EQ(file->FileName(), u"/proj/src/view.h");
}

TEST_F(FileFixture, UnparsedFilesAreRenamedButNotScanned) {
    file->FileType(FILETYPE_NOPARSE);
    file->WriteDeclare__(u"A::f", 10, PUBLIC_SCOPE, u"()");
    sink->Take();
    file->UpdateFile();
    EXPECT_EQ(file->RelativeFilename(), u"src/view.h");
    EXPECT_FALSE(file->Dirty);
    EXPECT_EQ(file->count(), 1);
    EXPECT_TRUE(sink->calls.empty());

    file->FileType(FILETYPE_FORM);
    file->UpdateFile();
    EXPECT_EQ(file->count(), 1);
}

TEST_F(FileFixture, WithoutItsControlAFileCannotUpdate) {
    sink.reset();
    test::ErrorCapture errors;
    file->UpdateFile();
    ASSERT_FALSE(errors.reports.empty());
    EXPECT_EQ(errors.reports.back().module, "clsOneFile.cls");
}
