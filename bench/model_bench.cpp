// Large classes and large projects: a class of 50,000 members filled and rescanned
// with half of them gone, and a project of 50,000 files added, walked, saved, loaded
// and emptied.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <unistd.h>

#include "common/constants.h"
#include "model/all_files.h"
#include "persist/save_into_file.h"
#include "support/recording_sink.h"

using namespace kestrel;

namespace {

constexpr int kCount = 50000;

// Path work as the control does it, but no recording: the model's cost alone.
struct QuietSink : test::RecordingSink {
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
    int32_t Language() override { return LANGUAGE_C; }
    void Language(int32_t) override {}
    int32_t ID() override { return 1; }
    void ID(int32_t) override {}
    bool CreateBackup() override { return false; }
};

void Declare(clsClassObject& cls, ModelSink* sink, const FilePtr& file, int step) {
    for (int i = 0; i < kCount; i += step) {
        cls.AddFunction__(u"f" + ToText(i), i, PUBLIC_SCOPE, sink, file, u"(int)");
        cls.AddVariable__(u"v" + ToText(i), i, PUBLIC_SCOPE, sink, file, u"int");
    }
}

void BM_ClassOfFiftyThousandRescannedByHalf(benchmark::State& state) {
    auto sink = std::make_shared<QuietSink>();
    auto file = std::make_shared<clsOneFile>();
    file->SetSinkObject(sink);
    for (auto _ : state) {
        auto cls = std::make_shared<clsClassObject>();
        Declare(*cls, sink.get(), file, 1);
        cls->PrepareUpdate__();
        Declare(*cls, sink.get(), file, 2);
        cls->FinishUpdate__(sink.get(), file);
        int64_t lines = 0;
        for (int32_t i = 1; i <= cls->CountFunc(); ++i) lines += cls->func(i)->Line;
        benchmark::DoNotOptimize(lines);
    }
}

void BM_ProjectOfFiftyThousandFiles(benchmark::State& state) {
    auto sink = std::make_shared<QuietSink>();
    auto dir = std::filesystem::temp_directory_path() / ("kestrel-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    Host host;
    host.name = FromUtf8((dir / "big.kpr").string());
    for (auto _ : state) {
        auto files = std::make_shared<clsAllFiles>();
        files->SetSinkObject__(sink);
        for (int i = 0; i < kCount; ++i) files->Add(u"/proj/src/f" + ToText(i) + u".cpp", FILETYPE_NOPARSE);
        for (int32_t i = 1; i <= files->count(); ++i) files->item(i)->UserId = i;
        clsSaveIntoFile().Save(host, *files);
        auto loaded = std::make_shared<clsAllFiles>();
        loaded->SetSinkObject__(sink);
        clsSaveIntoFile().Load(host.name, host, *loaded);
        for (int i = 0; i < kCount; i += 2) files->Remove(u"/proj/src/f" + ToText(i) + u".cpp");
        while (loaded->count() >= 1) loaded->Remove(loaded->item(1)->FileName());
    }
    std::filesystem::remove_all(dir);
}

}  // namespace

BENCHMARK(BM_ClassOfFiftyThousandRescannedByHalf)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProjectOfFiftyThousandFiles)->Unit(benchmark::kMillisecond);
