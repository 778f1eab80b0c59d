// The result list keeps its records from scan to scan: what a later scan sees must be
// its own statements only, and a huge scan must not keep its memory.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/constants.h"
#include "scanner/debug_dump.h"
#include "scanner/quillbox.h"
#include "scanner/result_list.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanBytes;
using Calls = std::vector<std::string>;

namespace {

std::string Dump(const ResultList& results) {
    std::ostringstream out;
    WriteResultDump(out, results);
    return out.str();
}

// The result dump of one scan by a scanner of its own, as `kestrel scan --dump-results` shows it.
std::string ScanAndDump(const std::string& bytes, int16_t language, Calls* calls = nullptr) {
    clsQuillbox q;
    Calls made = ScanBytes(bytes, language, &q);
    if (calls) *calls = made;
    return Dump(q.Results());
}

}  // namespace

TEST(ResultList, AReusedRecordStartsWithEveryFieldAtItsDefault) {
    ResultList list;
    RWord& first = list.Add();
    first.word = u"int a_rather_long_member_name_that_needs_the_heap;";
    first.length = 7;
    first.Bag = 3;
    first.szBag = u"bag";
    first.Class = u"CSomeClassWithALongName";
    first.Line = 42;
    first.Scope = PRIVATE_SCOPE;
    list.Add().word = u"second";
    list.clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.begin(), list.end());

    const RWord& again = list.Add();
    EXPECT_EQ(list.size(), 1u);
    EXPECT_EQ(&again, &list[0]);
    EXPECT_EQ(Dump(list), "Line:0,Class:,Scope:0 -- \n");
    EXPECT_TRUE(again.length == 0 && again.Bag == 0 && again.szBag.empty());
    EXPECT_EQ(list.Slots(), 2u);
}

TEST(ResultList, TrimLetsGoOfSurplusRecordsAndLongStrings) {
    ResultList list;
    for (int i = 0; i < 10; ++i) list.Add().word = std::u16string(i == 1 ? 5000 : 10, u'x');
    list.clear();
    list.Add().Class = std::u16string(5000, u'c');  // grown after the clear, before the trim
    list.Trim(4, 100);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.Slots(), 4u);
    for (int i = 0; i < 4; ++i) {
        const RWord& r = list.Add();
        EXPECT_LE(r.word.capacity(), 100u) << i;
        EXPECT_LE(r.Class.capacity(), 100u) << i;
    }
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
    Calls bigCalls;
    const std::string bigDump = ScanAndDump(big, LANGUAGE_C, &bigCalls);
    ASSERT_EQ(bigCalls.size(), 602u);

    // Later scans with fewer and shorter statements, in other languages too, give what
    // the same scans give on a thread that never scanned before.
    const std::vector<std::pair<std::string, int16_t>> later = {
        {"int a;\n", LANGUAGE_C},
        {"class K {\npublic int x;\n}\n", LANGUAGE_JAVA},
        {"Private x As Long\nPublic Function F(a)\nEnd Function\n", LANGUAGE_BASIC},
        {"", LANGUAGE_C},
        {"struct S\n{\n};\n", LANGUAGE_C},
    };
    std::vector<std::string> reused, fresh;
    std::vector<Calls> reusedCalls, freshCalls;
    for (const auto& [text, language] : later) {
        reusedCalls.emplace_back();
        reused.push_back(ScanAndDump(text, language, &reusedCalls.back()));
    }
    std::thread([&] {
        for (const auto& [text, language] : later) {
            freshCalls.emplace_back();
            fresh.push_back(ScanAndDump(text, language, &freshCalls.back()));
        }
    }).join();
    EXPECT_EQ(reused, fresh);
    EXPECT_EQ(reusedCalls, freshCalls);
    EXPECT_EQ(reused[0], "Line:1,Class:,Scope:0 -- int a\n");

    // And the long scan repeated after them gives what it gave first.
    Calls again;
    EXPECT_EQ(ScanAndDump(big, LANGUAGE_C, &again), bigDump);
    EXPECT_EQ(again, bigCalls);
}
