// The scanner's and the model's inner loops one by one, on lines shaped like real
// headers: white-space cleaning, comment removal, the block pass, the declaration
// analysers, the substring search and the keyed collection.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "common/constants.h"
#include "model/keyed_collection.h"
#include "scanner/block_scan.h"
#include "scanner/c_analysis.h"
#include "scanner/line_cleaning.h"
#include "scanner/params.h"
#include "scanner/text_search.h"
#include "support/scan_recorder.h"

namespace {

using namespace kestrel;
using test::ScanRecorder;

// Lines of a typical class header: indentation, comments, access labels, members,
// inline bodies and literals.
std::vector<std::u16string> HeaderLines(int classes) {
    std::vector<std::u16string> lines(1);
    for (int c = 0; c < classes; ++c) {
        const std::u16string n = ToText(c);
        for (const std::u16string& line : std::vector<std::u16string>{
                 u"/* Widget " + n + u": draws itself.", u"   Nothing special. */", u"class Widget" + n + u" : public Base",
                 u"{", u"public:", u"\t\tWidget" + n + u"(int width,   int height);  // sizes in pixels",
                 u"    virtual ~Widget" + n + u"();", u"    bool operator==(const Widget" + n + u"& other) const;",
                 u"    int Area() const { return width_ * height_; }", u"    const char* Name() const { return \"{w}\"; }",
                 u"protected:", u"    static const int kLimit = 10;", u"private:", u"    int width_;", u"    int height_;",
                 u"};", u""})
            lines.push_back(line);
    }
    return lines;
}

SyntaxTable CSyntax() {
    ScanRecorder file;
    SyntaxTable syntax;
    syntax.MakeSyntax(file, LANGUAGE_C);
    return syntax;
}

int64_t Units(const std::vector<std::u16string>& lines) {
    int64_t n = 0;
    for (const std::u16string& line : lines) n += static_cast<int64_t>(line.size() * sizeof(char16_t));
    return n;
}

// The form the scanner uses, recording the units of each line as it cleans.
void BM_CleanLine(benchmark::State& state) {
    const std::vector<std::u16string> source = HeaderLines(1000);
    std::vector<std::u16string> lines = source;
    for (auto _ : state) {
        for (size_t i = 0; i < lines.size(); ++i) {
            lines[i].assign(source[i]);
            UnitSet units;
            benchmark::DoNotOptimize(CleanLine(lines[i], units));
            benchmark::DoNotOptimize(units);
        }
    }
    state.SetBytesProcessed(state.iterations() * Units(source));
}
BENCHMARK(BM_CleanLine);

void BM_RemoveComments(benchmark::State& state) {
    const SyntaxTable syntax = CSyntax();
    std::vector<std::u16string> source = HeaderLines(1000);
    for (std::u16string& line : source) CleanLine(line);
    std::vector<std::u16string> lines;
    for (auto _ : state) {
        state.PauseTiming();
        lines = source;
        state.ResumeTiming();
        RemoveComments(lines, static_cast<int32_t>(lines.size() - 1), syntax);
    }
    state.SetBytesProcessed(state.iterations() * Units(source));
}
BENCHMARK(BM_RemoveComments);

void BM_BlockPass(benchmark::State& state) {
    const SyntaxTable syntax = CSyntax();
    std::vector<std::u16string> source = HeaderLines(1000);
    for (std::u16string& line : source) CleanLine(line);
    RemoveComments(source, static_cast<int32_t>(source.size() - 1), syntax);
    std::vector<std::u16string> lines;
    ResultList results;
    for (auto _ : state) {
        state.PauseTiming();
        lines = source;
        results.clear();
        state.ResumeTiming();
        TakeLevelsOut(lines, static_cast<int32_t>(lines.size() - 1), syntax, LANGUAGE_C, results);
    }
    state.SetBytesProcessed(state.iterations() * Units(source));
}
BENCHMARK(BM_BlockPass);

void BM_DeclarationAnalysis(benchmark::State& state) {
    const SyntaxTable syntax = CSyntax();
    std::vector<std::u16string> lines = HeaderLines(1000);
    for (std::u16string& line : lines) CleanLine(line);
    RemoveComments(lines, static_cast<int32_t>(lines.size() - 1), syntax);
    ResultList found;
    TakeLevelsOut(lines, static_cast<int32_t>(lines.size() - 1), syntax, LANGUAGE_C, found);
    const std::vector<RWord> source(found.begin(), found.end());
    for (auto _ : state) {
        ScanRecorder output;
        ParamCollector params(lines, static_cast<int32_t>(lines.size() - 1));
        CAnalysis analysis{syntax, params, output};
        std::vector<RWord> results = source;
        for (RWord& r : results)
            if (r.Scope <= PRIVATE_SCOPE) analysis.ProcessDeclaration(r);
        benchmark::DoNotOptimize(output);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(source.size()));
}
BENCHMARK(BM_DeclarationAnalysis);

void BM_FindTextInALine(benchmark::State& state) {
    const std::u16string line = u"static inline constexpr unsigned long long ComputeTheLongestName(int value) const;";
    for (auto _ : state) {
        for (std::u16string_view needle : {u"//", u"/*", u"class", u"{", u"private"})
            benchmark::DoNotOptimize(FindText(line, needle));
    }
    state.SetItemsProcessed(state.iterations() * 5);
}
BENCHMARK(BM_FindTextInALine);

void BM_KeyedCollectionAddAndFind(benchmark::State& state) {
    std::vector<std::u16string> keys;
    for (int i = 0; i < 50000; ++i) keys.push_back(u"Method" + ToText(i) + u"(INT,CONSTCHAR*)");
    auto value = std::make_shared<int>(0);
    for (auto _ : state) {
        KeyedCollection<int> c;
        for (const std::u16string& k : keys) c.Add(k, value);
        for (const std::u16string& k : keys) benchmark::DoNotOptimize(c.Find(k));
    }
    state.SetItemsProcessed(state.iterations() * 50000);
}
BENCHMARK(BM_KeyedCollectionAddAndFind)->Unit(benchmark::kMillisecond);

}  // namespace
