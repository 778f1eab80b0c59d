// kestrel tree, dump, where and find: the commands that read a project file.
#include <array>
#include <iostream>

#include "common/constants.h"
#include "common/text.h"
#include "control/node_keys.h"
#include "commands.h"
#include "project_session.h"

namespace kestrel::cli {

namespace {

constexpr const char* kTreeUsage =
    "usage: kestrel tree PROJECT [--files] [--expand] [--keys]\n"
    "Loads PROJECT and prints the class tree (with --files the file tree) as an\n"
    "indented outline, children in tree order.\n"
    "  --expand  open every class node first, as a user would, so its members show\n"
    "  --keys    add each node's key, image and tag\n";

constexpr const char* kDumpUsage =
    "usage: kestrel dump PROJECT\n"
    "Prints every field the project file holds: one line for the project, then one per\n"
    "file, class and item, in collection order.\n";

constexpr const char* kWhereUsage =
    "usage: kestrel where PROJECT FILE LINE\n"
    "Prints the function of FILE whose body holds LINE: the one starting last at or\n"
    "before it. Exit status 1 when there is none.\n";

constexpr const char* kFindUsage =
    "usage: kestrel find PROJECT (--class NAME | --function NAME | --userdata TEXT) [--type T]\n"
    "Prints what was found and the file it is in, searching only the files of type T\n"
    "(impl, def, form, noparse or 1 to 4), or each type in that order without --type.\n"
    "Exit status 1 when nothing is found.\n";

void PrintOutline(const MemoryTree& tree, NodeId node, int depth, bool keys) {
    for (; node != kNoNode; node = tree.NextSibling(node)) {
        std::cout << std::string(2 * depth, ' ') << Utf8(tree.Text(node));
        if (keys) {
            std::cout << "  [" << Utf8(tree.Key(node)) << "] image " << tree.Image(node);
            const std::u16string tag = tree.Tag(node);
            if (!tag.empty()) std::cout << " tag " << Quoted(tag);
        }
        std::cout << '\n';
        PrintOutline(tree, tree.FirstChild(node), depth + 1, keys);
    }
}

int Tree(const std::vector<std::string>& args) {
    std::string project;
    bool filesView = false, expand = false, keys = false;
    for (const std::string& a : args) {
        if (a == "--files") filesView = true;
        else if (a == "--expand") expand = true;
        else if (a == "--keys") keys = true;
        else if (a.starts_with("-")) throw UsageError("unknown option '" + a + "'");
        else if (project.empty()) project = a;
        else throw UsageError("unexpected argument '" + a + "'");
    }
    if (project.empty()) throw UsageError("no PROJECT given");
    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(project);
    MemoryTree& classes = session.Platform().classTree;
    if (expand) {
        std::vector<NodeId> classNodes;
        for (NodeId root = classes.FirstChild(kNoNode); root != kNoNode; root = classes.NextSibling(root))
            for (NodeId c = classes.FirstChild(root); c != kNoNode; c = classes.NextSibling(c))
                if (HasMarker(classes.Key(c), kClassMarker)) classNodes.push_back(c);
        for (NodeId c : classNodes) classes.UserExpand(c);
        session.Platform().timer.Drain();
    }
    const MemoryTree& shown = filesView ? session.Platform().fileTree : classes;
    PrintOutline(shown, shown.FirstChild(kNoNode), 0, keys);
    return session.ErrorCount() == 0 ? 0 : 1;
}

void DumpItem(const char* kind, const clsOneItem& item) {
    std::cout << "    " << kind << ' ' << Quoted(item.Name()) << " line " << item.Line << " scope " << item.Scope
              << " userid " << item.UserId << " userdata " << Quoted(item.UserData()) << " params "
              << Quoted(item.Params()) << " key " << Quoted(item.KeyVal()) << '\n';
}

int Dump(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0].starts_with("-"))
        throw UsageError(args.empty() ? "no PROJECT given" : "unexpected argument '" + args.back() + "'");
    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(args[0]);
    TreeView& view = session.View();
    AllFilesPtr all = view.files();
    std::cout << "project language " << view.Language() << " id " << view.ID() << " files " << all->count() << '\n';
    for (const FilePtr& file : all->Files()) {
        std::cout << "file " << Quoted(file->GetTrueFile()) << " type " << file->FileType() << " classes "
                  << file->count() << " userid " << file->UserId << " userdata " << Quoted(file->UserData) << '\n';
        for (const ClassPtr& c : file->Classes()) {
            std::cout << "  class " << Quoted(c->Name) << " endline " << c->EndLine << " userdata "
                      << Quoted(c->UserData) << " userid " << c->UserId << " variables " << c->CountVars()
                      << " functions " << c->CountFunc() << '\n';
            for (const ItemPtr& v : c->Variables()) DumpItem("variable", *v);
            for (const ItemPtr& f : c->Functions()) DumpItem("function", *f);
        }
    }
    return session.ErrorCount() == 0 ? 0 : 1;
}

