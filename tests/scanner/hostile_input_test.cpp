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
}

TEST(HostileInput, AnUnterminatedBasicStringInAParameterList) {
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
