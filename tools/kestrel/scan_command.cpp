// kestrel scan: runs the scanner over files and prints the calls it makes on its
// output, or its line array and result list.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "json_text.h"
#include "language_names.h"
#include "common/constants.h"
#include "common/text.h"
#include "scanner/debug_dump.h"
#include "scanner/loader.h"
#include "scanner/quillbox.h"

namespace kestrel::cli {

namespace {

// Prints every call the scanner makes, one TAB-separated line each.
class TraceOutput : public ScanOutput {
public:
    TraceOutput(std::u16string fileName, std::ostream* out, bool json)
        : fileName_(std::move(fileName)), out_(out), json_(json) {}

    int32_t FileType() const override { return FILETYPE_IMPLEMENTATION; }
    const std::u16string& FileName() override { return fileName_; }

    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                        const std::u16string& params) override {
        Print("declare", line, scope, fullName, params);
    }
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                         const std::u16string& typeText) override {
        Print("variable", line, scope, fullName, typeText);
    }
    void WriteEndClass__(const std::u16string& className, int32_t endLine) override {
        if (!out_) return;
        if (json_) Call("endclass").Number("line", endLine).Text("class", className).WriteTo(*out_);
        else *out_ << "endclass\t" << endLine << '\t' << ToUtf8(className) << '\n';
    }
    void WriteInclude__(const std::u16string& fileName, int32_t line) override {
        if (!out_) return;
        if (json_) Call("include").Number("line", line).Text("name", fileName).WriteTo(*out_);
        else *out_ << "include\t" << line << '\t' << ToUtf8(fileName) << '\n';
    }

private:
    void Print(const char* kind, int32_t line, int16_t scope, const std::u16string& name, const std::u16string& text) {
        if (!out_) return;
        if (json_) Call(kind).Number("line", line).Number("scope", scope).Text("name", name).Text("text", text).WriteTo(*out_);
        else *out_ << kind << '\t' << line << '\t' << scope << '\t' << ToUtf8(name) << '\t' << ToUtf8(text) << '\n';
    }
    JsonLine Call(const char* kind) const {
        JsonLine line;
        line.Text("file", fileName_).Utf8("call", kind);
        return line;
    }

    std::u16string fileName_;
    std::ostream* out_;  // null while the dumps are printed instead
    bool json_;
};

struct Options {
    int16_t language = LANGUAGE_C;
    bool dumpLines = false;
    bool dumpResults = false;
    bool json = false;
    std::vector<std::string> files;
};

bool ParseLanguage(const std::string& text, int16_t& language) {
    if (const std::optional<int32_t> named = LanguageOfName(text)) language = static_cast<int16_t>(*named);
    else {
        if (text.empty()) return false;
        char* end = nullptr;
        errno = 0;
        long long number = std::strtoll(text.c_str(), &end, 10);
        if (*end != '\0' || errno == ERANGE) return false;
        // The scanner takes a 16-bit language value.
        language = static_cast<int16_t>(number);
    }
    return true;
}

// 0 to go on, else the exit status (after --help or a usage error).
int ParseOptions(int argc, char** argv, Options& options) {
    bool optionsEnded = false;
    for (int i = 0; i < argc; ++i) {
        std::string arg = argv[i];
        if (optionsEnded || arg.empty() || arg[0] != '-' || arg == "-") {
            options.files.push_back(arg);
        } else if (arg == "--") {
            optionsEnded = true;
        } else if (arg == "--help" || arg == "-h") {
            ScanHelp(std::cout);
            return -1;
        } else if (arg == "--dump-lines") {
            options.dumpLines = true;
        } else if (arg == "--dump-results") {
            options.dumpResults = true;
        } else if (arg == "--format" || arg.rfind("--format=", 0) == 0) {
            const std::string value = arg == "--format" ? (i + 1 < argc ? argv[++i] : "") : arg.substr(9);
            if (value != "text" && value != "json") {
                std::cerr << "kestrel scan: --format takes text or json, not '" << value << "'\n";
                return 2;
            }
            options.json = value == "json";
        } else if (arg == "--language" || arg == "-l" || arg.rfind("--language=", 0) == 0) {
            std::string value;
            if (arg.rfind("--language=", 0) == 0) {
                value = arg.substr(11);
            } else if (i + 1 < argc) {
                value = argv[++i];
            } else {
                std::cerr << "kestrel scan: " << arg << " needs a value (" << AcceptedLanguages() << ")\n";
                return 2;
            }
            if (!ParseLanguage(value, options.language)) {
                std::cerr << "kestrel scan: unknown language '" << value << "' (use " << AcceptedLanguages() << ")\n";
                return 2;
            }
        } else {
            std::cerr << "kestrel scan: unknown option '" << arg << "'\n(kestrel scan --help lists the options)\n";
            return 2;
        }
    }
    if (options.files.empty()) {
        std::cerr << "kestrel scan: no file given\n(kestrel scan --help lists the options)\n";
        return 2;
    }
    return 0;
}

