// kestrel-ctags read by the programs that read tags: readtags, Vim, GNU Global, and a
// comparison of its JSON with Universal Ctags' own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

const std::string kCtags = KESTREL_BINARY_DIR "/tools/kestrel-ctags";

class Tags : public ::testing::Test {
protected:
    Tags() {
        for (const char* name : {"shapes.h", "shapes.cpp", "Inventory.java", "Utilities.bas"})
            fs::copy_file(fs::path(KESTREL_SOURCE_DIR) / "examples" / name, dir / name);
    }
    // Runs a shell command in the scratch folder: its status and standard output.
    Outcome Shell(const std::string& command) {
        const int raw = std::system(("cd '" + dir.string() + "' && (" + command + ") >out.txt 2>err.txt").c_str());
        return Outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFileBytes(dir / "out.txt"), ReadFileBytes(dir / "err.txt")};
    }
    static bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

}  // namespace

TEST_F(Tags, ReadtagsListsFiltersAndSearchesTheSortedFile) {
    ASSERT_EQ(Shell("'" + kCtags + "' shapes.h shapes.cpp Inventory.java Utilities.bas").status, 0);
    const std::string tags = ReadFileBytes(dir / "tags");
    EXPECT_TRUE(tags.starts_with("!_TAG_FILE_FORMAT\t2\t"));
    EXPECT_TRUE(Has(tags, "!_TAG_FILE_SORTED\t1\t"));

    const Outcome all = Shell("readtags -t tags -e -n -l");
    ASSERT_EQ(all.status, 0) << all.err;
    EXPECT_TRUE(Has(all.out, "Area\tshapes.h\t/^    virtual double Area() const = 0;$/;\"\tkind:f\tline:25\tclass:Shape\t"
                             "access:public\tsignature:()\n"))
        << all.out;
    EXPECT_TRUE(Has(all.out, "Shape\tshapes.h\t/^class Shape$/;\"\tkind:c\tline:19\tend:37\n"));
    EXPECT_TRUE(Has(all.out, "\tshapes.h\t/^    double radius_;$/;\"\tkind:m\tline:46\tclass:Circle\t"
                             "typeref:typename:double\taccess:private\n"));

    const Outcome hidden = Shell("readtags -t tags -Q '(eq? $access \"private\")' -l");
    ASSERT_EQ(hidden.status, 0) << hidden.err;
    EXPECT_TRUE(Has(hidden.out, "radius_\t")) << hidden.out;
    EXPECT_FALSE(Has(hidden.out, "Area\t")) << hidden.out;

    // A prefix search is a binary search: it finds names only in a file sorted as its
    // pseudo-tag says.
    for (const char* name : {"Area", "Circle", "Shape", "radius_", "x"}) {
        const Outcome found = Shell(std::string("readtags -t tags -p ") + name);
        EXPECT_TRUE(Has(found.out, std::string(name) + "\t")) << name << "\n" << found.out;
    }
    const Outcome folded = Shell("'" + kCtags + "' --sort=foldcase -f folded shapes.h shapes.cpp && readtags -t folded -i -p area");
    EXPECT_TRUE(Has(folded.out, "Area\tshapes.h")) << folded.out << folded.err;
}

TEST_F(Tags, VimReadsKindAccessLineAndClass) {
    ASSERT_EQ(Shell("'" + kCtags + "' shapes.h shapes.cpp").status, 0);
    const Outcome vim = Shell("vim -Es -u NONE -i NONE -c 'set tags=tags' -c 'redir! > vim.txt' "
                              "-c \"echo taglist('^Area$')\" -c 'redir END' -c 'qa!' </dev/null");
    const std::string shown = ReadFileBytes(dir / "vim.txt");
    EXPECT_TRUE(Has(shown, "'line': '25'")) << shown;
    EXPECT_TRUE(Has(shown, "'access': 'public'")) << shown;
    EXPECT_TRUE(Has(shown, "'class': 'Shape'")) << shown;
    EXPECT_TRUE(Has(shown, "'kind': 'f'")) << shown;
}

TEST_F(Tags, JsonHasTheFieldNamesOfUniversalCtags) {
    // The two scanners find different things on purpose: what must agree is the names
    // of the fields of each kind both report.
    const std::string compare =
        "import json,sys\n"
        "def keys(path):\n"
        "    seen={}\n"
        "    for line in open(path):\n"
        "        o=json.loads(line)\n"
        "        if o['_type']=='tag': seen.setdefault(o['kind'],set()).update(o)\n"
        "    return seen\n"
        "ours,theirs=keys('ours.json'),keys('theirs.json')\n"
        "common=sorted(set(ours)&set(theirs))\n"
        "assert {'class','member'} <= set(common), common\n"
        "for k in common: assert ours[k]==theirs[k], (k, ours[k], theirs[k])\n"
        "print(' '.join(common))\n";
    WriteFileBytes(dir / "compare.py", compare);
    const std::string fields = " --output-format=json --fields=+nksSaft --fields=-e -f - shapes.h";
    ASSERT_EQ(Shell("'" + kCtags + "'" + fields + " >ours.json && ctags" + fields + " >theirs.json").status, 0);
    const Outcome compared = Shell("python3 compare.py");
    EXPECT_EQ(compared.status, 0) << compared.err;
    EXPECT_TRUE(Has(compared.out, "class")) << compared.out;
}

