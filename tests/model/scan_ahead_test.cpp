// Scanning on worker threads must leave no trace: the same sink calls, the same error
// reports in the same places among them, the same model, for adds and full rescans.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "common/constants.h"
#include "model/all_files.h"
#include "support/error_capture.h"
#include "support/recording_sink.h"
#include "support/scratch.h"

using namespace kestrel;
namespace fs = std::filesystem;

namespace {

// A sink that also refuses every variable named "refused", as a failing tree would.
class RefusingSink : public test::RecordingSink {
public:
    void AddVariable__(const ItemPtr& i, const ClassPtr& c, const FilePtr& f) override {
        if (i->Name() == u"refused") throw RuntimeError(kErrInvalidCall, "refused");
        test::RecordingSink::AddVariable__(i, c, f);
    }
};

struct Folder {
    test::ScratchDir scratch;
    const fs::path& dir = scratch.path();
    std::vector<std::pair<std::u16string, int32_t>> files;

    Folder() {
        for (int i = 0; i < 40; ++i) {
            std::string text = "class C" + std::to_string(i) + "\n{\npublic:\n  int refused;\n  void f(int a);\n};\n";
            if (i % 7 == 3) {  // more open classes than the scanner keeps: a report mid-scan
                for (int k = 0; k < 1100; ++k) text += "class N" + std::to_string(k) + "\n{\n";
            }
            Add("f" + std::to_string(i) + (i % 5 == 0 ? ".h" : ".cpp"), text, i % 5 == 0 ? FILETYPE_DEFINITION : FILETYPE_IMPLEMENTATION);
        }
        Add("notes.txt", "int ignored;\n", FILETYPE_NOPARSE);
        fs::create_directory(dir / "folder.cpp");  // cannot be read
        files.emplace_back(FromUtf8((dir / "folder.cpp").string()), FILETYPE_IMPLEMENTATION);
    }
    void Add(const std::string& name, const std::string& text, int32_t type) {
        test::WriteFileBytes(dir / name, text);
        files.emplace_back(FromUtf8((dir / name).string()), type);
    }
};

// Everything the host could observe: sink calls and error reports, in one sequence.
struct ObservedRun : test::RecordedFiles<RefusingSink> {
    std::vector<std::string> observed;

    explicit ObservedRun(unsigned threads) { files->SetScanThreads(threads); }
    template <class Step>
    void Observe(Step&& step) {
        test::ErrorCapture reports(&sink->calls);
        step();
        for (std::string& c : sink->Take()) observed.push_back(std::move(c));
    }
};

}  // namespace

TEST(ScanAhead, AddsAndRescansOnWorkersAreIndistinguishableFromScanningInPlace) {
    Folder folder;
    std::vector<ObservedRun> runs;
    for (unsigned threads : {0u, 1u, 3u}) {
        ObservedRun& run = runs.emplace_back(threads);
        run.Observe([&] {
            run.files->ScanAheadOfAdd(folder.files);
            for (const auto& [name, type] : folder.files) run.files->Add(name, type);
        });
        // Changed on disk, then rescanned as a whole.
        test::WriteFileBytes(folder.dir / "f1.cpp", "int changed;\n");
        run.Observe([&] { run.files->UpdateAllFiles(); });
        test::WriteFileBytes(folder.dir / "f1.cpp", "class C1\n{\n  int refused;\n  void f(int a);\n};\n");
    }
    const std::vector<std::string>& seen = runs[0].observed;
    ASSERT_GT(seen.size(), 200u);
    for (const char* report : {"report Sub TakeLevelsOut Subscript out of range", "report Sub WriteVariable__ refused"})
        EXPECT_NE(std::find(seen.begin(), seen.end(), report), seen.end()) << report;
    EXPECT_EQ(runs[1].observed, seen);
    EXPECT_EQ(runs[2].observed, seen);

    // Adds that leave the announced order still scan every file: backwards, one
    // skipped, and one added under another type than announced.
    ObservedRun ahead(2);
    ahead.Observe([&] {
        ahead.files->ScanAheadOfAdd(folder.files);
        for (auto f = folder.files.rbegin(); f != folder.files.rend(); ++f) {
            if (f->first.ends_with(u"f2.cpp")) continue;
            ahead.files->Add(f->first, f->first.ends_with(u"f4.cpp") ? FILETYPE_DEFINITION : f->second);
        }
    });
    runs[0].Observe([&] { runs[0].files->UpdateAllFiles(); });  // f1 as it is on disk again
    EXPECT_EQ(ahead.files->count(), runs[0].files->count() - 1);
    for (const FilePtr& f : ahead.files->Files()) {
        FilePtr same = runs[0].files->FindFile(f->FileName());
        ASSERT_TRUE(same);
        EXPECT_EQ(f->count(), same->count()) << ToUtf8(f->FileName());
    }
}

TEST(ScanAhead, AddsFiledInPortionsAreIndistinguishableFromAdd) {
    Folder folder;
    // Parameter texts of over a million code units in all: the scan keeps them in
    // several buffers, freed as the portions pass them.
    std::string large;
    for (int i = 0; i < 30; ++i) large += "void large" + std::to_string(i) + "(int " + std::string(40000, 'a' + i % 26) + ");\n";
    folder.Add("large.cpp", large, FILETYPE_IMPLEMENTATION);
    ObservedRun whole(0);
    whole.Observe([&] {
        for (const auto& [name, type] : folder.files) whole.files->Add(name, type);
    });
    // The smallest budget files one call per portion; scanned ahead on workers or here.
    for (unsigned threads : {0u, 2u}) {
        ObservedRun portioned(threads);
        size_t portions = 0;
        portioned.Observe([&] {
            portioned.files->ScanAheadOfAdd(folder.files);
            for (const auto& [name, type] : folder.files) {
                while (!portioned.files->AddIsReady(name, type)) std::this_thread::yield();
                const FilePtr file = portioned.files->BeginAdd(name, type);
                ASSERT_TRUE(file);
                do ++portions;
                while (!portioned.files->ContinueAdd(file, 1));
            }
        });
        EXPECT_GT(portions, 3 * folder.files.size());  // a class, its variable and its function each
        EXPECT_EQ(portioned.observed, whole.observed) << threads << " threads";
        EXPECT_FALSE(portioned.files->BeginAdd(folder.files[0].first, folder.files[0].second));  // present already
    }
}
