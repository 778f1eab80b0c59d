#pragma once
// A scanner output that records every call as one TAB-separated line (the format of
// `kestrel scan`), and helpers that scan a text through a real file on disk.
#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "scanner/quillbox.h"
#include "scanner/scan_output.h"
#include "scanner/syntax.h"
#include "support/scratch.h"

namespace kestrel::test {

class ScanRecorder : public ScanOutput {
public:
    explicit ScanRecorder(std::u16string fileName = u"", int32_t fileType = FILETYPE_IMPLEMENTATION)
        : fileName_(std::move(fileName)), fileType_(fileType) {}

    int32_t FileType() const override { return fileType_; }
    const std::u16string& FileName() override { return fileName_; }
    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                        const std::u16string& params) override {
        Record("declare", line, scope, fullName, params);
    }
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                         const std::u16string& typeText) override {
        Record("variable", line, scope, fullName, typeText);
    }
    void WriteEndClass__(const std::u16string& className, int32_t endLine) override {
        Record("endclass", endLine, className);
    }
    void WriteInclude__(const std::u16string& fileName, int32_t line) override { Record("include", line, fileName); }

    std::vector<std::string> calls;

private:
    template <class... Fields>
    void Record(std::string call, const Fields&... fields) {
        ((call += '\t', call += Field(fields)), ...);
        calls.push_back(std::move(call));
    }
    static std::string Field(const std::u16string& text) { return ToUtf8(text); }
    static std::string Field(int32_t number) { return std::to_string(number); }

    std::u16string fileName_;
    int32_t fileType_;
};

// A file of `bytes` in a scratch folder of its own, removed with it.
class TempFile {
public:
    explicit TempFile(const std::string& bytes) : path_(dir_ / "scanned.txt") { WriteFileBytes(path_, bytes); }
    const std::string& path() const { return path_; }
    std::u16string name() const { return FromUtf8(path_); }

private:
    ScratchDir dir_;
    std::string path_;
};

// The table of `language` as the scanner makes it for a file of `fileType`.
inline SyntaxTable SyntaxOf(int16_t language, int32_t fileType = FILETYPE_IMPLEMENTATION) {
    ScanRecorder file(u"x", fileType);
    SyntaxTable syntax;
    syntax.MakeSyntax(file, language);
    return syntax;
}

// The scanner's line arrays count from 1: runs `pass` over `lines` with an unused
// line 0 in front, and answers the lines as the pass left them.
template <class Pass>
std::vector<std::u16string> WithLineZero(std::vector<std::u16string> lines, Pass&& pass) {
    lines.insert(lines.begin(), u"");
    pass(lines, static_cast<int32_t>(lines.size() - 1));
    lines.erase(lines.begin());
    return lines;
}

// Scans `bytes` written to a file; the recorded calls.
inline std::vector<std::string> ScanBytes(const std::string& bytes, int16_t language = LANGUAGE_C,
                                          clsQuillbox* scanner = nullptr) {
    TempFile file(bytes);
    ScanRecorder out(file.name());
    clsQuillbox own;
    (scanner ? *scanner : own).ParseFile(out, language);
    return out.calls;
}

}  // namespace kestrel::test
