// Whole scans through the driver: files on disk, host line sources and reuse.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/constants.h"
#include "scanner/debug_dump.h"
#include "scanner/quillbox.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"
#include "support/text_lines.h"

using namespace kestrel;
using test::ScanBytes;
using test::ScanRecorder;
using Calls = std::vector<std::string>;

namespace {

// A scanner that keeps the line dump it had just before the block pass.
struct DumpingScanner : clsQuillbox {
    std::string dump;
    DumpingScanner() {
        SetBeforeBlockPass([this](const clsQuillbox& q) {
            std::ostringstream out;
            WriteLineDump(out, q.Lines(), q.LineCount());
            dump = out.str();
        });
    }
};

std::string Dump(const ResultList& results) {
    std::ostringstream out;
    WriteResultDump(out, results);
    return out.str();
}

// The calls and the result dump of one scan by a scanner of its own.
std::string ScanAndDump(const std::string& bytes, int16_t language) {
    clsQuillbox q;
    std::string seen;
    for (const std::string& call : ScanBytes(bytes, language, &q)) seen += call + "\n";
    return seen + Dump(q.Results());
}

}  // namespace

TEST(ParseFile, UnlistedLanguagesFillTheResultsButWriteNothing) {
    clsQuillbox q;
    // A language without a table on a fresh scanner finds nothing at all.
    EXPECT_EQ(ScanBytes("int x;\n", LANGUAGE_PASCAL, &q), Calls{});
    EXPECT_TRUE(q.Results().empty());
    // After a C scan the C words stay in force: results, but no writes.
    ScanBytes("int x;\n", LANGUAGE_C, &q);
    EXPECT_EQ(ScanBytes("int y;\n", LANGUAGE_PASCAL, &q), Calls{});
    ASSERT_EQ(q.Results().size(), 1u);
    EXPECT_EQ(q.Results()[0].word, u"int y;");
    // The include language still reports class ends in the block pass.
    EXPECT_EQ(ScanBytes("class A\n{\n};\n", LANGUAGE_CINCLUDE, &q), Calls{});
    EXPECT_EQ(q.Results()[0].Scope, 253);
}

TEST(ParseFile, ParameterListsReadLinesTheBlockPassLeftBehind) {
    // Normally the continuation lines are consumed: nothing is collected from them.
    EXPECT_EQ(ScanBytes("void Move(int dx,\n          int dy);\n"), (Calls{"declare\t1\t0\t::Move\t()"}));
    // After an error in the block pass the later lines keep their text and are read.
    test::ErrorCapture capture;
    Calls calls = ScanBytes("void Move(int dx,\nclass A\xC4\x81{\nint dy);\n");
    EXPECT_EQ(calls, (Calls{"declare\t1\t0\t::Move\t(int dx,class A\u0101{int dy)"}));
    EXPECT_EQ(capture.Seen(), Calls{"clsQuillbox.cls|Sub TakeLevelsOut|9"});
}

TEST(ParseFile, LinesInsideABlockCommentEmptyOutAsTheyDoInTheEditorsCopy) {
    // Lines a file scan leaves empty unread or uncleaned (inside a block comment, a
    // one-line comment taking the whole line), and lines it has to clean: the closer's
    // units apart or split by a blank, a closer after non-ASCII text or a tab, a
    // one-line comment after code, a comment open at the end of a file without a line end.
    const std::vector<std::u16string> lines = {
        u"\t  // a whole line /* opening nothing",
        u"int e; // after code",
        u"int a; /* opens",
        u" * a / b * c: both units of the closer, apart",
        u" * a closer split by a blank * / still open",
        u" * \u00FCn\u00EFc\u00F6d\u00E9 and a tab\t*/\tint b; /* again",
        u"*/",
        u"  /* one line */ int c; /*/ closes at once */ int d;",
        u"/* one more",
        u"  // still inside */ int f;",
        u"/* left open",
        u"the last line, still inside",
    };
    std::string utf8, utf16 = "\xFF\xFE";
    for (const std::u16string& line : lines) {
        utf8 += ToUtf8(line) + (&line == &lines.back() ? "" : "\r\n");
        for (char16_t c : line + (&line == &lines.back() ? u"" : u"\n")) utf16 += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    }
    auto fileDump = [](const std::string& bytes) {
        DumpingScanner q;
        ScanBytes(bytes, LANGUAGE_C, &q);
        return q.dump;
    };
    const std::string expected =
        "1 -- \n2 -- int e; \n3 -- int a; \n4 -- \n5 -- \n6 --  int b; \n7 -- \n8 --  int c;  closes at once */ int d;\n"
        "9 -- \n10 --  int f;\n11 -- \n12 -- \n13 -- \n";
    EXPECT_EQ(fileDump(utf8), expected);
    EXPECT_EQ(fileDump(utf16), expected);  // UTF-16 lines are all read
    test::TextLines host{std::vector<std::u16string>(lines)};
    ScanRecorder out(u"buffer");
    DumpingScanner q;
    q.ParseEmbeededFile(out, LANGUAGE_C, host);
    EXPECT_EQ(q.dump, expected.substr(0, expected.rfind("13 -- ")));  // the editor's copy has no extra last line
}

