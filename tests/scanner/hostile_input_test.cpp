// Inputs no editor should hand over, scanned without crash or hang.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/constants.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using test::ScanBytes;
using Calls = std::vector<std::string>;

TEST(HostileInput, BinaryBytesAndNulsScanInEveryLanguage) {
    std::mt19937 random(42);
    std::string bytes(200000, '\0');
    for (char& b : bytes) b = static_cast<char>(random() & 0xFF);
    test::ErrorCapture capture;  // names with codes above 256 are reported, not fatal
    for (int16_t language : {LANGUAGE_C, LANGUAGE_JAVA, LANGUAGE_BASIC, LANGUAGE_PASCAL}) ScanBytes(bytes, language);
    Calls calls = ScanBytes(std::string("int a;\0\0int b;\n\0class\0{\n", 24));
    EXPECT_FALSE(calls.empty());
}

TEST(HostileInput, ATenMegabyteLine) {
    std::string line;
    line.reserve(10 << 20);
    while (line.size() < (10u << 20)) line += "x = f(a, \"s{\", '}') /* c */ + y; ";
    Calls calls = ScanBytes(line + "\nint after;\n");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back(), "variable\t2\t0\t::after\tint");

    std::string braces;
    while (braces.size() < (2u << 20)) braces += "a{b}";
    EXPECT_TRUE(ScanBytes(braces + "\nint z;\n").back() == "variable\t2\t0\t::z\tint");
}

TEST(HostileInput, ALongNameIsFoundAgainInLinearTime) {
    // Names that nearly repeat make naive searches quadratic.
    std::string almost(4000, 'a');
    std::string name = almost + "a";
    std::string text;
    while (text.size() < (4u << 20)) text += almost + " ";
    Calls calls = ScanBytes("int " + text + name + "(int x);\nint " + text + name + ";\n");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].substr(0, 12), "declare\t1\t0\t");
}

TEST(HostileInput, DeepNesting) {
    std::string braces(5000, '{');
    braces += "\nint deep;\n" + std::string(5000, '}') + "\nint top;\n";
    EXPECT_EQ(ScanBytes(braces), (Calls{"variable\t4\t0\t::top\tint"}));

    test::ErrorCapture capture;
    std::string classes;
    for (int i = 0; i < 2000; ++i) classes += "class C" + std::to_string(i) + "\n{\n";
    classes += "int inner;\n";
    EXPECT_EQ(ScanBytes(classes), Calls{});
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].title, "Sub TakeLevelsOut");
}

TEST(HostileInput, UnterminatedCommentsAndStrings) {
    EXPECT_EQ(ScanBytes("int a;\n/* never closed\nint b;\n"), (Calls{"variable\t1\t0\t::a\tint"}));
    EXPECT_EQ(ScanBytes("char* s = \"open {\nint hidden;\n"), Calls{});
    EXPECT_EQ(ScanBytes("Private Sub A(ByVal s As String = \"x\n", LANGUAGE_BASIC), (Calls{"declare\t1\t3\t::A\t()"}));
}

TEST(HostileInput, LinesOfOnlySeparators) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "};:;,.*&=<>()[]{}\"'\\/!?~^\n";
    text += std::string(100000, ';') + "\n" + std::string(100000, '}') + "\n";
    test::ErrorCapture capture;
    for (int16_t language : {LANGUAGE_C, LANGUAGE_JAVA, LANGUAGE_BASIC}) ScanBytes(text, language);
    EXPECT_TRUE(capture.reports.empty());
}

TEST(HostileInput, ManyUnclosedParameterListsStayLinear) {
    std::string text;
    for (int i = 0; i < 50000; ++i) text += "void f" + std::to_string(i) + "(int a,\n";
    Calls calls = ScanBytes(text);
    ASSERT_EQ(calls.size(), 50000u);
    EXPECT_EQ(calls[0], "declare\t1\t0\t::f0\t()");

    // Basic keeps the lines inside procedures, so every open list sees all that follows.
    std::string basic;
    for (int i = 0; i < 50000; ++i) basic += "Sub f" + std::to_string(i) + "(a,\nx = g(1)\n";
    Calls subs = ScanBytes(basic, LANGUAGE_BASIC);
    ASSERT_EQ(subs.size(), 50000u);
    EXPECT_EQ(subs[49999], "declare\t99999\t0\t::f49999\t()");
}
