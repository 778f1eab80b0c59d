// Arbitrary bytes scanned as a source file of each language, read from disk or handed
// over as the lines of an editor buffer. The first byte picks the language, the file
// type and the way in; the rest is the text.
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
// member name carries its class.
class CheckedOutput : public ScanOutput {
public:
    CheckedOutput(std::u16string name, int32_t type) : name_(std::move(name)), type_(type) {}
    int32_t FileType() const override { return type_; }
    const std::u16string& FileName() override { return name_; }
    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t, const std::u16string&) override {
        Member(fullName, line);
    }
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t, const std::u16string&) override {
        Member(fullName, line);
    }
    void WriteEndClass__(const std::u16string&, int32_t line) override { lines.push_back(line); }
    void WriteInclude__(const std::u16string&, int32_t line) override { lines.push_back(line); }

    std::vector<int32_t> lines;

private:
    void Member(const std::u16string& fullName, int32_t line) {
        if (fullName.find(u"::") == std::u16string::npos) Fail("a member name without its class");
        lines.push_back(line);
    }
    std::u16string name_;
    int32_t type_;
};

// An editor buffer: the text cut at `separator`.
class BufferLines : public LineSource {
public:
    BufferLines(std::string_view text, char separator) : lines_(kestrel::fuzz::SplitLines(text, separator)) {}
    int32_t GetLineCount() override { return static_cast<int32_t>(lines_.size()); }
    std::u16string Line(int32_t n) override {
        if (n < 1 || n > GetLineCount()) Fail("a line asked for outside the buffer");
        return lines_[static_cast<size_t>(n - 1)];
    }

private:
    std::vector<std::u16string> lines_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kestrel::fuzz::FuzzInput in(data, size);
    kestrel::fuzz::QuietErrors errors;
    const uint8_t choice = in.Byte();
    const int16_t language = kLanguages[choice & 3];
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
        if (!scanner.ParseFile(out, language)) Fail("a file scan did not finish");
        for (int32_t line : out.lines)
            if (line < 1 || line > scanner.LineCount()) Fail("a line number outside the text");
    }
    return 0;
}
