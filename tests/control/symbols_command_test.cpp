// kestrel symbols, run as a user or an editor's quickfix list runs it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

class Symbols : public ::testing::Test {
protected:
    Symbols() {
        fs::create_directories(dir / "src");
        WriteFileBytes(dir / "src/range.h",
                       "class Range\n{\npublic:\n    bool empty_range(int n);\n    int EmptyCount();\n"
                       "    void Say(const char* s = \"a\\\"b\\\\c\tx\");\n"
                       "private:\n    int m_length;\n};\n");
        WriteFileBytes(dir / "src/main.cpp", "bool Range::empty_range(int n)\n{\n}\n\nint emptyish;\n");
        const Outcome made = Kestrel("new p.kpr src");
        EXPECT_EQ(made.status, 0) << made.err;
    }
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }
    std::string At(const std::string& name) { return (dir / "src" / name).string(); }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

}  // namespace

TEST_F(Symbols, OneHitPerLineForQuickfixListsBestFirst) {
    const Outcome found = Kestrel("symbols p.kpr 'empty range'");
    ASSERT_EQ(found.status, 0) << found.err;
    EXPECT_EQ(found.out, At("main.cpp") + ":1: function none Range::empty_range (int n)\n" + At("range.h") +
                             ":4: function public Range::empty_range (int n)\n");
    EXPECT_EQ(Kestrel("symbols p.kpr emp --limit 1 --kind variable").out, At("main.cpp") + ":5: variable none ::emptyish int\n");
    EXPECT_EQ(Kestrel("symbols p.kpr '' --access private").out,
              At("range.h") + ":8: variable private Range::m_length int\n");
    const Outcome none = Kestrel("symbols p.kpr zzz");
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
}

TEST_F(Symbols, JsonLinesParseAndCarryTheDocumentedFields) {
    const Outcome listed = Kestrel("symbols p.kpr '' --limit 0 --format json");
    ASSERT_EQ(listed.status, 0) << listed.err;
    WriteFileBytes(dir / "hits.json", listed.out);
    // Python's own JSON reader checks every line and the field set.
    const std::string check =
        "import json,sys\n"
        "fields={'name','kind','access','container','file','line','params','score'}\n"
        "lines=open(sys.argv[1],encoding='utf-8').read().splitlines()\n"
        "assert len(lines)==8, len(lines)\n"
        "for l in lines:\n"
        "    o=json.loads(l)\n"
        "    assert set(o)==fields, set(o)\n"
        "    assert isinstance(o['line'],int) and o['kind'] in ('class','function','variable')\n"
        "objects=[json.loads(l) for l in lines]\n"
        "print(sorted(o['name'] for o in objects)[-1])\n"
        "print([o['params'] for o in objects if o['name']=='Say'][0])\n";
    WriteFileBytes(dir / "check.py", check);
    const int status = std::system(("cd '" + dir.string() + "' && python3 check.py hits.json >names.txt").c_str());
    ASSERT_EQ(status, 0);
    // The parameter text, quotes and backslashes included, reads back as the text form prints it.
    const std::string say = Kestrel("symbols p.kpr Say --kind function").out;
    const std::string params = say.substr(say.find("Range::Say ") + 11);
    EXPECT_EQ(ReadFileBytes(dir / "names.txt"), "m_length\n" + params);
}

TEST_F(Symbols, BadOptionsNameWhatIsAccepted) {
    const Outcome bad = Kestrel("symbols p.kpr x --kind klingon");
    EXPECT_EQ(bad.status, 2);
    EXPECT_NE(bad.err.find("class, function, variable"), std::string::npos) << bad.err;
    EXPECT_EQ(Kestrel("symbols p.kpr").status, 2);
    EXPECT_EQ(Kestrel("symbols missing.kpr x").status, 1);
}
