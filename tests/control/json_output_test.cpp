// --format json of the commands that print what a project or a scan holds, and find
// --all, read back with Python's own JSON reader.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

class JsonOutput : public ::testing::Test {
protected:
    JsonOutput() {
        const Outcome made = Kestrel("new p.kpr '" KESTREL_SOURCE_DIR "/examples/shapes.h' '" KESTREL_SOURCE_DIR
                                     "/examples/shapes.cpp'");
        EXPECT_EQ(made.status, 0) << made.err;
    }
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }
    // Every line of `lines` parsed; answers what the Python expression `summary` gives
    // over the list of objects `o`.
    std::string Parsed(const std::string& lines, const std::string& summary) {
        WriteFileBytes(dir / "lines.json", lines);
        WriteFileBytes(dir / "read.py", "import json\no=[json.loads(l) for l in open('lines.json', encoding='utf-8')]\n"
                                        "print(" + summary + ")\n");
        const Outcome read = RunShell("python3 read.py");
        EXPECT_EQ(read.status, 0) << read.err;
        return read.out;
    }
    Outcome RunShell(const std::string& command) {
        const int raw = std::system(("cd '" + dir.string() + "' && (" + command + ") >sh.out 2>sh.err").c_str());
        return Outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFileBytes(dir / "sh.out"), ReadFileBytes(dir / "sh.err")};
    }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

}  // namespace

TEST_F(JsonOutput, DumpGivesARecordPerLineWithTheTextFormsFields) {
    const Outcome text = Kestrel("dump p.kpr"), json = Kestrel("dump p.kpr --format json");
    ASSERT_EQ(json.status, 0) << json.err;
    // As many records as text lines, each of the kind its text line starts with.
    std::string kinds;
    for (size_t at = 0; at < text.out.size(); at = text.out.find('\n', at) + 1) {
        const size_t start = text.out.find_first_not_of(' ', at);
        kinds += (kinds.empty() ? "" : " ") + text.out.substr(start, text.out.find(' ', start) - start);
    }
    EXPECT_EQ(Parsed(json.out, "' '.join(x['record'] for x in o)"), kinds + "\n");
    size_t lines = 0;
    for (char c : text.out) lines += c == '\n';
    EXPECT_EQ(Parsed(json.out, "len(o)"), std::to_string(lines) + "\n");
    EXPECT_EQ(Parsed(json.out, "[x for x in o if x['record']=='function' and x['name']=='Area'][0]['line']"), "25\n");
    EXPECT_EQ(Parsed(json.out, "sorted(o[1])"), "['classes', 'name', 'record', 'type', 'userdata', 'userid']\n");
}

TEST_F(JsonOutput, ScanWhereAndFindSpeakJsonToo) {
    const Outcome scan = Kestrel("scan --format json '" KESTREL_SOURCE_DIR "/examples/shapes.h'");
    ASSERT_EQ(scan.status, 0) << scan.err;
    EXPECT_EQ(Parsed(scan.out, "sorted(set(x['call'] for x in o))"), "['declare', 'endclass', 'variable']\n");
    EXPECT_EQ(Parsed(scan.out, "[x['text'] for x in o if x.get('name')=='Point::Point'][0]"), "(int x, int y)\n");

    const Outcome where = Kestrel("where p.kpr '" KESTREL_SOURCE_DIR "/examples/shapes.cpp' 34 --format json");
    ASSERT_EQ(where.status, 0) << where.err;
    EXPECT_EQ(Parsed(where.out, "(o[0]['class'], o[0]['name'], o[0]['line'])"), "('Shape', 'Move', 31)\n");

    // The first hit only, or every file that holds it.
    EXPECT_EQ(Parsed(Kestrel("find p.kpr --class circle --format json").out, "len(o)"), "1\n");
    const Outcome every = Kestrel("find p.kpr --function Area --all --format json");
    EXPECT_EQ(Parsed(every.out, "[(x['found'], x['file'].split('/')[-1], x['line']) for x in o]"),
              "[('function', 'shapes.cpp', 50), ('function', 'shapes.h', 25)]\n");
    const Outcome text = Kestrel("find p.kpr --class circle --all");
    EXPECT_NE(text.out.find("shapes.cpp\n"), std::string::npos);
    EXPECT_NE(text.out.find("shapes.h\n"), std::string::npos);
    EXPECT_EQ(Kestrel("dump p.kpr --format xml").status, 2);
}

TEST_F(JsonOutput, TreeLinesAndTreeJsonNameEachEntrysPlace) {
    const std::string cpp = KESTREL_SOURCE_DIR "/examples/shapes.cpp", h = KESTREL_SOURCE_DIR "/examples/shapes.h";
    const Outcome lines = Kestrel("tree --expand --lines p.kpr");
    ASSERT_EQ(lines.status, 0) << lines.err;
    // Declared in the header, defined in the implementation: the definition's place.
    EXPECT_NE(lines.out.find("      Area()  " + cpp + ":50\n"), std::string::npos) << lines.out;
    EXPECT_NE(lines.out.find("      double radius_  " + h + ":46\n"), std::string::npos) << lines.out;
    EXPECT_NE(lines.out.find("  Circle  " + h + "\n"), std::string::npos) << lines.out;
    // Without --lines the outline is as it was.
    EXPECT_EQ(Kestrel("tree --expand p.kpr").out.find(cpp), std::string::npos);

    const Outcome json = Kestrel("tree --expand --format json p.kpr");
    ASSERT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(Parsed(json.out, "[(x['depth'], x['kind'], x.get('line'), x.get('endline')) for x in o if x['text']=='Area()']"),
              "[(3, 'function', 50, None), (3, 'function', 25, None)]\n");  // Circle's, then Shape's
    EXPECT_EQ(Parsed(json.out, "[(x['kind'], x['endline']) for x in o if x['text']=='Circle']"), "[('class', 47)]\n");
    EXPECT_EQ(Parsed(Kestrel("tree --files --format json p.kpr").out, "[x['kind'] for x in o if x['text']=='shapes.h']"),
              "['file']\n");
}