// Why a file could not be read, in the system's words.
std::string OpenFailure(const std::string& path) {
    clsLoader probe;
    if (probe.OpenFile(path)) return "cannot be read";
    return std::strerror(probe.OpenError());
}

}  // namespace

void ScanHelp(std::ostream& out) {
    out << "usage: kestrel scan [--language L] [--dump-lines] [--dump-results] [--format text|json] FILE...\n"
           "\n"
           "Scans each FILE as the class view does and prints, on standard output, one line\n"
           "per call the scanner makes on its output, in call order, fields separated by one\n"
           "TAB, UTF-8, each line ended by LF:\n"
           "\n"
           "  declare   LINE  SCOPE  FULLNAME  PARAMS     a function or method\n"
           "  variable  LINE  SCOPE  FULLNAME  TYPETEXT   a variable\n"
           "  endclass  LINE  CLASSNAME                   the closing brace of a class body\n"
           "  include   LINE  NAME                        an include statement\n"
           "\n"
           "FULLNAME is the class name, \"::\" and the member name (\"::main\" at file level).\n"
           "SCOPE is 0 unknown, 1 public, 2 protected, 3 private. These are the scanner's raw\n"
           "calls, before the code model filters them (a variable whose name holds a comma\n"
           "still appears). With several files, each file's block starts with a line\n"
           "file<TAB>PATH.\n"
           "\n"
           "options:\n"
           "  --language L, -l L  c, cpp, java, basic, or a language number (0 C,\n"
           "                      1 Java, 2 Basic, 7 modern C++; others scan nothing).\n"
           "                      Default: c.\n"
           "  --dump-lines        print instead the line array as the block-level pass\n"
           "                      receives it (read, cleaned, comments removed), one\n"
           "                      \"N -- text\" line per line of the file\n"
           "  --format json       one JSON object per call instead (JSON Lines): file, call,\n"
           "                      line, and scope, name and text, or class, or name\n"
           "  --dump-results      print instead the result list after the scan, one\n"
           "                      \"Line:N,Class:C,Scope:S -- text\" line per statement\n"
           "  --help, -h          show this text\n"
           "\n"
           "Files are read as UTF-8 (a byte-order mark is dropped; a UTF-16 byte-order mark\n"
           "means UTF-16); lines end at CR LF, CR or LF. A file that cannot be opened is\n"
           "reported on standard error, the other files are still scanned, and the exit\n"
           "status is 1. Usage errors exit with status 2.\n";
}

int RunScan(int argc, char** argv) {
    Options options;
    int status = ParseOptions(argc, argv, options);
    if (status != 0) return status < 0 ? 0 : status;

    const bool dumping = options.dumpLines || options.dumpResults;
    int exitStatus = 0;
    for (const std::string& path : options.files) {
        if (options.files.size() > 1 && !options.json) std::cout << "file\t" << path << '\n';
        clsQuillbox scanner;
        if (options.dumpLines) {
            scanner.SetBeforeBlockPass(
                [](const clsQuillbox& q) { WriteLineDump(std::cout, q.Lines(), q.LineCount()); });
        }
        TraceOutput output(FromUtf8(path), dumping ? nullptr : &std::cout, options.json);
        if (!scanner.ParseFile(output, options.language)) {
            std::cout.flush();
            std::cerr << "kestrel scan: " << path << ": " << OpenFailure(path) << '\n';
            exitStatus = 1;
            continue;
        }
        if (options.dumpResults) WriteResultDump(std::cout, scanner.Results());
    }
    std::cout.flush();
    return exitStatus;
}

}  // namespace kestrel::cli
