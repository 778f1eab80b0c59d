#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "project_support.h"
#include "support/error_capture.h"

using namespace kestrel;
using namespace kestrel::test;

namespace {

// A real project file: two files, classes with variables and functions.
std::string RealProjectFile(const ScratchDir& dir) {
    Project p;
    FilePtr a = p.files->Add(u"/proj/a.cpp", FILETYPE_NOPARSE);
    a->FileType(FILETYPE_IMPLEMENTATION);
    a->WriteDeclare__(u"A::f", 3, PUBLIC_SCOPE, u"(int x)");
    a->WriteDeclare__(u"A::g", 5, PRIVATE_SCOPE, u"()");
    a->WriteVariable__(u"A::m", 7, PROTECTED_SCOPE, u"long");
    a->WriteDeclare__(u"main", 9, PUBLIC_SCOPE, u"()");
    FilePtr b = p.files->Add(u"/proj/b.h", FILETYPE_NOPARSE);
    b->FileType(FILETYPE_DEFINITION);
    b->WriteVariable__(u"B::count", 2, PUBLIC_SCOPE, u"int");
    p.host.fileName = FromUtf8(dir / "real.kpr");
    EXPECT_TRUE(p.Save());
    return ReadFileBytes(dir / "real.kpr");
}

// Loads bytes as a project file; the load must end (the test's time limit guards
// against a hang) and must not build more than the bytes can hold.
void LoadBytes(const ScratchDir& dir, const std::string& bytes) {
    WriteFileBytes(dir / "damaged.kpr", bytes);
    Project p;
    p.Load(dir / "damaged.kpr");
    int entries = 0;
    for (const FilePtr& f : p.files->Files())
        for (const ClassPtr& c : f->Classes()) entries += 1 + c->CountFunc() + c->CountVars();
    EXPECT_LE(entries, static_cast<int>(bytes.size()));
}

}  // namespace

TEST(DamagedProjectFile, EveryPrefixOfARealFileLoadsOrFails) {
    ScratchDir dir;
    ErrorCapture errors;
    std::string real = RealProjectFile(dir);
    for (size_t n = 0; n <= real.size(); ++n) LoadBytes(dir, real.substr(0, n));
    Project whole;
    ASSERT_TRUE(whole.Load(dir / "real.kpr"));
    EXPECT_EQ(whole.files->count(), 2);
}

TEST(DamagedProjectFile, RandomBytesAndRandomDamage) {
    ScratchDir dir;
    ErrorCapture errors;
    std::string real = RealProjectFile(dir);
    std::mt19937 random(20261121);
    for (int round = 0; round < 300; ++round) {
        std::string bytes = real;
        if (round % 2 == 0) {
            bytes.resize(random() % 400);
            for (char& c : bytes) c = static_cast<char>(random());
            if (round % 4 == 0 && bytes.size() >= 14) bytes.replace(0, 14, S("KESTREL1.1"));
        } else {
            for (int k = 0; k < 4; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        LoadBytes(dir, bytes);
    }
}

TEST(DamagedProjectFile, HugeCountsEndWithTheData) {
    ScratchDir dir;
    ErrorCapture errors;
    auto start = std::chrono::steady_clock::now();
    const int32_t huge = 2000000000;
    // Two billion files, with no data behind the count: one file of zeros is read.
    WriteFileBytes(dir / "files.kpr", S("KESTREL1.1") + N(0) + N(0) + N(huge));
    Project files;
    EXPECT_TRUE(files.Load(dir / "files.kpr"));
    EXPECT_EQ(files.files->count(), 1);
    EXPECT_EQ(files.files->item(1)->count(), 0);
    // Two billion classes, variables and functions behind one real record each.
    WriteFileBytes(dir / "items.kpr", S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.cpp") + N(1) + N(huge) + N(0) + S("") +
                                      S("A") + N(0) + S("") + N(0) + N(huge) + ItemRecord("v", 1));
    Project items;
    EXPECT_TRUE(items.Load(dir / "items.kpr"));
    ASSERT_EQ(items.files->count(), 1);
    EXPECT_EQ(items.files->item(1)->count(), 1);
    EXPECT_EQ(items.files->item(1)->item(1)->CountVars(), 2);  // the real one and the one read at the end
    auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LT(elapsed, std::chrono::seconds(5));
}

TEST(DamagedProjectFile, AnOverlongStringMisalignsWithoutHarm) {
    ScratchDir dir;
    ErrorCapture errors;
    // Texts saved by kestrel itself (no limit when writing): 31,999 units load back
    // whole, 32,000 load back empty and misalign what follows.
    for (size_t length : {31999u, 32000u}) {
        Project writer;
        FilePtr f = writer.files->Add(u"/proj/x.cpp", FILETYPE_NOPARSE);
        f->UserData = std::u16string(length, u'u');
        writer.host.fileName = FromUtf8(dir / "written.kpr");
        ASSERT_TRUE(writer.Save());
        Project reader;
        EXPECT_TRUE(reader.Load(dir / "written.kpr"));
        ASSERT_GE(reader.files->count(), 1);
        EXPECT_EQ(reader.files->item(1)->UserData, length < 32000 ? f->UserData : u"");
    }
}
