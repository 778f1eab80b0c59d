// Inputs no editor should hand over, scanned without crash or hang, in time in
// proportion to their size (the test's time limit is far below what a quadratic pass
// would need), and with a sensible answer for the host.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "support/child_run.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanBytes;
using Calls = std::vector<std::string>;

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

// One construct repeated to any size, with what a scan of it gives.
std::vector<Pattern> LimitPatterns() {
    return {
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
        // Modern C++ joins statements over lines and keeps its blocks and conditionals
        // on stacks of its own: these never end a statement, or nest without end.
        {"C++ members", "struct S { int a; void f(); };\n", LANGUAGE_CPP, 3, true, false},
        {"C++ comment openers in strings", "const char* s = \"/*\"; int a;\n", LANGUAGE_CPP, 2, true, false},
        {"C++ namespaces", "namespace a::b {\n", LANGUAGE_CPP, 0, false, false},
        {"C++ class heads", "class LIB_EXPORT [[x]] A final : public B<C> {\n", LANGUAGE_CPP, 0, false, false},
        {"C++ closing braces", std::string(80, '}') + "\n", LANGUAGE_CPP, 0, false, false},
        {"C++ open parentheses", "void f(((((((((((((((((((((((((((((((((((((\n", LANGUAGE_CPP, 0, false, false},
        {"C++ template prefixes", "template <class T, class = std::enable_if_t<(N > 0)>>\n", LANGUAGE_CPP, 0, false, false},
        {"C++ conditionals", "#if A\n#ifdef B\n#else\n", LANGUAGE_CPP, 0, false, false},
        {"C++ raw string never closed", "R\"x( { ; } \n", LANGUAGE_CPP, 0, false, false},
        {"C++ macro prefixes", "M(a) M(b) M(c) M(d) M(e) M(f) M(g) M(h) M(i) M(j)\n", LANGUAGE_CPP, 0, false, false},
    };
}

// Procedure heads whose parameter lists never close, each followed by a line that
// opens one more parenthesis: every list would take in the rest of the file.
std::vector<Pattern> BasicPairs() {
    return {
        {"Basic Sub lines", "Sub f(\n(\n", LANGUAGE_BASIC, 1, true, false},
        {"Basic Private Sub pairs", "Private Sub f(\n(\n", LANGUAGE_BASIC, 1, true, false},
        {"Basic Public Function pairs", "Public Function f(\n(\n", LANGUAGE_BASIC, 1, true, false},
    };
}

// Counts what a scan hands out instead of keeping it.
class CountingOutput : public ScanOutput {
public:
    int32_t FileType() const override { return FILETYPE_IMPLEMENTATION; }
    const std::u16string& FileName() override { return name_; }
    void WriteDeclare__(const std::u16string& fullName, int32_t, int16_t, const std::u16string& params) override {
        units += 1 + fullName.size() + params.size();
    }
    void WriteVariable__(const std::u16string& fullName, int32_t, int16_t, const std::u16string& typeText) override {
        units += 1 + fullName.size() + typeText.size();
    }
    void WriteEndClass__(const std::u16string& className, int32_t) override { units += 1 + className.size(); }
    void WriteInclude__(const std::u16string& fileName, int32_t) override { units += 1 + fileName.size(); }

    explicit CountingOutput(std::u16string name) : name_(std::move(name)) {}
    size_t units = 0;

private:
    std::u16string name_;
};

}  // namespace

TEST(HostileInput, DeepNestingNulsAndAnUnterminatedBasicStringInAParameterList) {
    const std::string deep = std::string(5000, '{') + "\nint deep;\n" + std::string(5000, '}') + "\nint top;\n";
    EXPECT_EQ(ScanBytes(deep), (Calls{"variable\t4\t0\t::top\tint"}));
    EXPECT_EQ(ScanBytes("Private Sub A(ByVal s As String = \"x\n", LANGUAGE_BASIC), (Calls{"declare\t1\t3\t::A\t()"}));
    EXPECT_EQ(ScanBytes(std::string("int a;\0\0int b;\n\0class\0{\n", 24)).size(), 1u);
}

TEST(HostileInput, ATenMegabyteLine) {
    const std::string line = Repeat("x = f(a, \"s{\", '}') /* c */ + y; ", 10u << 20);
    EXPECT_EQ(ScanBytes(line + "\nint after;\n").back(), "variable\t2\t0\t::after\tint");
    EXPECT_EQ(ScanBytes(Repeat("a{b}", 2u << 20) + "\nint z;\n").back(), "variable\t2\t0\t::z\tint");
}

