// kestrel: command-line access to the class-view component.
#include <cstring>
#include <iostream>
#include <string_view>

#include "checked_output.h"
#include "commands.h"
#include "huge_heap.h"

namespace {

struct Command {
    const char* name;
    int (*run)(int argc, char** argv);
    void (*help)(std::ostream& out);
    const char* summary;
};

const Command kCommands[] = {
    {"scan", kestrel::cli::RunScan, kestrel::cli::ScanHelp, "list the declarations the scanner finds in source files"},
    {"new", kestrel::cli::RunNew, kestrel::cli::NewHelp, "create a project file from source files and folders"},
    {"add", kestrel::cli::RunAdd, kestrel::cli::AddHelp, "add source files to a project"},
    {"remove", kestrel::cli::RunRemove, kestrel::cli::RemoveHelp, "remove source files from a project"},
    {"update", kestrel::cli::RunUpdate, kestrel::cli::UpdateHelp, "rescan every file of a project"},
    {"tree", kestrel::cli::RunTree, kestrel::cli::TreeHelp, "print a project's class tree or file tree"},
    {"dump", kestrel::cli::RunDump, kestrel::cli::DumpHelp, "print every field a project file holds"},
    {"where", kestrel::cli::RunWhere, kestrel::cli::WhereHelp, "name the function that holds a line of a file"},
    {"find", kestrel::cli::RunFind, kestrel::cli::FindHelp, "find a class, a function or a class's user data"},
    {"symbols", kestrel::cli::RunSymbols, kestrel::cli::SymbolsHelp, "find symbols by a typed, fuzzy query, best first"},
    {"tags", kestrel::cli::RunTags, kestrel::cli::TagsHelp, "write a tags file as Universal Ctags does (also kestrel-ctags)"},
};

void Usage(std::ostream& out) {
    out << "usage: kestrel COMMAND [OPTIONS] [ARGS...]\n"
           "       kestrel help COMMAND\n\n"
           "commands:\n";
    for (const Command& c : kCommands) out << "  " << c.name << "\t" << c.summary << "\n";
    out << "\nkestrel COMMAND --help shows the options of a command.\n";
}

const Command* Find(const char* name) {
    for (const Command& c : kCommands) {
        if (std::strcmp(c.name, name) == 0) return &c;
    }
    return nullptr;
}

// The name tools that run a ctags program are given: it behaves as "kestrel tags".
constexpr std::string_view kCtagsName = "kestrel-ctags";

int Run(int argc, char** argv) {
    const std::string_view self = argc > 0 ? argv[0] : "";
    if (self.substr(self.rfind('/') + 1) == kCtagsName) return kestrel::cli::RunTags(argc - 1, argv + 1);
    if (argc < 2) {
        Usage(std::cerr);
        return 2;
    }
    kestrel::cli::ReserveHugePageHeap();
    const char* name = argv[1];
    if (std::strcmp(name, "--help") == 0 || std::strcmp(name, "-h") == 0) {
        Usage(std::cout);
        return 0;
    }
    if (std::strcmp(name, "--version") == 0) {
        std::cout << "kestrel " KESTREL_VERSION "\n";
        return 0;
    }
    if (std::strcmp(name, "help") == 0) {
        const Command* command = argc > 2 ? Find(argv[2]) : nullptr;
        if (command) command->help(std::cout);
        else Usage(argc > 2 ? std::cerr : std::cout);
        return argc > 2 && !command ? 2 : 0;
    }
    const Command* command = Find(name);
    if (!command) {
        std::cerr << "kestrel: unknown command '" << name << "'\n\n";
        Usage(std::cerr);
        return 2;
    }
    return command->run(argc - 2, argv + 2);
}

}  // namespace

int main(int argc, char** argv) {
    // Every command's output goes through it, so that none can end with status 0
    // after its output was lost.
    kestrel::cli::CheckedOutput output;
    return output.Finish(Run(argc, argv));
}
