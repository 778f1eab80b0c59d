// kestrel: command-line access to the class-view component.
#include <cstring>
#include <iostream>

#include "commands.h"

namespace {

struct Command {
    const char* name;
    int (*run)(int argc, char** argv);
    void (*help)(std::ostream& out);
    const char* summary;
};

const Command kCommands[] = {
    {"scan", kestrel::cli::RunScan, kestrel::cli::ScanHelp, "list the declarations the scanner finds in source files"},
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

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        Usage(std::cerr);
        return 2;
    }
    const char* name = argv[1];
    if (std::strcmp(name, "--help") == 0 || std::strcmp(name, "-h") == 0) {
        Usage(std::cout);
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
