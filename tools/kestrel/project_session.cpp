#include "project_session.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "common/constants.h"
#include "common/text.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

ProjectSession::ProjectSession(Kind kind) : state_(std::make_unique<State>()) {
    if (kind == Kind::Shown)
        state_->view = TreeView::Create(state_->platform.Get());
    else
        state_->headless = HeadlessProject::Create();
    previousHandler_ = SetErrorHandler([this](const ErrorReport& r) -> int16_t {
        ++errors_;
        std::cerr << "kestrel: error in " << r.module << " (" << r.title << "): " << r.message << "\n";
        return 0;
    });
}

// g++ names its AddressSanitizer build one way, clang another.
#if defined(__SANITIZE_ADDRESS__)
#define KESTREL_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KESTREL_LEAK_CHECKED 1
#endif
#endif

ProjectSession::~ProjectSession() {
#ifdef KESTREL_LEAK_CHECKED
    state_.reset();
#else
    // A session ends with its command, right before the process exits and hands all
    // of its memory back at once; freeing a large model and its trees node by node
    // first would take a good part of the time it took to build them. The leak
    // checker's build frees them as usual.
    (void)state_.release();
#endif
    SetErrorHandler(previousHandler_);
}

AllFilesPtr ProjectSession::Files() {
    return OnProject([](auto& project) { return project.files(); });
}

int32_t ProjectSession::Language() {
    return OnProject([](auto& project) { return project.Language(); });
}

void ProjectSession::NewProject(const std::string& projectPath, int32_t language, int32_t id) {
    const std::u16string name = FromUtf8(AbsolutePath(projectPath));
    OnProject([&](auto& project) { project.NewProject(name, language, id); });
}

void ProjectSession::Load(const std::string& projectPath) {
    const std::string path = AbsolutePath(projectPath);
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw Failure(projectPath, "is a folder, not a project file");
    std::ifstream probe(path, std::ios::binary);
    if (!probe) throw Failure(projectPath, std::strerror(errno));
    char head[14] = {};
    probe.read(head, sizeof head);
    if (probe.gcount() < 4) throw Failure(projectPath, "not a kestrel project file (too short)");
    probe.close();
    if (!OnProject([&](auto& project) { return project.Load(FromUtf8(path)); }))
        throw Failure(projectPath, "not a kestrel project file (wrong signature)");
    if (state_->view) Platform().timer.Drain();
}

void ProjectSession::Save() {
    const std::string path = Utf8(OnProject([](auto& project) { return project.FileName(); }));
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw Failure(path, "is a folder, cannot write the project file there");
    errno = 0;
    if (!OnProject([](auto& project) { return project.Save(); })) SaveFailed(path);
}

void ProjectSession::SaveComplete() {
    const std::string path = Utf8(OnProject([](auto& project) { return project.FileName(); }));
    errno = 0;
    if (!OnProject([](auto& project) { return project.SaveComplete(); })) SaveFailed(path);
}

void ProjectSession::SaveFailed(const std::string& path) {
    const fs::path dir = fs::path(path).parent_path();
    std::string reason = "cannot write the project file";
    std::error_code ec;
    if (!fs::is_directory(dir, ec))
        reason += ": folder " + dir.string() + " does not exist";
    else if (errno != 0)
        reason += std::string(": ") + std::strerror(errno);
    throw Failure(path, reason);
}

std::string AbsolutePath(const std::string& path) {
    // Lists of absolute paths, as find and dpkg print them, are normal already: no
    // empty, "." or ".." component can hide in a path without "//" or "/.".
    if (path.starts_with('/') && path.find("//") == std::string::npos && path.find("/.") == std::string::npos)
        return path;
    std::error_code ec;
    fs::path p = fs::absolute(fs::path(path), ec);
    if (ec) throw Failure(path, ec.message());
    return p.lexically_normal().string();
}

int32_t ParseLanguage(const std::string& text) {
    if (text == "c") return LANGUAGE_C;
    if (text == "cpp" || text == "c++") return LANGUAGE_CPP;
    if (text == "java") return LANGUAGE_JAVA;
    if (text == "basic" || text == "vb") return LANGUAGE_BASIC;
    return ParseNumber("--language", text);
}

int32_t ParseFileType(const std::string& text) {
    if (text == "impl") return FILETYPE_IMPLEMENTATION;
    if (text == "def") return FILETYPE_DEFINITION;
    if (text == "form") return FILETYPE_FORM;
    if (text == "noparse") return FILETYPE_NOPARSE;
    for (int32_t n = FILETYPE_IMPLEMENTATION; n <= FILETYPE_NOPARSE; ++n)
        if (text == std::to_string(n)) return n;
    throw UsageError("--type must be impl, def, form, noparse or 1 to 4, not '" + text + "'");
}

int32_t ParseNumber(const std::string& option, const std::string& text) {
    try {
        size_t used = 0;
        long long n = std::stoll(text, &used);
        if (used == text.size() && n >= INT32_MIN && n <= INT32_MAX) return static_cast<int32_t>(n);
    } catch (const std::exception&) {
    }
    throw UsageError(option + " needs a whole number, not '" + text + "'");
}

const std::string& OptionValue(const std::vector<std::string>& args, size_t& i) {
    if (i + 1 >= args.size()) throw UsageError(args[i] + " needs a value");
    return args[++i];
}

int RunCommand(const char* name, const char* usage, int argc, char** argv,
               int (*body)(const std::vector<std::string>&)) {
    const std::vector<std::string> args(argv, argv + argc);
    for (const std::string& a : args) {
        if (a == "--help" || a == "-h") {
            std::cout << usage;
            return 0;
        }
    }
    try {
        return body(args);
    } catch (const UsageError& e) {
        std::cerr << "kestrel " << name << ": " << e.what() << " (kestrel " << name << " --help shows the usage)\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "kestrel: " << e.what() << "\n";
        return 1;
    }
}

std::string Utf8(std::u16string_view text) { return ToUtf8(text); }

std::string Quoted(std::u16string_view text) {
    std::string out = "\"";
    for (char c : ToUtf8(text)) {
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (static_cast<unsigned char>(c) < 32) {
                    char buf[8];
                    std::snprintf(buf, sizeof buf, "\\x%02x", static_cast<unsigned char>(c));
                    out += buf;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

}  // namespace kestrel::cli
