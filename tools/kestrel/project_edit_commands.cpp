// kestrel new, add, remove and update: the commands that write a project file.
#include <iostream>
#include <optional>

#include "common/constants.h"
#include "common/text.h"
#include "file_list.h"
#include "commands.h"
#include "project_lock.h"
#include "project_session.h"
#include "write_safety.h"

namespace kestrel::cli {

namespace {

constexpr const char* kNewUsage =
    "usage: kestrel new PROJECT [--language L] [--id N] [--jobs N] [[--type T] FILE...]... [--files-from LIST]\n"
    "                   [--force] [--wait SECONDS]\n"
    "Creates the project file PROJECT, adds every FILE (a folder adds its files of the\n"
    "project's language, recursively, in sorted order, skipping hidden folders) and saves.\n"
    "An existing PROJECT that is not a kestrel project file is refused.\n"
    "  --language L      c (default), cpp, java, basic, or a language number\n"
    "  --id N            the project's identifier (default 0)\n"
    "  --type T          impl, def, form, noparse or 1 to 4, for the files after it;\n"
    "                    without it the extension decides (.h .hh .hpp .hxx .inl def,\n"
    "                    .frm .ctl .dsr form, .c .cc .cpp .cxx .java .bas .cls impl,\n"
    "                    anything else noparse)\n"
    "  --files-from LIST one path per line of LIST (- reads standard input)\n"
    "  --jobs N          scan on N threads (default and most: one per core); the\n"
    "                    project file comes out the same for every N\n"
    "  --force           write over PROJECT even when it is no project (new), or was\n"
    "                    not read whole (add, remove, update)\n"
    "  --wait SECONDS    wait this long (default 10) while another program writes\n"
    "                    PROJECT, then fail\n";

constexpr const char* kAddUsage =
    "usage: kestrel add PROJECT [--jobs N] [--type T] FILE... [--files-from LIST] [--force] [--wait SECONDS]\n"
    "Loads PROJECT, adds and scans every FILE (folders as for kestrel new) and saves.\n"
    "A FILE that cannot be read is named, and the exit status is 1.\n";

constexpr const char* kRemoveUsage =
    "usage: kestrel remove PROJECT FILE... [--force] [--wait SECONDS]\n"
    "Loads PROJECT, removes every FILE from it and saves. Nothing is written when a\n"
    "FILE is not in the project.\n";

constexpr const char* kUpdateUsage =
    "usage: kestrel update PROJECT [--jobs N] [--force] [--wait SECONDS]\n"
    "Loads PROJECT, rescans every file from disk (on N threads, as for kestrel new) and saves.\n"
    "Each file that cannot be read is named, and the exit status is 1; when none can be\n"
    "read, nothing is written.\n";

struct ProjectArgs {
    std::string project;
    std::optional<int32_t> language;
    int32_t id = 0;
    std::optional<int32_t> jobs;
    WriteOptions write;
    // Types and files in the order given: what a --type applies to depends on it.
    struct Step {
        enum Kind { Type, File, FilesFrom } kind;
        std::string value;
    };
    std::vector<Step> steps;
};

int32_t ParseJobs(const std::string& text) {
    const int32_t jobs = ParseNumber("--jobs", text);
    if (jobs < 1) throw UsageError("--jobs needs a number of at least 1");
    return jobs;
}

// One job scans on the calling thread; more start that many workers.
void UseJobs(ProjectSession& session, std::optional<int32_t> jobs) {
    if (jobs) session.Files()->SetScanThreads(*jobs > 1 ? static_cast<unsigned>(*jobs) : 0);
}

ProjectArgs ParseProjectArgs(const std::vector<std::string>& args, bool creating) {
    ProjectArgs parsed;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (creating && a == "--language") {
            parsed.language = ParseLanguage(OptionValue(args, i));
        } else if (creating && a == "--id") {
            parsed.id = ParseNumber("--id", OptionValue(args, i));
        } else if (a == "--jobs") {
            parsed.jobs = ParseJobs(OptionValue(args, i));
        } else if (a == "--type") {
            const std::string& t = OptionValue(args, i);
            ParseFileType(t);
            parsed.steps.push_back({ProjectArgs::Step::Type, t});
        } else if (a == "--files-from") {
            parsed.steps.push_back({ProjectArgs::Step::FilesFrom, OptionValue(args, i)});
        } else if (TakeWriteOption(args, i, parsed.write)) {
        } else if (a.size() > 1 && a[0] == '-') {
            throw UsageError("unknown option '" + a + "'");
        } else if (parsed.project.empty()) {
            parsed.project = a;
        } else {
            parsed.steps.push_back({ProjectArgs::Step::File, a});
        }
    }
    if (parsed.project.empty()) throw UsageError("no PROJECT given");
    return parsed;
}

std::vector<SourceFile> GatherFiles(const ProjectArgs& parsed, int32_t language) {
    FileList list(language);
    for (const ProjectArgs::Step& step : parsed.steps) {
        switch (step.kind) {
            case ProjectArgs::Step::Type: list.SetType(ParseFileType(step.value)); break;
            case ProjectArgs::Step::File: list.Add(step.value); break;
            case ProjectArgs::Step::FilesFrom: list.AddFrom(step.value); break;
        }
    }
    ReportFolderWalk(list);
    return list.Files();
}

// Adds the files through the control's collection, as a host would.
void AddFiles(ProjectSession& session, const std::vector<SourceFile>& files) {
    Progress progress(files.size(), "scanned");
    AllFilesPtr all = session.Files();
    std::vector<std::pair<std::u16string, int32_t>> ahead;
    for (const SourceFile& f : files) ahead.emplace_back(FromUtf8(f.path), f.type);
    all->ScanAheadOfAdd(ahead);
    for (const SourceFile& f : files) {
        if (!all->Add(FromUtf8(f.path), f.type))
            std::cerr << "kestrel: " << f.path << ": already in the project, skipped\n";
        progress.Step(f.path);
    }
}

int Status(const ProjectSession& session, size_t unreadable = 0) {
    return session.ErrorCount() == 0 && unreadable == 0 ? 0 : 1;
}

int New(const std::vector<std::string>& args) {
    const ProjectArgs parsed = ParseProjectArgs(args, true);
    const int32_t language = parsed.language.value_or(LANGUAGE_C);
    const std::vector<SourceFile> files = GatherFiles(parsed, language);
    ProjectLock lock(parsed.project, parsed.write.waitSeconds);
    RefuseToWriteOverNonProject(parsed.project, parsed.write);
    const size_t unreadable = ReportUnreadable(files).unreadable;
    ProjectSession session(ProjectSession::Kind::Headless);
    session.NewProject(parsed.project, language, parsed.id);
    UseJobs(session, parsed.jobs);
    AddFiles(session, files);
    session.Save();
    return Status(session, unreadable);
}

int Add(const std::vector<std::string>& args) {
    const ProjectArgs parsed = ParseProjectArgs(args, false);
    ProjectLock lock(parsed.project, parsed.write.waitSeconds);
    ProjectSession session(ProjectSession::Kind::Headless);
    session.Load(parsed.project);
    RefuseToSaveOverDamage(session, parsed.project, parsed.write);
    UseJobs(session, parsed.jobs);
    const std::vector<SourceFile> files = GatherFiles(parsed, session.Language());
    const size_t unreadable = ReportUnreadable(files).unreadable;
    AddFiles(session, files);
    session.Save();
    return Status(session, unreadable);
}

int Remove(const std::vector<std::string>& args) {
    WriteOptions write;
    std::string project;
    std::vector<std::string> names;
    for (size_t i = 0; i < args.size(); ++i) {
        if (TakeWriteOption(args, i, write)) continue;
        if (args[i].starts_with("-")) throw UsageError("unknown option '" + args[i] + "'");
        if (project.empty()) project = args[i];
        else names.push_back(args[i]);
    }
    if (project.empty()) throw UsageError("no PROJECT given");
    ProjectLock lock(project, write.waitSeconds);
    ProjectSession session(ProjectSession::Kind::Headless);
    session.Load(project);
    RefuseToSaveOverDamage(session, project, write);
    AllFilesPtr all = session.Files();
    std::vector<std::u16string> keys;
    for (const std::string& name : names) {
        std::u16string key = FromUtf8(AbsolutePath(name));
        if (!all->item(key)) throw Failure(name, "not in the project");
        keys.push_back(key);
    }
    for (const std::u16string& key : keys) all->Remove(key);
    session.Save();
    return Status(session);
}

int Update(const std::vector<std::string>& args) {
    std::optional<int32_t> jobs;
    WriteOptions write;
    std::string project;
    for (size_t i = 0; i < args.size(); ++i) {
        if (TakeWriteOption(args, i, write)) continue;
        if (args[i] == "--jobs") jobs = ParseJobs(OptionValue(args, i));
        else if (project.empty() && !args[i].starts_with("-")) project = args[i];
        else throw UsageError("unexpected argument '" + args[i] + "'");
    }
    if (project.empty()) throw UsageError("no PROJECT given");
    ProjectLock lock(project, write.waitSeconds);
    ProjectSession session(ProjectSession::Kind::Headless);
    session.Load(project);
    RefuseToSaveOverDamage(session, project, write);
    // A project moved without its sources would be saved empty.
    const ReadCheck check = ReportUnreadable(ProjectFiles(session));
    if (check.scanned > 0 && check.unreadable == check.scanned)
        throw Failure(project, "none of its files can be read; nothing written");
    UseJobs(session, jobs);
    session.SaveComplete();
    return Status(session, check.unreadable);
}

}  // namespace

int RunNew(int argc, char** argv) { return RunCommand("new", kNewUsage, argc, argv, New); }
void NewHelp(std::ostream& out) { out << kNewUsage; }
int RunAdd(int argc, char** argv) { return RunCommand("add", kAddUsage, argc, argv, Add); }
void AddHelp(std::ostream& out) { out << kAddUsage; }
int RunRemove(int argc, char** argv) { return RunCommand("remove", kRemoveUsage, argc, argv, Remove); }
void RemoveHelp(std::ostream& out) { out << kRemoveUsage; }
int RunUpdate(int argc, char** argv) { return RunCommand("update", kUpdateUsage, argc, argv, Update); }
void UpdateHelp(std::ostream& out) { out << kUpdateUsage; }

}  // namespace kestrel::cli
