#include "scanner/quillbox.h"

#include <fstream>
#include <limits>

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/basic_analysis.h"
#include "scanner/block_scan.h"
#include "scanner/c_analysis.h"
#include "scanner/debug_dump.h"
#include "scanner/line_cleaning.h"
#include "scanner/loader.h"
#include "scanner/params.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr char kLineDumpFile[] = "c:\\debug.txt";
constexpr char kResultDumpFile[] = "c:\\debug_result.txt";

// The include pass keeps its place in the pass order but joins nothing: statements
// that run over several lines reach the block pass one line at a time.
void ParseInclude() {}

}  // namespace

void clsQuillbox::StartScan(ScanOutput& output, int16_t nLang) {
    lines_.assign(1, std::u16string());
    lineCount_ = 0;
    syntax.MakeSyntax(output, nLang);
    results_.clear();
}

void clsQuillbox::StoreLine(std::u16string raw) {
    ++lineCount_;
    // A line holding line feeds becomes one line per piece; the counter runs on.
    size_t lf = raw.find(u'\n');
    if (lf == std::u16string::npos) {
        lines_.push_back(std::move(CleanLine(raw)));
        return;
    }
    std::u16string_view rest = raw;
    do {
        std::u16string piece(rest.substr(0, lf));
        lines_.push_back(std::move(CleanLine(piece)));
        rest.remove_prefix(lf + 1);
        ++lineCount_;
    } while ((lf = rest.find(u'\n')) != std::u16string_view::npos);
    std::u16string last(rest);
    lines_.push_back(std::move(CleanLine(last)));
}

void clsQuillbox::RunPasses(ScanOutput& output, int16_t nLang) {
    RemoveComments(lines_, lineCount_, syntax);
    ParseInclude();
    if (beforeBlockPass_) beforeBlockPass_(*this);
    TakeLevelsOut(lines_, lineCount_, syntax, nLang, results_);
    SecondPass(output, nLang);
    // The line array goes; the results stay until the next scan.
    lines_.clear();
    lines_.shrink_to_fit();
}

bool clsQuillbox::ParseFile(ScanOutput& output, int16_t nLang) {
    bool scanned = false;
    Trap(kModule, "Function ParseFile", [&] {
        clsLoader loader;
        loader.Init();
        StartScan(output, nLang);
        if (!loader.OpenFile(ToUtf8(output.FileName()))) return;
        while (!loader.EndOfFile) StoreLine(loader.ReadLine());
        loader.CloseFile();
        RunPasses(output, nLang);
        scanned = true;
    });
    return scanned;
}

bool clsQuillbox::ParseEmbeededFile(ScanOutput& output, int16_t nLang, LineSource& source) {
    bool scanned = false;
    Trap(kModule, "Function ParseEmbeededFile", [&] {
        StartScan(output, nLang);
        const int32_t n = source.GetLineCount();
        lines_.reserve(static_cast<size_t>(std::max(n, 0)) + 1);
        // One counter is both the array index and the host's line number, so a host
        // line split at line feeds makes the following host lines skip ahead.
        while (lineCount_ < n) StoreLine(source.Line(lineCount_ + 1));
        RunPasses(output, nLang);
        scanned = true;
    });
    return scanned;
}

void clsQuillbox::SecondPass(ScanOutput& output, int16_t nLang) {
    Trap(kModule, "Sub SecondPass", [&] {
        ParamCollector params(lines_, lineCount_);
        const size_t count = results_.size();
        if (nLang == LANGUAGE_C || nLang == LANGUAGE_JAVA) {
            CAnalysis analysis{syntax, params, output};
            for (size_t k = 0; k < count; ++k) {
                RWord& r = results_[k];
                if (r.Scope == kResultEndClass) output.WriteEndClass__(r.Class, r.Line);
                else if (r.Scope == kResultInclude) output.WriteInclude__(r.word, r.Line);
                else if (r.Scope != kResultVariable) analysis.ProcessDeclaration(r);
            }
        } else if (nLang == LANGUAGE_BASIC) {
            BasicAnalysis analysis{syntax, params, output};
            for (size_t k = 0; k < count; ++k) {
                RWord& r = results_[k];
                if (r.Scope == kResultVariable) analysis.ProcessBasicVariable(r);
                else analysis.ProcessBasicDeclaration(r);
            }
        }
    });
}

void clsQuillbox::DebugFile() {
    Trap(kModule, "Sub DebugFile", [&] {
        std::ofstream out(kLineDumpFile, std::ios::out | std::ios::trunc | std::ios::binary);
        if (!out) throw RuntimeError(kErrFileIo, "Path/File access error");
        // The line counter is 16 bits wide.
        constexpr int32_t kCounterLimit = std::numeric_limits<int16_t>::max();
        WriteLineDump(out, lines_, std::min(lineCount_, kCounterLimit));
        if (lineCount_ > kCounterLimit) throw RuntimeError(6, "Overflow");
    });
}

void clsQuillbox::DebugResult() {
    Trap(kModule, "Sub DebugResult", [&] {
        std::ofstream out(kResultDumpFile, std::ios::out | std::ios::trunc | std::ios::binary);
        if (!out) return;  // errors while opening are ignored
        WriteResultDump(out, results_);
    });
}

}  // namespace kestrel
