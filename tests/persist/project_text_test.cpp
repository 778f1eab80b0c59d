// Texts of every kind in the project file: one byte per unit while they fit, UTF-8 in a
// version 1.2 file once one does not, and strings too long for a reader cut short.
#include <gtest/gtest.h>

#include "project_support.h"

using namespace kestrel;
using namespace kestrel::test;
using ProjectText = ProjectOnDisk;

namespace {

// Cyrillic, CJK and a character outside the Basic Multilingual Plane, in a file's path,
// a class name and host data at every level.
void BuildWorldwide(Project& p) {
    FilePtr f = p.Listed(u"/proj/\u043f\u0440\u043e\u0435\u043a\u0442/\u30c7\u30fc\u30bf.cpp", FILETYPE_IMPLEMENTATION);
    f->WriteDeclare__(u"\u041a\u043b\u0430\u0441\u0441::\u6570\u636e", 3, PUBLIC_SCOPE, u"(int \U0001F600)");
    f->WriteVariable__(u"\u041a\u043b\u0430\u0441\u0441::caf\u00e9", 4, PRIVATE_SCOPE, u"");
    f->UserData = u"\U0001F4C1 folder";
    f->item(1)->UserData = u"\u7c7b";
    f->item(1)->func(1)->SetUserData(std::u16string(u"lone \xD800 half", 12));
}

}  // namespace

TEST_F(ProjectText, AProjectThatFitsOneBytePerUnitIsVersion11ByteForByte) {
    p.host.id = 0;
    FilePtr f = p.Listed(u"/proj/caf\u00e9.cpp", FILETYPE_IMPLEMENTATION);
    f->WriteDeclare__(u"\u00c9t\u00e9::f", 1, PUBLIC_SCOPE, u"(\u00ff)");
    ASSERT_TRUE(SaveAs("latin.kpr"));
    EXPECT_EQ(Bytes("latin.kpr"),
              ProjectBytes({FileRecord("caf\xe9.cpp", {ClassRecord("\xc9t\xe9", {}, {ItemRecord("f", 1, "(\xff)")})})}));
}

TEST_F(ProjectText, AnyUnitAbove255MakesAVersion12FileOfUtf8Strings) {
    p.host.id = 0;
    FilePtr f = p.Listed(u"/proj/caf\u00e9.cpp", FILETYPE_IMPLEMENTATION);
    f->WriteDeclare__(u"\u00c9t\u00e9::f", 1, PUBLIC_SCOPE, u"(\u20ac)");  // one unit above 255
    ASSERT_TRUE(SaveAs("wide.kpr"));
    EXPECT_EQ(Bytes("wide.kpr"),
              ProjectBytes({FileRecord("caf\xc3\xa9.cpp",
                                       {ClassRecord("\xc3\x89t\xc3\xa9", {}, {ItemRecord("f", 1, "(\xe2\x82\xac)")})})},
                           "KESTREL1.2"));
}

TEST_F(ProjectText, AVersion12SaveLeavesTheNextSaveToChooseAfresh) {
    // The writer is shared by every save: the UTF-8 of one must not carry over.
    p.host.id = 0;
    FilePtr f = p.Listed(u"/proj/caf\u00e9.cpp", FILETYPE_IMPLEMENTATION);
    f->WriteDeclare__(u"\u00c9t\u00e9::f", 1, PUBLIC_SCOPE, u"(\u20ac)");
    ASSERT_TRUE(SaveAs("wide.kpr"));
    f->item(1)->func(1)->SetParams(u"(\u00ff)");
    ASSERT_TRUE(SaveAs("latin.kpr"));
    EXPECT_EQ(Bytes("latin.kpr").substr(4, 10), "KESTREL1.1");
}