TEST(ParseEmbeededFile, AHostLineWithALineFeedMakesTheFollowingLinesSkipAhead) {
    test::TextLines host{u"int a;", u"int b;", u"int c;\nint d;", u"int skipped;", u"int e;", u"int f;"};
    ScanRecorder out(u"buffer");
    DumpingScanner q;
    EXPECT_TRUE(q.ParseEmbeededFile(out, LANGUAGE_C, host));
    EXPECT_EQ(host.asked, (std::vector<int32_t>{1, 2, 3, 5, 6}));
    EXPECT_EQ(q.dump, "1 -- int a;\n2 -- int b;\n3 -- int c;\n4 -- int d;\n5 -- int e;\n6 -- int f;\n");
    EXPECT_EQ(out.calls.size(), 6u);
    EXPECT_EQ(out.calls[3], "variable\t4\t0\t::d\tint");

    test::TextLines trailing{u"int a;\n"};
    q.ParseEmbeededFile(out, LANGUAGE_C, trailing);
    EXPECT_EQ(q.dump, "1 -- int a;\n2 -- \n");
}

TEST(ResultList, ScansOnOneThreadSeeOnlyTheirOwnStatements) {
    // A long first scan leaves records behind: classes, access scopes, long lines and
    // statements the C analyser cuts in place.
    std::string big = "class CBig\n{\nprivate:\n";
    for (int i = 0; i < 300; ++i) {
        big += "    int member_with_a_long_name_" + std::to_string(i) + " = 1; // comment\n";
        big += "    void Method" + std::to_string(i) + "(int a, int b);\n";
    }
    big += "};\nint global_after;\n";
    const std::string first = ScanAndDump(big, LANGUAGE_C);
    ASSERT_EQ(ScanBytes(big).size(), 602u);

    // Later scans with fewer and shorter statements, in other languages too, give what
    // the same scans give on a thread that never scanned before; and the long scan
    // repeated after them gives what it gave first.
    const std::vector<std::pair<std::string, int16_t>> later = {
        {"int a;\n", LANGUAGE_C},
        {"class K {\npublic int x;\n}\n", LANGUAGE_JAVA},
        {"Private x As Long\nPublic Function F(a)\nEnd Function\n", LANGUAGE_BASIC},
        {"", LANGUAGE_C},
        {"struct S\n{\n};\n", LANGUAGE_C},
    };
    auto scanAll = [&](std::vector<std::string>& seen) {
        for (const auto& [text, language] : later) seen.push_back(ScanAndDump(text, language));
    };
    std::vector<std::string> reused, fresh;
    scanAll(reused);
    std::thread([&] { scanAll(fresh); }).join();
    EXPECT_EQ(reused, fresh);
    EXPECT_EQ(reused[0], "variable\t1\t0\t::a\tint\nLine:1,Class:,Scope:0 -- int a\n");
    EXPECT_EQ(ScanAndDump(big, LANGUAGE_C), first);
}
