// Fifty megabytes of one risky construct repeated: each scan must end in time in
// proportion to its input (the test's time limit is far below what a quadratic pass
// would need) and give the host a sensible answer.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanBytes;

namespace {

#if defined(__SANITIZE_ADDRESS__)
// Under the sanitizers the run checks memory use, not time: a tenth of the size does.
constexpr size_t kFileBytes = 5u << 20;
#else
constexpr size_t kFileBytes = 50u << 20;
#endif

struct Pattern {
    const char* name;
    std::string line;
    int16_t language;
    size_t expectedCalls;  // every call the scan makes, counted per repeated line or in total
    bool perLine;
    bool overflowsClassStack;  // more than 1024 open classes: one report ends the scan
};

std::string Repeat(const std::string& line, size_t bytes) {
    std::string text;
    text.reserve(bytes + line.size());
    while (text.size() < bytes) text += line;
    return text;
}

}  // namespace

TEST(LargeHostileFile, FiftyMegabytesOfOneConstructScanInLinearTime) {
    const std::vector<Pattern> patterns{
        // "/*/" opens and closes a comment at once, so each line keeps its variable.
        {"comment openers", std::string(60, ' ') + "/*/ int a; /*/\n", LANGUAGE_C, 1, true, false},
        {"unterminated strings", "char* s = \"never closed { class X\n", LANGUAGE_C, 0, false, true},
        {"opening braces", std::string(80, '{') + "\n", LANGUAGE_C, 0, false, false},
        {"closing braces", std::string(80, '}') + "\n", LANGUAGE_C, 1, false, false},
        {"class words", "class class class class class class class\n", LANGUAGE_C, 0, false, true},
        {"scope operators", "int ::::::::::::::::a::::::::::::::::::::b;\n", LANGUAGE_C, 0, false, false},
        {"open parentheses", "void f(((((((((((((((((((((((((((((((((((((\n", LANGUAGE_C, 1, true, false},
        {"unterminated Basic strings", "Dim s As String = \"never closed (\n", LANGUAGE_BASIC, 1, true, false},
        {"Basic open parentheses", "x = ((((((((((((((((((((((((((((((((((((((((\n", LANGUAGE_BASIC, 0, false, false},
    };
    for (const Pattern& p : patterns) {
        SCOPED_TRACE(p.name);
        test::ErrorCapture errors;
        const std::string text = Repeat(p.line, kFileBytes);
        const size_t lines = text.size() / p.line.size();
        std::vector<std::string> calls = ScanBytes(text, p.language);
        EXPECT_EQ(calls.size(), p.perLine ? p.expectedCalls * lines : p.expectedCalls);
        ASSERT_EQ(errors.reports.size(), p.overflowsClassStack ? 1u : 0u);
        for (const auto& report : errors.reports) EXPECT_EQ(report.title, "Sub TakeLevelsOut");
    }
}

TEST(LargeHostileFile, TooManyOpenClassesEndTheScanWithOneReport) {
    test::ErrorCapture errors;
    std::vector<std::string> calls = ScanBytes("int before;\n" + Repeat("class A\n{\nint x;\n", kFileBytes));
    // What the first 1024 classes hold is kept; the 1025th ends the scan.
    ASSERT_EQ(calls.size(), 1025u);
    EXPECT_EQ(calls.front(), "variable\t1\t0\t::before\tint");
    EXPECT_EQ(calls.back(), "variable\t3073\t0\tA::x\tint");
    EXPECT_EQ(errors.Seen(), std::vector<std::string>{"clsQuillbox.cls|Sub TakeLevelsOut|9"});
}
