// Large classes and large projects: a class of 50,000 members rescanned with half of
// them gone, a project of 50,000 files added, walked, looked up, saved, loaded and
// removed. Prints the time of each step.
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "common/constants.h"
#include "model/all_files.h"
#include "persist/save_into_file.h"
#include "support/recording_sink.h"

using namespace kestrel;

namespace {

constexpr int kCount = 50000;

template <class Step>
void Time(const char* what, Step&& step) {
    auto start = std::chrono::steady_clock::now();
    step();
    std::chrono::duration<double, std::milli> ms = std::chrono::steady_clock::now() - start;
    std::printf("%-44s %9.1f ms\n", what, ms.count());
}

struct NoSink : test::RecordingSink {
    void AddFunction__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void AddVariable__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void RemoveFunction__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void RemoveVariable__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void AddFile__(const FilePtr&) override {}
    void RemoveFile__(const FilePtr&) override {}
    void AddClassNode__WithDummy(const ClassPtr&, const FilePtr&) override {}
};

struct Host : ProjectHost {
    std::u16string name;
    std::u16string FileName() override { return name; }
    void FileName(const std::u16string& n) override { name = n; }
    int32_t Language() override { return 0; }
    void Language(int32_t) override {}
    int32_t ID() override { return 1; }
    void ID(int32_t) override {}
    bool CreateBackup() override { return false; }
};

}  // namespace

int main() {
    auto sink = std::make_shared<NoSink>();
    auto file = std::make_shared<clsOneFile>();
    file->SetSinkObject(sink);
    auto cls = std::make_shared<clsClassObject>();
    cls->Name = u"Big";

    Time("class: add 50,000 functions and variables", [&] {
        for (int i = 0; i < kCount; ++i) {
            cls->AddFunction__(u"f" + ToText(i), i, PUBLIC_SCOPE, sink.get(), file, u"(int)");
            cls->AddVariable__(u"v" + ToText(i), i, PUBLIC_SCOPE, sink.get(), file, u"int");
        }
    });
    Time("class: rescan keeping every second member", [&] {
        cls->PrepareUpdate__();
        for (int i = 0; i < kCount; i += 2) {
            cls->AddFunction__(u"f" + ToText(i), i, PUBLIC_SCOPE, sink.get(), file, u"(int)");
            cls->AddVariable__(u"v" + ToText(i), i, PUBLIC_SCOPE, sink.get(), file, u"int");
        }
        cls->FinishUpdate__(sink.get(), file);
    });
    Time("class: 25,000 lookups by position and key", [&] {
        long sum = 0;
        for (int i = 1; i <= cls->CountFunc(); ++i) sum += cls->func(i)->Line + cls->var(u"v" + ToText(2 * i - 2))->Line;
        if (sum < 0) std::puts("");
    });

    auto files = std::make_shared<clsAllFiles>();
    files->SetSinkObject__(sink);
    Time("project: add 50,000 unparsed files", [&] {
        for (int i = 0; i < kCount; ++i) files->Add(u"/proj/src/f" + ToText(i) + u".cpp", FILETYPE_NOPARSE);
    });
    Time("project: item(i) over all files", [&] {
        for (int i = 1; i <= files->count(); ++i) files->item(i)->UserId = i;
    });
    auto dir = std::filesystem::temp_directory_path() / "kestrel-bench";
    std::filesystem::create_directories(dir);
    Host host;
    host.name = FromUtf8((dir / "big.kpr").string());
    Time("project: save", [&] { clsSaveIntoFile().Save(host, *files); });
    auto loaded = std::make_shared<clsAllFiles>();
    loaded->SetSinkObject__(sink);
    Time("project: load", [&] { clsSaveIntoFile().Load(host.name, host, *loaded); });
    Time("project: remove every second file by key", [&] {
        for (int i = 0; i < kCount; i += 2) files->Remove(u"/proj/src/f" + ToText(i) + u".cpp");
    });
    Time("project: remove position 1 until empty", [&] {
        while (loaded->count() >= 1) loaded->Remove(loaded->item(1)->FileName());
    });
    std::filesystem::remove_all(dir);
    return 0;
}
