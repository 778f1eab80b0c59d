#pragma once
// What every project command shares: the project, opened the way a host opens it,
// plus argument helpers and one-line failure reports. Commands that show the project
// hold a real TreeView on the in-memory platform; commands that only write project
// files hold a HeadlessProject, which saves the same bytes without building trees.
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "control/headless_project.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"
#include "errorlog/errorlog.h"

namespace kestrel::cli {

// A failure the command reports as "kestrel: WHAT: REASON" with exit status 1.
class Failure : public std::runtime_error {
public:
    Failure(const std::string& what, const std::string& reason) : std::runtime_error(what + ": " + reason) {}
};

// A command line the command cannot understand; exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ProjectSession {
public:
    enum class Kind { Shown, Headless };
    explicit ProjectSession(Kind kind);
    ~ProjectSession();
    ProjectSession(const ProjectSession&) = delete;
    ProjectSession& operator=(const ProjectSession&) = delete;

    // The control and its platform, in a Shown session only.
    TreeView& View() { return *state_->view; }
    MemoryPlatform& Platform() { return state_->platform; }

    AllFilesPtr Files();
    int32_t Language();
    void NewProject(const std::string& projectPath, int32_t language, int32_t id);
    // Loads a project file, failing with the reason when it is missing, unreadable or
    // not a project file; runs the load timer dry.
    void Load(const std::string& projectPath);
    // Saves to the project's file name, failing with the reason when it cannot be written.
    void Save();
    // Rescans every file and saves, failing as Save does.
    void SaveComplete();
    // Reports of the error trap collected during the session.
    int ErrorCount() const { return errors_; }

private:
    // Calls use(project) on the TreeView or the HeadlessProject: both answer the same calls.
    template <class Use>
    decltype(auto) OnProject(Use&& use) {
        if (state_->view) return use(*state_->view);
        return use(*state_->headless);
    }
    // Throws the reason a save (just tried, failed) could not write the project file.
    [[noreturn]] void SaveFailed(const std::string& path);

    struct State {
        MemoryPlatform platform;
        std::shared_ptr<TreeView> view;  // after the platform, so that it goes first
        std::shared_ptr<HeadlessProject> headless;
    };
    std::unique_ptr<State> state_;
    ErrorHandler previousHandler_;
    int errors_ = 0;
};

// An absolute, lexically normalised path.
std::string AbsolutePath(const std::string& path);
// The project file `path` names: its AbsolutePath, through a final symbolic link. A
// project behind a link keeps its names relative to its own folder, so that every
// link to it finds the same sources, and a save replaces the file, not the link.
std::string ProjectFilePath(const std::string& path);
// A Languages value from one of the names of kLanguageNames or a number.
int32_t ParseLanguage(const std::string& text);
// A FileType value from impl, def, form, noparse or 1 to 4.
int32_t ParseFileType(const std::string& text);
// A whole decimal number, or a UsageError naming the option.
int32_t ParseNumber(const std::string& option, const std::string& text);
// Whether --format's value asks for JSON Lines (json) rather than text; a UsageError
// for anything else.
bool JsonFormat(const std::string& value);
// The value after an option, or a UsageError.
const std::string& OptionValue(const std::vector<std::string>& args, size_t& i);

// Runs a command body: prints failures as one line on standard error and turns them
// into the exit status.
int RunCommand(const char* name, const char* usage, int argc, char** argv,
               int (*body)(const std::vector<std::string>&));

std::string Utf8(std::u16string_view text);
// Quoted with C-style escapes, so that dumps stay one line per record.
std::string Quoted(std::u16string_view text);

}  // namespace kestrel::cli