TEST(HostileInput, ATenMegabyteLineAndStatementInCpp) {
    const std::string line = Repeat("x = f(a, \"s{\", '}') /* c */ + y; ", 10u << 20);
    EXPECT_EQ(ScanBytes(line + "\nint after;\n", LANGUAGE_CPP).back(), "variable\t2\t0\t::after\tint");
    // One statement over a million lines, never ended: nothing is declared, and the
    // next file-level block is still found.
    const std::string body = Repeat("a b c d e f g h i\n", 10u << 20);
    const std::string lastLine = std::to_string(2 + body.size() / 18);
    EXPECT_EQ(ScanBytes("template <class T> int\n" + body + "; int z;\n", LANGUAGE_CPP).back(),
              "variable\t" + lastLine + "\t0\t::z\tint");
    const std::string almost(4000, 'a'), text = Repeat(almost + " ", 4u << 20);
    Calls calls = ScanBytes("int " + text + almost + "b(int x);\n", LANGUAGE_CPP);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].substr(0, 12), "declare\t1\t0\t");
}

TEST(HostileInput, ALongNameIsFoundAgainInLinearTime) {
    // Names that nearly repeat make naive searches quadratic.
    const std::string almost(4000, 'a'), name = almost + "a", text = Repeat(almost + " ", 4u << 20);
    Calls calls = ScanBytes("int " + text + name + "(int x);\nint " + text + name + ";\n");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].substr(0, 12), "declare\t1\t0\t");
}

TEST(HostileInput, GatheredParameterTextStopsAt65536Units) {
    // Basic keeps the lines inside procedures, so a list that never closes would take
    // in the rest of the file, for every procedure (the block pass has already emptied
    // the procedure lines themselves).
    const std::string filler(400, 'x');
    std::string basic, rest;
    for (int i = 0; i < 400; ++i) {
        std::string head = "Sub f" + std::to_string(i) + "(";
        basic += head + "\n(" + filler + "\n";
        rest += "(" + filler;
    }
    Calls subs = ScanBytes(basic, LANGUAGE_BASIC);
    ASSERT_EQ(subs.size(), 400u);
    EXPECT_EQ(subs[0], "declare\t1\t0\t::f0\t(" + rest.substr(0, 65536) + ")");
    EXPECT_EQ(subs[399], "declare\t799\t0\t::f399\t()");  // what follows is short and never closes

    // A list that does close after more than 65,536 units is cut the same way, and
    // trimmed after the cut.
    std::string longList = "Sub g(\n" + std::string(65535, 'a') + std::string(10, ' ') + "b\n)\n";
    EXPECT_EQ(ScanBytes(longList, LANGUAGE_BASIC), (Calls{"declare\t1\t0\t::g\t(" + std::string(65535, 'a') + ")"}));
    std::string fits = "Sub h(\n" + std::string(65535, 'a') + "\n b)\n";
    EXPECT_EQ(ScanBytes(fits, LANGUAGE_BASIC), (Calls{"declare\t1\t0\t::h\t(" + std::string(65535, 'a') + "b)"}));
}

TEST(HostileInput, FiftyMegabytesOfOneConstructScanInLinearTime) {
    const std::vector<Pattern> patterns = LimitPatterns();
    for (const Pattern& p : patterns) {
        SCOPED_TRACE(p.name);
        test::ErrorCapture errors;
        const std::string text = Repeat(p.line, kFileBytes);
        EXPECT_EQ(ScanBytes(text, p.language).size(), p.perLine ? p.expectedCalls * text.size() / p.line.size() : p.expectedCalls);
        ASSERT_EQ(errors.reports.size(), p.overflowsClassStack ? 1u : 0u);
        for (const auto& report : errors.reports) EXPECT_EQ(report.title, "Sub TakeLevelsOut");
    }
}

TEST(HostileInput, OutputStaysInProportionToTheInputAndANewProjectsMemoryToo) {
    // Measured by what the scan hands out, by the project file, and by the peak memory
    // of a kestrel new on two threads in a process of its own; never by time.
    std::vector<Pattern> patterns = LimitPatterns();
    for (Pattern& p : BasicPairs()) patterns.push_back(std::move(p));
    for (const Pattern& p : patterns) {
        SCOPED_TRACE(p.name);
        test::ErrorCapture errors;
        long peakRssKb[2] = {};
        for (int big = 0; big < 2; ++big) {
            const size_t bytes = (big ? 5u : 1u) << 20;
            SCOPED_TRACE(bytes);
            const test::TempFile file(Repeat(p.line, bytes));
            const std::string source = file.path(), project = source + ".kpr";
            CountingOutput output(file.name());
            clsQuillbox scanner;
            ASSERT_TRUE(scanner.ParseFile(output, p.language));
            EXPECT_LE(output.units, 4 * bytes + 65536);
            const test::ChildOutcome run = test::RunKestrelAlone(
                "/", {"new", project, "--language", std::to_string(p.language), "--jobs", "2", "--type", "impl", source});
            EXPECT_EQ(run.status, p.overflowsClassStack ? 1 : 0) << run.err;
            EXPECT_LE(test::ReadFileBytes(project).size(), 2 * bytes + 4 * 65536);
            peakRssKb[big] = run.peakRssKb;
        }
        EXPECT_LE(peakRssKb[1], 6 * peakRssKb[0]);
    }
}
