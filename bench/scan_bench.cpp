// Scanning speed in MB/s for generated sources. Each benchmark writes its text to a
// temporary file once and then times ParseFile over it.
//
//   kestrel_bench                       all benchmarks (the large file is 200 MB)
//   KESTREL_BENCH_LARGE_MB=50 kestrel_bench --benchmark_filter=Large
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "common/constants.h"
#include "common/text.h"
#include "scanner/quillbox.h"
#include "scanner/scan_output.h"

namespace {

using namespace kestrel;

class CountingOutput : public ScanOutput {
public:
    explicit CountingOutput(std::u16string name) : name_(std::move(name)) {}
    int32_t FileType() const override { return FILETYPE_IMPLEMENTATION; }
    const std::u16string& FileName() override { return name_; }
    void WriteDeclare__(const std::u16string&, int32_t, int16_t, const std::u16string&) override { ++calls; }
    void WriteVariable__(const std::u16string&, int32_t, int16_t, const std::u16string&) override { ++calls; }
    void WriteEndClass__(const std::u16string&, int32_t) override { ++calls; }
    void WriteInclude__(const std::u16string&, int32_t) override { ++calls; }
    long calls = 0;

private:
    std::u16string name_;
};

std::string CppUnit(int n) {
    std::string s = "n";
    s += std::to_string(n);
    return "// Unit " + s +
           "\n#include <vector>\n\n/* A class with a few members.\n   Nothing special. */\nclass Widget" + s +
           " : public Base\n{\npublic:\n    Widget" + s + "(int width,\n            int height);\n    virtual ~Widget" +
           s + "();\n    bool operator==(const Widget" + s +
           "& other) const;\n    int Area() const { return width_ * height_; }\n\nprivate:\n    int width_;\n    "
           "int height_;\n    static const char* name_;\n};\n\nWidget" +
           s + "::Widget" + s +
           "(int width, int height)\n    : width_(width), height_(height)\n{\n    if (width > 0) {\n        "
           "Resize(width, \"{\");  // a brace in a string\n    }\n}\n\nint Widget" +
           s + "::Compute(std::vector<int>& values)\n{\n    int sum = 0;\n    for (int v : values) sum += v;\n    "
               "return sum;\n}\n\n";
}

std::string JavaUnit(int n) {
    std::string s = std::to_string(n);
    return "/**\n * Service number " + s + ".\n */\npublic class Service" + s +
           " {\n    private final java.util.List<String> names = new java.util.ArrayList<>();\n    protected int "
           "count;\n\n    public Service" +
           s + "(int count) {\n        this.count = count;\n    }\n\n    public String name(int i) {\n        "
               "return names.get(i);\n    }\n\n    static class Entry {\n        String key;\n        Entry(String "
               "key) { this.key = key; }\n    }\n}\n\n";
}

std::string BasicUnit(int n) {
    std::string s = std::to_string(n);
    return "' Module part " + s + "\r\nPrivate mTotal" + s + " As Long\r\nPublic Name" + s +
           " As String\r\n\r\nPublic Function Total" + s +
           "(ByVal a As Long, _\r\n                      ByVal b As Long) As Long\r\n    Dim x As Long\r\n    x = a "
           "+ b ' add\r\n    Total" +
           s + " = x\r\nEnd Function\r\n\r\nPrivate Sub Reset" + s + "()\r\n    mTotal" + s +
           " = 0\r\nEnd Sub\r\n\r\n";
}

template <class Unit>
std::string Generate(size_t bytes, Unit unit) {
    std::string text;
    text.reserve(bytes + 4096);
    for (int n = 0; text.size() < bytes; ++n) text += unit(n);
    return text;
}

std::string OneLongLine(size_t bytes) {
    std::string text;
    text.reserve(bytes + 64);
    while (text.size() < bytes) text += "x = f(a, \"s{\", '}') /* c */ + g(b[1]) * 2; { y; } ";
    return text + "\n";
}

class BenchFile {
public:
    explicit BenchFile(const std::string& text) {
        path_ = (std::filesystem::temp_directory_path() /
                 ("kestrel-bench-" + std::to_string(::getpid()) + "-" + std::to_string(++counter_)))
                    .string();
        std::ofstream(path_, std::ios::binary) << text;
        size_ = text.size();
    }
    ~BenchFile() { std::remove(path_.c_str()); }
    const std::string& path() const { return path_; }
    size_t size() const { return size_; }

private:
    static inline int counter_ = 0;
    std::string path_;
    size_t size_;
};

void Scan(benchmark::State& state, const BenchFile& file, int16_t language) {
    long calls = 0;
    for (auto _ : state) {
        CountingOutput out(FromUtf8(file.path()));
        clsQuillbox scanner;
        scanner.ParseFile(out, language);
        calls = out.calls;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(file.size()));
    state.counters["calls"] = static_cast<double>(calls);
}

constexpr size_t kMB = 1 << 20;

void BM_ScanCpp(benchmark::State& state) {
    static const BenchFile file(Generate(16 * kMB, CppUnit));
    Scan(state, file, LANGUAGE_C);
}

void BM_ScanJava(benchmark::State& state) {
    static const BenchFile file(Generate(16 * kMB, JavaUnit));
    Scan(state, file, LANGUAGE_JAVA);
}

void BM_ScanBasic(benchmark::State& state) {
    static const BenchFile file(Generate(16 * kMB, BasicUnit));
    Scan(state, file, LANGUAGE_BASIC);
}

void BM_ScanOneTenMegabyteLine(benchmark::State& state) {
    static const BenchFile file(OneLongLine(10 * kMB));
    Scan(state, file, LANGUAGE_C);
}

void BM_ScanLargeFile(benchmark::State& state) {
    const char* mb = std::getenv("KESTREL_BENCH_LARGE_MB");
    static const BenchFile file(Generate((mb ? std::strtoul(mb, nullptr, 10) : 200) * kMB, CppUnit));
    Scan(state, file, LANGUAGE_C);
}

}  // namespace

BENCHMARK(BM_ScanCpp)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanJava)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanBasic)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanOneTenMegabyteLine)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanLargeFile)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();
