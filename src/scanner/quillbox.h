#pragma once
// The scanner: turns one source text into declarations reported to a ScanOutput.
// One instance scans one text at a time; it can be reused for the next.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "scanner/result_list.h"
#include "scanner/scan_output.h"
#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

class clsLoader;

class clsQuillbox {
public:
    // The vocabulary of the language being scanned, rebuilt by every scan.
    SyntaxTable syntax;

    // Scans the file named by output.FileName(). False when it cannot be opened
    // (then nothing is written to output).
    bool ParseFile(ScanOutput& output, int16_t nLang);
    // Scans lines supplied by the host (an editor buffer). Returns true.
    bool ParseEmbeededFile(ScanOutput& output, int16_t nLang, LineSource& source);

    // Diagnostic dumps into fixed files of the current directory: the line array to
    // "c:\debug.txt" and the result list to "c:\debug_result.txt".
    void DebugFile();
    void DebugResult();

    // The result list of the last scan (kept until the next scan starts).
    const ResultList& Results() const { return results_; }
    // The line array: entry 0 unused, line N of the text at entry N for N up to
    // LineCount(); entries past it are storage kept for later scans.
    const std::vector<std::u16string>& Lines() const { return lines_; }
    int32_t LineCount() const { return lineCount_; }

    // Diagnostics: called once the lines are read, cleaned and free of comments,
    // right before the block-level pass rewrites them.
    void SetBeforeBlockPass(std::function<void(const clsQuillbox&)> hook) { beforeBlockPass_ = std::move(hook); }

    ~clsQuillbox();
    clsQuillbox() = default;
    clsQuillbox(const clsQuillbox&) = delete;
    clsQuillbox& operator=(const clsQuillbox&) = delete;

private:
    void StartScan(ScanOutput& output, int16_t nLang);
    // Entry k of the line array, made when the array is no longer; its text is whatever
    // an earlier scan left there.
    std::u16string& Entry(size_t k);
    // The next entry of the line array, with storage left by earlier scans.
    std::u16string& NewLine();
    // Cleans the newest line and records its units.
    void CleanNewLine();
    void StoreLine(std::u16string_view raw);
    // Reads the file's lines, cleaned, with `comments` removing their comments.
    template <class Stripper>
    void ReadLines(clsLoader& loader, Stripper& comments);
    void ReleaseLines();
    // The passes after the lines are in, cleaned and free of comments.
    void RunPasses(ScanOutput& output, int16_t nLang);
    // `scannedUnits`: the size of the text as read, for the parameter collector.
    void SecondPass(ScanOutput& output, int16_t nLang, int64_t scannedUnits);

    std::vector<std::u16string> lines_;
    std::vector<UnitSet> units_;  // the code units of each line, same indices as lines_
    int32_t lineCount_ = 0;
    ResultList results_;
    std::function<void(const clsQuillbox&)> beforeBlockPass_;
};

}  // namespace kestrel
