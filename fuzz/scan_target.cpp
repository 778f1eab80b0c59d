// Arbitrary bytes scanned as a source file of each language, read from disk or handed
// over as the lines of an editor buffer. The first byte picks the language, the file
// type and the way in; the rest is the text. A UTF-8 file is scanned a second time as
// editor lines cut where the file reader cuts them: the reader passes over comment
// lines without cleaning them, and both ways must end with the same lines and report
// the same declarations. Every input must also be scanned in time in proportion to
// its size.
#include <time.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "fuzz_input.h"
#include "scanner/quillbox.h"
#include "scanner/scan_output.h"

namespace {

using namespace kestrel;

constexpr int16_t kLanguages[] = {LANGUAGE_C, LANGUAGE_JAVA, LANGUAGE_BASIC, LANGUAGE_CINCLUDE};

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "scan: %s\n", what);
    std::abort();
}

// Checks what the scanner reports: every line number lies within the text, and every
// member name carries its class. Keeps every report, in order, as one text each.
class CheckedOutput : public ScanOutput {
public:
    CheckedOutput(std::u16string name, int32_t type) : name_(std::move(name)), type_(type) {}
    int32_t FileType() const override { return type_; }
    const std::u16string& FileName() override { return name_; }
    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope, const std::u16string& params) override {
        Member(fullName);
        Record(u"declare", fullName, line, scope, params);
    }
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope, const std::u16string& params) override {
        Member(fullName);
        Record(u"variable", fullName, line, scope, params);
    }
    void WriteEndClass__(const std::u16string& name, int32_t line) override { Record(u"end class", name, line, 0, {}); }
    void WriteInclude__(const std::u16string& name, int32_t line) override { Record(u"include", name, line, 0, {}); }

    std::vector<int32_t> lines;
    std::vector<std::u16string> calls;

private:
    static void Member(const std::u16string& fullName) {
        if (fullName.find(u"::") == std::u16string::npos) Fail("a member name without its class");
    }
    void Record(std::u16string_view what, std::u16string_view name, int32_t line, int16_t scope,
                std::u16string_view params) {
        lines.push_back(line);
        std::u16string call(what);
        call.append(u"|").append(name).append(u"|").append(FromUtf8(std::to_string(line)));
        call.append(u"|").append(FromUtf8(std::to_string(scope))).append(u"|").append(params);
        calls.push_back(std::move(call));
    }
    std::u16string name_;
    int32_t type_;
};

// An editor buffer: the text cut at `separator`.
class BufferLines : public LineSource {
public:
    BufferLines(std::string_view text, char separator) : lines_(kestrel::fuzz::SplitLines(text, separator)) {}
    explicit BufferLines(std::vector<std::u16string> lines) : lines_(std::move(lines)) {}
    int32_t GetLineCount() override { return static_cast<int32_t>(lines_.size()); }
    std::u16string Line(int32_t n) override {
        if (n < 1 || n > GetLineCount()) Fail("a line asked for outside the buffer");
        return lines_[static_cast<size_t>(n - 1)];
    }

private:
    std::vector<std::u16string> lines_;
};

// The lines the file reader makes of UTF-8 bytes: a byte-order mark dropped, cut at
// CR LF, CR or LF, no line after a final line end.
std::vector<std::u16string> FileLines(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    std::vector<std::u16string> lines;
    while (!bytes.empty()) {
        const size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
        lines.push_back(FromUtf8(bytes.substr(0, end)));
        bytes.remove_prefix(end);
        if (bytes.starts_with("\r\n")) bytes.remove_prefix(2);
        else if (!bytes.empty()) bytes.remove_prefix(1);
    }
    return lines;
}

// Processor time of this thread, so that a busy machine does not count against a scan.
int64_t ThreadMicros() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

// Far above what a sanitized build needs for every input seen (a few microseconds a
// byte), far below what any pass that goes over the text once for each of its lines
// or declarations would take on an input of some kilobytes.
constexpr int64_t kFixedMicros = 200000;
constexpr int64_t kMicrosPerByte = 50;

bool IsUtf16(std::string_view bytes) { return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"); }

// Keeps in `into` the lines a scan is left with once they are read, cleaned and free
// of comments, without the empty lines at the end (the end of a file gives one).
void KeepCleanLines(clsQuillbox& scanner, std::vector<std::u16string>& into) {
    scanner.SetBeforeBlockPass([&into](const clsQuillbox& s) {
        into.assign(s.Lines().begin() + 1, s.Lines().begin() + 1 + s.LineCount());
        while (!into.empty() && into.back().empty()) into.pop_back();
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const int64_t start = ThreadMicros();
    kestrel::fuzz::FuzzInput in(data, size);
    kestrel::fuzz::QuietErrors errors;
    const uint8_t choice = in.Byte();
    // Modern C++ on a bit no earlier input sets, so those keep their language.
    const int16_t language = (choice & 32) ? int16_t{LANGUAGE_CPP} : kLanguages[choice & 3];
    const int32_t type = (choice & 4) ? FILETYPE_DEFINITION : FILETYPE_IMPLEMENTATION;
    const bool fromBuffer = choice & 8;
    const std::string_view text = in.Rest();

    clsQuillbox scanner;
    if (fromBuffer) {
        // Lines cut at NUL keep their line feeds, which the scanner splits itself.
        BufferLines buffer(text, (choice & 16) ? '\0' : '\n');
        CheckedOutput out(u"buffer", type);
        if (!scanner.ParseEmbeededFile(out, language, buffer)) Fail("a buffer scan did not finish");
        for (int32_t line : out.lines)
            if (line < 1 || line > scanner.LineCount()) Fail("a line number outside the text");
    } else {
        const auto path = kestrel::fuzz::ScratchFolder() / "source";
        kestrel::fuzz::WriteFile(path, text);
        CheckedOutput out(FromUtf8(path.string()), type);
        std::vector<std::u16string> fileLines, editorLines;
        KeepCleanLines(scanner, fileLines);
        if (!scanner.ParseFile(out, language)) Fail("a file scan did not finish");
        for (int32_t line : out.lines)
            if (line < 1 || line > scanner.LineCount()) Fail("a line number outside the text");
        if (!IsUtf16(text) && errors.count == 0) {
            BufferLines buffer(FileLines(text));
            CheckedOutput same(FromUtf8(path.string()), type);
            clsQuillbox editor;
            KeepCleanLines(editor, editorLines);
            if (!editor.ParseEmbeededFile(same, language, buffer)) Fail("a buffer scan did not finish");
            if (fileLines != editorLines) Fail("the file and its editor lines were left with different lines");
            if (same.calls != out.calls) Fail("the file and its editor lines reported different declarations");
        }
    }
    if (ThreadMicros() - start > kFixedMicros + kMicrosPerByte * static_cast<int64_t>(size))
        Fail("a scan took longer than its size allows");
    return 0;
}