int Where(const std::vector<std::string>& args) {
    if (args.size() != 3) throw UsageError("needs PROJECT, FILE and LINE");
    for (const std::string& a : args)
        if (a.starts_with("--")) throw UsageError("unknown option '" + a + "'");
    const int32_t line = ParseNumber("LINE", args[2]);
    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(args[0]);
    FilePtr file = session.View().files()->FindFile(FromUtf8(AbsolutePath(args[1])));
    if (!file) throw Failure(args[1], "not in the project");
    ItemPtr item = file->InProc(line);
    if (!item) {
        std::cerr << "kestrel: " << args[1] << ": no function starts at or before line " << line << '\n';
        return 1;
    }
    std::u16string owner;
    for (const ClassPtr& c : file->Classes())
        if (c->func(item->KeyVal()) == item) owner = c->Name;
    std::cout << Utf8(owner) << "::" << Utf8(std::u16string(item->Name()).append(item->Params())) << " line "
              << item->Line << '\n';
    return session.ErrorCount() == 0 ? 0 : 1;
}

int Find(const std::vector<std::string>& args) {
    std::string project, what, name;
    std::vector<int32_t> types;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--class" || a == "--function" || a == "--userdata") {
            if (!what.empty()) throw UsageError("give only one of --class, --function and --userdata");
            what = a;
            name = OptionValue(args, i);
        } else if (a == "--type") {
            types = {ParseFileType(OptionValue(args, i))};
        } else if (a.starts_with("-")) {
            throw UsageError("unknown option '" + a + "'");
        } else if (project.empty()) {
            project = a;
        } else {
            throw UsageError("unexpected argument '" + a + "'");
        }
    }
    if (project.empty()) throw UsageError("no PROJECT given");
    if (what.empty()) throw UsageError("give one of --class, --function and --userdata");
    if (types.empty()) types = {FILETYPE_IMPLEMENTATION, FILETYPE_DEFINITION, FILETYPE_FORM, FILETYPE_NOPARSE};

    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(project);
    AllFilesPtr all = session.View().files();
    const std::u16string key = FromUtf8(name);
    for (int32_t type : types) {
        if (what == "--class") {
            ClassPtr c = all->FindClass(key, type);
            FilePtr file = all->FindClass_File(key, type);
            if (c && file) {
                std::cout << Utf8(c->Name) << '\t' << Utf8(file->FileName()) << '\n';
                return 0;
            }
        } else if (what == "--function") {
            if (FilePtr file = all->FindFunction(key, type)) {
                std::cout << name << '\t' << Utf8(file->FileName()) << "\tline " << file->IsFunctionDefined(key) << '\n';
                return 0;
            }
        } else if (ClassPtr c = all->FindClass_ByUserData(key, type)) {
            for (const FilePtr& file : all->Files()) {
                if (file->FileType() == type && file->FindClass_ByUserData(key) == c) {
                    std::cout << Utf8(c->Name) << '\t' << Utf8(file->FileName()) << '\n';
                    return 0;
                }
            }
        }
    }
    std::cerr << "kestrel: " << name << ": not found\n";
    return 1;
}

}  // namespace

int RunTree(int argc, char** argv) { return RunCommand("tree", kTreeUsage, argc, argv, Tree); }
void TreeHelp(std::ostream& out) { out << kTreeUsage; }
int RunDump(int argc, char** argv) { return RunCommand("dump", kDumpUsage, argc, argv, Dump); }
void DumpHelp(std::ostream& out) { out << kDumpUsage; }
int RunWhere(int argc, char** argv) { return RunCommand("where", kWhereUsage, argc, argv, Where); }
void WhereHelp(std::ostream& out) { out << kWhereUsage; }
int RunFind(int argc, char** argv) { return RunCommand("find", kFindUsage, argc, argv, Find); }
void FindHelp(std::ostream& out) { out << kFindUsage; }

}  // namespace kestrel::cli