TEST_F(ProjectText, NamesAndHostDataOfEveryScriptComeBackAsTheyWere) {
    Project first;
    BuildWorldwide(first);
    ASSERT_TRUE(SaveAs("first.kpr", first));
    ASSERT_TRUE(p.Load(dir / "first.kpr"));
    ASSERT_EQ(p.files->count(), 1);
    FilePtr f = p.files->item(1);
    const std::u16string path = u"/proj/\u043f\u0440\u043e\u0435\u043a\u0442/\u30c7\u30fc\u30bf.cpp";
    EXPECT_EQ(f->FileName(), path);
    EXPECT_EQ(p.files->item(path), f);
    EXPECT_EQ(f->UserData, u"\U0001F4C1 folder");
    ClassPtr c = f->GetClass(u"\u041a\u043b\u0430\u0441\u0441");
    ASSERT_TRUE(c);
    EXPECT_EQ(c->UserData, u"\u7c7b");
    ASSERT_EQ(c->CountFunc(), 1);
    EXPECT_EQ(c->func(1)->Name(), u"\u6570\u636e");
    EXPECT_EQ(c->func(1)->Params(), u"(int \U0001F600)");
    EXPECT_EQ(c->func(1)->UserData(), std::u16string(u"lone \xD800 half", 12));
    EXPECT_EQ(c->func(1)->KeyVal(), u"\u6570\u636e(INT\U0001F600)");
    EXPECT_EQ(c->var(u"CAF\u00c9")->Line, 4);
    ASSERT_TRUE(SaveAs("again.kpr"));
    EXPECT_EQ(Bytes("again.kpr"), Bytes("first.kpr"));
}

TEST_F(ProjectText, StringsTooLongToReadAreCutAndEverythingAfterThemReadsRight) {
    // A parameter list can be that long; what follows it must not be misread.
    for (bool wide : {false, true}) {
        SCOPED_TRACE(wide ? "version 1.2" : "version 1.1");
        const std::u16string unit = wide ? u"\u0436" : u"x";  // two UTF-8 bytes, or one byte
        std::u16string params;
        for (int i = 0; i < 40000; ++i) params += unit;
        Project first;
        FilePtr f = first.Listed(u"/proj/long.cpp", FILETYPE_IMPLEMENTATION);
        f->WriteDeclare__(u"C::f", 1, PUBLIC_SCOPE, params);
        f->WriteDeclare__(u"C::g", 2, PUBLIC_SCOPE, u"(int)");
        first.Listed(u"/proj/after.cpp", FILETYPE_DEFINITION)->WriteVariable__(u"v", 3, PUBLIC_SCOPE, u"");
        ASSERT_TRUE(SaveAs("long.kpr", first));
        Project loaded;
        ErrorCapture errors;
        ASSERT_TRUE(loaded.Load(dir / "long.kpr"));
        EXPECT_TRUE(errors.reports.empty());
        ASSERT_EQ(loaded.files->count(), 2);
        ClassPtr c = loaded.files->item(1)->item(1);
        ASSERT_EQ(c->CountFunc(), 2);
        EXPECT_EQ(c->func(1)->Params(), params.substr(0, wide ? 15999 : 31999));
        EXPECT_EQ(c->func(2)->Name(), u"g");
        EXPECT_EQ(loaded.files->item(2)->RelativeFilename(), u"after.cpp");
        EXPECT_EQ(loaded.files->item(2)->item(1)->var(1)->Name(), u"v");
    }
}

TEST_F(ProjectText, AUnitAbove255InTheLastFileMakesTheWholeFileVersion12) {
    // Found while the file is written: what was written as version 1.1 goes. Cut to
    // whole characters, the long texts take fewer bytes in UTF-8 than one byte each.
    p.host.id = 0;
    p.Listed(u"/proj/caf\u00e9.cpp", FILETYPE_IMPLEMENTATION)->WriteDeclare__(u"f", 1, PUBLIC_SCOPE, u"()");
    FilePtr last = p.Listed(u"/proj/last.cpp", FILETYPE_IMPLEMENTATION);
    last->UserData = std::u16string(40000, u'\u00e9');  // 31,999 bytes, or 15,999 characters of two
    last->WriteDeclare__(u"g", 2, PUBLIC_SCOPE, std::u16string(40000, u'\u20ac'));  // or 10,666 of three
    ASSERT_TRUE(SaveAs("wide.kpr"));
    std::string eAcute, euro;
    for (int i = 0; i < 15999; ++i) eAcute += "\xc3\xa9";
    for (int i = 0; i < 10666; ++i) euro += "\xe2\x82\xac";
    const std::string lastRecord = S("last.cpp") + N(FILETYPE_IMPLEMENTATION) + N(1) + N(0) + S(eAcute) +
                                   ClassRecord("Globals", {}, {ItemRecord("g", 2, euro)});
    EXPECT_EQ(Bytes("wide.kpr"), S("KESTREL1.2") + N(0) + N(0) + N(2) +
                                     FileRecord("caf\xc3\xa9.cpp", {ClassRecord("Globals", {}, {ItemRecord("f", 1, "()")})}) +
                                     lastRecord);
}
