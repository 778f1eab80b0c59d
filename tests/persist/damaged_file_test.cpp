#include <gtest/gtest.h>

#include <chrono>

#include "project_support.h"

using namespace kestrel;
using namespace kestrel::test;

namespace {

struct DamagedProjectFile : ProjectOnDisk {
    ErrorCapture errors;
    std::string real;

    DamagedProjectFile() {
        Project sample;
        BuildSample(sample);
        EXPECT_TRUE(SaveAs("real.kpr", sample));
        real = Bytes("real.kpr");
    }
    // The load must end (the test's time limit guards against a hang) and must not
    // build more than the bytes can hold.
    void LoadDamaged(const std::string& bytes) {
        WriteFileBytes(dir / "damaged.kpr", bytes);
        Project damaged;
        damaged.Load(dir / "damaged.kpr");
        int entries = 0;
        for (const FilePtr& f : damaged.files->Files())
            for (const ClassPtr& c : f->Classes()) entries += 1 + c->CountFunc() + c->CountVars();
        EXPECT_LE(entries, static_cast<int>(bytes.size()));
    }
};

}  // namespace

TEST_F(DamagedProjectFile, EveryPrefixOfARealFileLoadsOrFails) {
    for (size_t n = 0; n <= real.size(); ++n) LoadDamaged(real.substr(0, n));
    ASSERT_TRUE(p.Load(dir / "real.kpr"));
    EXPECT_EQ(p.files->count(), 3);
}

TEST_F(DamagedProjectFile, HugeCountsEndWithTheData) {
    auto start = std::chrono::steady_clock::now();
    const int32_t huge = 2000000000;
    // Two billion files, with no data behind the count: one file of zeros is read.
    EXPECT_TRUE(LoadBytes(S("KESTREL1.1") + N(0) + N(0) + N(huge), "files.kpr"));
    EXPECT_EQ(p.files->count(), 1);
    EXPECT_EQ(p.files->item(1)->count(), 0);
    // Two billion classes, variables and functions behind one real record each.
    Project items;
    WriteFileBytes(dir / "items.kpr", S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.cpp") + N(1) + N(huge) + N(0) + S("") +
                                          S("A") + N(0) + S("") + N(0) + N(huge) + ItemRecord("v", 1));
    EXPECT_TRUE(items.Load(dir / "items.kpr"));
    ASSERT_EQ(items.files->count(), 1);
    EXPECT_EQ(items.files->item(1)->count(), 1);
    EXPECT_EQ(items.files->item(1)->item(1)->CountVars(), 2);  // the real one and the one read at the end
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(DamagedProjectFile, AFileThatEndsBeforeItsRecordsLoadsWhatItHoldsAndSaysSo) {
    // Cut inside the header, inside a file record, inside an item's texts.
    for (size_t n : {size_t(16), real.size() / 2, real.size() - 1}) {
        SCOPED_TRACE(n);
        errors.reports.clear();
        WriteFileBytes(dir / "cut.kpr", real.substr(0, n));
        Project cut;
        EXPECT_TRUE(cut.Load(dir / "cut.kpr"));
        ASSERT_EQ(errors.Seen(), std::vector<std::string>{"clsSaveIntoFile.cls|Function Load|75"});
        EXPECT_EQ(errors.reports[0].message, "the project file ended early");
    }
    // The whole file, and a project that is only a header, end where their records do.
    errors.reports.clear();
    EXPECT_TRUE(p.Load(dir / "real.kpr"));
    Project empty;
    EXPECT_TRUE(SaveAs("empty.kpr", empty));
    EXPECT_TRUE(empty.Load(dir / "empty.kpr"));
    EXPECT_TRUE(errors.reports.empty());
}
