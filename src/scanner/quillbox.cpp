#include "scanner/quillbox.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <utility>

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/basic_analysis.h"
#include "scanner/block_scan.h"
#include "scanner/c_analysis.h"
#include "scanner/cpp_analysis.h"
#include "scanner/cpp_blocks.h"
#include "scanner/cpp_comments.h"
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

// Line storage handed from one scan to the next on the same thread, so that a scan
// allocates only for lines longer than any seen before. The line entries stay
// constructed, each with its storage, and a scan writes over them in order. Bounded,
// so a huge file does not keep its memory after its scan.
struct LinePool {
    static constexpr size_t kMaxLines = 1 << 16;
    static constexpr size_t kMaxUnits = 512;
    static constexpr size_t kMaxResults = 1 << 14;
    static constexpr size_t kMaxResultUnits = size_t{1} << 18;
    std::vector<std::u16string> lines;  // entries whose texts mean nothing any more
    std::vector<UnitSet> units;         // an empty unit-set array with its capacity
    ResultList results;                 // an empty result list with its records
};

LinePool& Pool() {
    thread_local LinePool pool;
    return pool;
}

}  // namespace

void clsQuillbox::StartScan(ScanOutput& output, int16_t nLang) {
    ReleaseLines();
    lines_.swap(Pool().lines);
    if (units_.capacity() == 0) units_.swap(Pool().units);
    if (results_.RecordRoom() == 0) std::swap(results_, Pool().results);
    lineCount_ = 0;
    Entry(0).clear();
    units_.push_back(UnitSet::Anything());
    syntax.MakeSyntax(output, nLang);
    results_.clear();
}

std::u16string& clsQuillbox::Entry(size_t k) { return k < lines_.size() ? lines_[k] : lines_.emplace_back(); }

std::u16string& clsQuillbox::NewLine() { return Entry(static_cast<size_t>(++lineCount_)); }

void clsQuillbox::CleanNewLine() { CleanLine(lines_[static_cast<size_t>(lineCount_)], units_.emplace_back()); }

void clsQuillbox::ReleaseLines() {
    LinePool& pool = Pool();
    if (lines_.size() > pool.lines.size()) {
        if (lines_.size() > LinePool::kMaxLines) lines_.resize(LinePool::kMaxLines);
        // Entries past this scan's lines were bounded when an earlier scan ended.
        const size_t used = std::min(lines_.size(), static_cast<size_t>(lineCount_) + 1);
        for (size_t k = 0; k < used; ++k) {
            if (lines_[k].capacity() > LinePool::kMaxUnits) std::u16string().swap(lines_[k]);
        }
        lines_.swap(pool.lines);
    }
    units_.clear();
    if (units_.capacity() <= LinePool::kMaxLines && units_.capacity() > pool.units.capacity()) units_.swap(pool.units);
    lines_ = {};
    units_ = {};
}

clsQuillbox::~clsQuillbox() {
    ReleaseLines();
    results_.Trim(LinePool::kMaxResults, LinePool::kMaxResultUnits);
    ResultList& spare = Pool().results;
    if (results_.RecordRoom() > spare.RecordRoom()) std::swap(results_, spare);
}

void clsQuillbox::StoreLine(std::u16string_view raw) {
    // A line holding line feeds becomes one line per piece; the counter runs on.
    size_t lf;
    while ((lf = raw.find(u'\n')) != std::u16string_view::npos) {
        NewLine().assign(raw.substr(0, lf));
        CleanNewLine();
        raw.remove_prefix(lf + 1);
    }
    NewLine().assign(raw);
    CleanNewLine();
}

void clsQuillbox::RunPasses(ScanOutput& output, int16_t nLang) {
    ParseInclude();
    if (beforeBlockPass_) beforeBlockPass_(*this);
    // Measured before the block pass empties the lines it has taken in; the C++ passes
    // gather no parameter lists from later lines.
    const int64_t scannedUnits = nLang == LANGUAGE_CPP ? 0 : ParamCollector::ScannedUnits(lines_, lineCount_);
    if (nLang == LANGUAGE_CPP) TakeCppLevelsOut(lines_, lineCount_, results_, &units_);
    else TakeLevelsOut(lines_, lineCount_, syntax, nLang, results_, &units_);
    SecondPass(output, nLang, scannedUnits);
    // The line array goes; the results stay until the next scan.
    ReleaseLines();
}

// Comments are removed as each line comes in, so that the lines that only empty out are
// not cleaned: inside a block comment they are passed over unread, and a one-line
// comment that takes a whole line is left empty as it is read. The reader never returns
// a line feed, so its lines need no splitting.
template <class Stripper>
void clsQuillbox::ReadLines(clsLoader& loader, Stripper& comments) {
    while (!loader.EndOfFile) {
        std::u16string& line = NewLine();
        UnitSet& units = units_.emplace_back();
        if (const std::string_view end = comments.OpenCommentEnd(); !end.empty() && loader.SkipLineWithout(end)) {
            line.clear();
            continue;
        }
        loader.ReadCleanLineInto(line, units, comments.OneLineStart());
        comments.StripLine(line, units);
    }
}

bool clsQuillbox::ParseFile(ScanOutput& output, int16_t nLang) {
    bool scanned = false;
    Trap(kModule, "Function ParseFile", [&] {
        clsLoader loader;
        loader.Init();
        StartScan(output, nLang);
        if (!loader.OpenFile(ToUtf8(output.FileName()))) return;
        if (nLang == LANGUAGE_CPP) {
            CppCommentStripper comments(syntax);
            ReadLines(loader, comments);
        } else {
            CommentStripper comments(syntax);
            ReadLines(loader, comments);
        }
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
        if (nLang == LANGUAGE_CPP) RemoveCppComments(lines_, lineCount_, syntax);
        else RemoveComments(lines_, lineCount_, syntax, &units_);
        RunPasses(output, nLang);
        scanned = true;
    });
    return scanned;
}

void clsQuillbox::SecondPass(ScanOutput& output, int16_t nLang, int64_t scannedUnits) {
    Trap(kModule, "Sub SecondPass", [&] {
        ParamCollector params(lines_, lineCount_, scannedUnits);
        const size_t count = results_.size();
        if (nLang == LANGUAGE_C || nLang == LANGUAGE_JAVA) {
            CAnalysis analysis{syntax, params, output};
            std::u16string text;  // the output takes its texts as strings
            for (size_t k = 0; k < count; ++k) {
                RWord& r = results_[k];
                if (r.Scope == kResultEndClass) output.WriteEndClass__(text.assign(r.Class), r.Line);
                else if (r.Scope == kResultInclude) output.WriteInclude__(text.assign(r.word), r.Line);
                else if (r.Scope != kResultVariable) analysis.ProcessDeclaration(r, results_.UnitsOf(k));
            }
        } else if (nLang == LANGUAGE_CPP) {
            WriteCppResults(results_, output);
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