TEST_F(Tags, TheOptionsTaggingPluginsPassAreTakenOrPassedOver) {
    // Tagbar, Vista.vim and ctrlp, as they call a ctags program.
    const Outcome tagbar = Shell("'" + kCtags + "' --extras=+F -f - --format=2 --excmd=pattern --fields=nksSafet "
                                 "--sort=no --append=no --language-force=c++ --c++-kinds=+p shapes.h");
    ASSERT_EQ(tagbar.status, 0) << tagbar.err;
    EXPECT_TRUE(tagbar.out.starts_with("Point\tshapes.h\t/^class Point$/;\"\tc\tline:7\tend:7") ||
                tagbar.out.starts_with("Point\tshapes.h\t/^class Point$/;\"\tc\tline:7"))
        << tagbar.out;
    const Outcome vista = Shell("'" + kCtags + "' --output-format=json --fields=+nksSaf -f - Inventory.java");
    ASSERT_EQ(vista.status, 0) << vista.err;
    EXPECT_TRUE(Has(vista.out, "\"kind\": \"method\"")) << vista.out;
    const Outcome ctrlp = Shell("'" + kCtags + "' --fields=nKs --extra= --file-scope=yes -f - --verbose Utilities.bas");
    ASSERT_EQ(ctrlp.status, 0) << ctrlp.err;
    EXPECT_TRUE(Has(ctrlp.out, "\tfunction\tline:")) << ctrlp.out;
    EXPECT_TRUE(Has(ctrlp.err, "passed over: --file-scope=yes")) << ctrlp.err;

    const Outcome version = Shell("'" + kCtags + "' --version");
    EXPECT_TRUE(Has(version.out.substr(0, version.out.find('\n')), "Universal Ctags")) << version.out;
    EXPECT_TRUE(Has(Shell("'" + kCtags + "' --list-features").out, "json"));
    EXPECT_EQ(Shell("'" + kCtags + "' --list-kinds=java").out, "c  classes\nm  methods\nf  fields\n");
    EXPECT_EQ(Shell("'" + kCtags + "' missing.cpp -f -").status, 1);
}

TEST_F(Tags, GnuGlobalIndexesThroughItsCtagsPlugin) {
    std::string conf = ReadFileBytes(fs::path(KESTREL_SOURCE_DIR) / "docs/gtags.conf");
    conf.replace(conf.find("/usr/local/bin/kestrel-ctags"), std::string("/usr/local/bin/kestrel-ctags").size(), kCtags);
    WriteFileBytes(dir / "gtags.conf", conf);
    const Outcome made = Shell("GTAGSCONF='" + (dir / "gtags.conf").string() + "' GTAGSLABEL=kestrel gtags");
    ASSERT_EQ(made.status, 0) << made.err;
    const Outcome area = Shell("global -x Area");
    EXPECT_TRUE(Has(area.out, "Area               25 shapes.h         virtual double Area() const = 0;")) << area.out;
    EXPECT_TRUE(Has(area.out, "Area               50 shapes.cpp       double Circle::Area() const")) << area.out;
    EXPECT_TRUE(Has(Shell("global -x Count").out, "Count              27 Utilities.bas")) ;
    EXPECT_EQ(Shell("global -c Cir").out, "Circle\n");
}

TEST_F(Tags, GnuGlobalFindsInGoogletestWhatKestrelFinds) {
    const fs::path sources = "/usr/src/googletest/googletest";
    if (!fs::exists(sources)) GTEST_SKIP() << "googletest's sources are not installed";
    fs::copy(sources, dir / "gtest", fs::copy_options::recursive);
    std::string conf = ReadFileBytes(fs::path(KESTREL_SOURCE_DIR) / "docs/gtags.conf");
    conf.replace(conf.find("/usr/local/bin/kestrel-ctags"), std::string("/usr/local/bin/kestrel-ctags").size(), kCtags);
    WriteFileBytes(dir / "gtags.conf", conf);
    const Outcome made = Shell("cd gtest && GTAGSCONF='" + (dir / "gtags.conf").string() + "' GTAGSLABEL=kestrel gtags");
    ASSERT_EQ(made.status, 0) << made.err;
    // Every place kestrel gives for these names, Global gives too.
    for (const std::string name : {"InitGoogleTest", "AssertionResult", "RunAllTests"}) {
        const Outcome ours = Shell("cd gtest && '" + kCtags + "' -R --excmd=number -f - . | grep '^" + name +
                                   "\t' | awk -F'\t' '{ sub(/;\"$/, \"\", $3); sub(/^\\.\\//, \"\", $2); print $1, $3, $2 }'");
        const Outcome theirs = Shell("cd gtest && global -x --result=ctags-x " + name);
        ASSERT_FALSE(ours.out.empty()) << name;
        for (size_t at = 0; at < ours.out.size(); at = ours.out.find('\n', at) + 1) {
            const std::string line = ours.out.substr(at, ours.out.find('\n', at) - at);
            const size_t space = line.find(' '), second = line.find(' ', space + 1);
            const std::string lineNumber = line.substr(space + 1, second - space - 1), file = line.substr(second + 1);
            const std::string expected = " " + lineNumber + " " + file;
            std::string compact;  // Global pads its columns; compare with single spaces
            for (char c : theirs.out) if (c != ' ' || compact.empty() || compact.back() != ' ') compact += c;
            EXPECT_NE(compact.find(expected), std::string::npos) << name << ":" << expected << "\n" << theirs.out;
        }
    }
    EXPECT_NE(Shell("cd gtest && global -c InitGoogle").out.find("InitGoogleTest\n"), std::string::npos);
}
