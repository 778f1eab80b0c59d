// The project-wide symbol index over real files: what it finds, how it ranks and
// filters, and that updating it file by file gives what a full rebuild gives.
#include <gtest/gtest.h>

#include "common/constants.h"
#include "common/text.h"
#include "model/all_files.h"
#include "search/symbol_index.h"
#include "support/recording_sink.h"
#include "support/scratch.h"

using namespace kestrel;
namespace fs = std::filesystem;

namespace {

struct IndexFixture : ::testing::Test, test::RecordedFiles<> {
    test::ScratchDir scratch;
    SymbolIndex index;

    IndexFixture() {
        sink->ProjectDir = FromUtf8(scratch.path().string() + "/");
        Write("shape.h",
              "class Shape\n{\npublic:\n    virtual double Area();\n    void empty_range(int n);\nprotected:\n"
              "    int m_sides;\n};\n");
        Write("circle.h",
              "class Circle\n{\npublic:\n    double Area();\n    void EmptyRange();\nprivate:\n    double m_radius;\n};\n");
        Write("main.cpp", "int g_count;\n\nint main(int argc, char** argv)\n{\n}\n\nvoid Shape::empty_range(int n)\n{\n}\n");
        for (const char* name : {"shape.h", "circle.h", "main.cpp"})
            files->Add(Path(name), std::string(name).ends_with(".h") ? FILETYPE_DEFINITION : FILETYPE_IMPLEMENTATION);
        index.Rebuild(*files);
    }
    void Write(const std::string& name, const std::string& text) { test::WriteFileBytes(scratch.path() / name, text); }
    std::u16string Path(const std::string& name) { return FromUtf8((scratch.path() / name).string()); }

    // Each hit as "KIND SCOPE CONTAINER::NAME PARAMS FILE:LINE".
    std::vector<std::string> Find(const SymbolQuery& query) const {
        std::vector<std::string> out;
        for (const SymbolHit& h : index.Find(query)) {
            const char* kind = h.kind == SymbolKind::Class ? "class" : h.kind == SymbolKind::Function ? "function" : "variable";
            out.push_back(std::string(kind) + " " + std::to_string(h.scope) + " " + ToUtf8(h.container) + "::" +
                          ToUtf8(h.name) + " " + ToUtf8(h.params) + " " +
                          fs::path(ToUtf8(h.file)).filename().string() + ":" + std::to_string(h.line));
        }
        return out;
    }
    std::vector<std::string> Find(std::u16string text, size_t limit = 100) const {
        SymbolQuery q;
        q.text = std::move(text);
        q.limit = limit;
        return Find(q);
    }
};

using Hits = std::vector<std::string>;

}  // namespace

TEST_F(IndexFixture, HoldsEveryClassFunctionAndVariableWithWhereItIs) {
    EXPECT_EQ(index.FileCount(), 3u);
    EXPECT_EQ(index.SymbolCount(), 12u);  // 2 classes, 2 x 3 members, 4 at file level and in main.cpp
    EXPECT_EQ(Find(u"area"), (Hits{"function 1 Circle::Area () circle.h:4", "function 1 Shape::Area () shape.h:4"}));
    EXPECT_EQ(Find(u"circle"), (Hits{"class 0 ::Circle  circle.h:4"}));
    EXPECT_EQ(Find(u"gcount"), (Hits{"variable 0 ::g_count int main.cpp:1"}));
}

TEST_F(IndexFixture, RanksWordStartsFirstThenByNameFileAndLine) {
    // "er" starts two words of EmptyRange and empty_range; elsewhere it is inside one.
    const Hits hits = Find(u"er");
    ASSERT_GE(hits.size(), 3u);
    EXPECT_EQ(hits[0], "function 1 Circle::EmptyRange () circle.h:5");
    EXPECT_EQ(hits[1], "function 0 Shape::empty_range (int n) main.cpp:7");
    EXPECT_EQ(hits[2], "function 1 Shape::empty_range (int n) shape.h:5");
    EXPECT_EQ(Find(u"empty range"), (Hits{"function 1 Circle::EmptyRange () circle.h:5",
                                          "function 0 Shape::empty_range (int n) main.cpp:7",
                                          "function 1 Shape::empty_range (int n) shape.h:5"}));
}

TEST_F(IndexFixture, AQualifiedQueryMatchesTheContainer) {
    EXPECT_EQ(Find(u"Shape::area"), (Hits{"function 1 Shape::Area () shape.h:4"}));
    EXPECT_EQ(Find(u"crc.ar"), (Hits{"function 1 Circle::Area () circle.h:4"}));
    EXPECT_EQ(Find(u"Circle::"), (Hits{"function 1 Circle::Area () circle.h:4", "function 1 Circle::EmptyRange () circle.h:5",
                                      "variable 3 Circle::m_radius double circle.h:7"}));
    EXPECT_TRUE(Find(u"Nowhere::area").empty());
}

