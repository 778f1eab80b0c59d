#pragma once
// The command groups of the kestrel program. Each lives in its own file and gets the
// arguments that follow its name; it returns the process exit status.
#include <ostream>

namespace kestrel::cli {

int RunScan(int argc, char** argv);
void ScanHelp(std::ostream& out);

// The project commands: each drives a TreeView on the in-memory platform.
int RunNew(int argc, char** argv);
void NewHelp(std::ostream& out);
int RunAdd(int argc, char** argv);
void AddHelp(std::ostream& out);
int RunRemove(int argc, char** argv);
void RemoveHelp(std::ostream& out);
int RunUpdate(int argc, char** argv);
void UpdateHelp(std::ostream& out);
int RunTree(int argc, char** argv);
void TreeHelp(std::ostream& out);
int RunDump(int argc, char** argv);
void DumpHelp(std::ostream& out);
int RunWhere(int argc, char** argv);
void WhereHelp(std::ostream& out);
int RunFind(int argc, char** argv);
void FindHelp(std::ostream& out);
int RunSymbols(int argc, char** argv);
void SymbolsHelp(std::ostream& out);
// kestrel tags, and the program under the name kestrel-ctags.
int RunTags(int argc, char** argv);
void TagsHelp(std::ostream& out);

}  // namespace kestrel::cli