TEST_F(IndexFixture, LimitsFiltersAndTheEmptyQuery) {
    EXPECT_EQ(Find(u"", 0).size(), index.SymbolCount());
    EXPECT_EQ(Find(u"", 2), (Hits{"function 1 Circle::Area () circle.h:4", "function 1 Shape::Area () shape.h:4"}));
    EXPECT_EQ(Find(u"e", 1).size(), 1u);
    EXPECT_TRUE(Find(u"zzz").empty());

    SymbolQuery variables;
    variables.kind = SymbolKind::Variable;
    EXPECT_EQ(Find(variables), (Hits{"variable 0 ::g_count int main.cpp:1", "variable 3 Circle::m_radius double circle.h:7",
                                     "variable 2 Shape::m_sides int shape.h:7"}));
    SymbolQuery isPrivate;
    isPrivate.scope = PRIVATE_SCOPE;
    EXPECT_EQ(Find(isPrivate), (Hits{"variable 3 Circle::m_radius double circle.h:7"}));
}

TEST_F(IndexFixture, FileByFileUpdatesMatchAFullRebuild) {
    auto sameAsRebuilt = [&] {
        SymbolIndex rebuilt;
        rebuilt.Rebuild(*files);
        SymbolQuery all;
        all.limit = 0;
        auto describe = [](const std::vector<SymbolHit>& hits) {
            std::vector<std::string> out;
            for (const auto& h : hits)
                out.push_back(ToUtf8(h.container + u"::" + h.name + h.params + u" " + h.file) + ":" +
                              std::to_string(h.line) + " " + std::to_string(h.scope));
            return out;
        };
        EXPECT_EQ(describe(index.Find(all)), describe(rebuilt.Find(all)));
        EXPECT_EQ(index.SymbolCount(), rebuilt.SymbolCount());
    };

    // A rescan that renames a member, drops one and adds a class.
    Write("circle.h", "class Circle\n{\npublic:\n    double Perimeter();\n};\nclass Ring\n{\n    int m_width;\n};\n");
    FilePtr circle = files->item(Path("circle.h"));
    ASSERT_TRUE(circle);
    circle->UpdateFile();
    index.UpdateFile(*circle);
    sameAsRebuilt();
    EXPECT_EQ(Find(u"perim"), (Hits{"function 1 Circle::Perimeter () circle.h:4"}));
    EXPECT_TRUE(Find(u"m_radius").empty());

    // A removed file leaves nothing behind; removing it twice is refused.
    ASSERT_TRUE(files->Remove(Path("main.cpp")));
    EXPECT_TRUE(index.RemoveFile(Path("main.cpp")));
    EXPECT_FALSE(index.RemoveFile(Path("main.cpp")));
    sameAsRebuilt();
    EXPECT_TRUE(Find(u"g_count").empty());

    // A file added after the index was built.
    Write("square.h", "class Square\n{\npublic:\n    double Side();\n};\n");
    index.UpdateFile(*files->Add(Path("square.h"), FILETYPE_DEFINITION));
    sameAsRebuilt();
    EXPECT_EQ(index.FileCount(), 3u);
}

TEST(SymbolIndexRanking, ALimitedQueryGivesTheHeadOfTheFullRanking) {
    // Limited queries skip every symbol whose name cannot make the list; the full
    // ranking, which skips nothing, must begin with exactly what they give.
    test::RecordedFiles<> project;
    test::ScratchDir scratch;
    project.sink->ProjectDir = FromUtf8(scratch.path().string() + "/");
    const char* members[] = {"Area", "area", "Draw", "drawAll", "DrawArea", "redraw", "size", "Size", "resize", "count"};
    for (int f = 0; f < 12; ++f) {
        std::string text = "class Shape" + std::to_string(f % 4) + "\n{\npublic:\n";
        for (int m = 0; m < 10; ++m)
            if ((m + f) % 3 != 0) text += "    int " + std::string(members[(m + f) % 10]) + "(int a" + std::to_string(m) + ");\n";
        text += "    int area" + std::to_string(f) + "x();\n";  // a name of one symbol only
        text += "private:\n    int " + std::string(members[f % 10]) + "_;\n};\nint g_" + members[(f * 7) % 10] + ";\n";
        const std::string name = "f" + std::to_string(f) + ".h";
        test::WriteFileBytes(scratch.path() / name, text);
        project.files->Add(FromUtf8((scratch.path() / name).string()), FILETYPE_DEFINITION);
    }
    SymbolIndex index;
    index.Rebuild(*project.files);
    auto key = [](const SymbolHit& h) {
        return ToUtf8(h.container + u"::" + h.name + h.params + u" " + h.file) + ":" + std::to_string(h.line);
    };
    for (const char16_t* text : {u"a", u"ar", u"dr", u"draw", u"sz", u"e", u"", u"count"}) {
        SymbolQuery all;
        all.text = text;
        all.limit = 0;
        const auto full = index.Find(all);
        for (size_t limit : {1, 3, 7, 40}) {
            SymbolQuery some = all;
            some.limit = limit;
            const auto head = index.Find(some);
            ASSERT_EQ(head.size(), std::min(limit, full.size()));
            for (size_t i = 0; i < head.size(); ++i)
                EXPECT_EQ(key(head[i]), key(full[i])) << ToUtf8(text) << " limit " << limit << " at " << i;
        }
    }
}
