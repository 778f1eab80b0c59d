// kestrel tree, dump, where and find: the commands that read a project file.
#include <array>
#include <iostream>

#include "common/constants.h"
#include "common/text.h"
#include "control/node_keys.h"
#include "commands.h"
#include "json_text.h"
#include "project_session.h"

namespace kestrel::cli {

namespace {

constexpr const char* kTreeUsage =
    "usage: kestrel tree PROJECT [--files] [--expand] [--keys] [--lines] [--format text|json]\n"
    "Loads PROJECT and prints the class tree (with --files the file tree) as an\n"
    "indented outline, children in tree order.\n"
    "  --expand  open every class node first, as a user would, so its members show\n"
    "  --keys    add each node's key, image and tag\n"
    "  --lines   add each member's FILE:LINE (the implementation's first) and each\n"
    "            class's file\n"
    "  --format json  one object per node: depth, text, kind, and file, line or\n"
    "            endline where they apply (key, image and tag with --keys)\n";

constexpr const char* kDumpUsage =
    "usage: kestrel dump PROJECT [--format text|json]\n"
    "Prints every field the project file holds: one line for the project, then one per\n"
    "file, class and item, in collection order.\n";

constexpr const char* kWhereUsage =
    "usage: kestrel where PROJECT FILE LINE [--format text|json]\n"
    "Prints the function of FILE whose body holds LINE: the one starting last at or\n"
    "before it. Exit status 1 when there is none.\n";

constexpr const char* kFindUsage =
    "usage: kestrel find PROJECT (--class NAME | --function NAME | --userdata TEXT) [--type T]\n"
    "                    [--all] [--format text|json]\n"
    "Prints what was found and the file it is in, searching only the files of type T\n"
    "(impl, def, form, noparse or 1 to 4), or each type in that order without --type.\n"
    "The first hit only, or with --all every file that holds it.\n"
    "Exit status 1 when nothing is found.\n";

// How --lines and --format json name what a node stands for.
const char* KindWord(int32_t kind) {
    switch (kind) {
        case ST_PROJECT: return "project";
        case ST_CLASS: return "class";
        case ST_METHODS: return "functions";
        case ST_VARS: return "variables";
        case ST_METHOD: return "function";
        case ST_VAR: return "variable";
        case ST_FILE: return "file";
        default: return "folder";
    }
}

struct OutlineStyle {
    bool keys = false;
    bool lines = false;
    bool json = false;
};

void PrintOutline(TreeView& view, const MemoryTree& tree, bool classTree, NodeId node, int depth,
                  const OutlineStyle& style) {
    for (; node != kNoNode; node = tree.NextSibling(node)) {
        const TreeView::Entry entry = style.lines || style.json ? view.EntryOf(node, classTree) : TreeView::Entry{};
        if (style.json) {
            JsonLine line;
            line.Number("depth", depth).Text("text", tree.Text(node)).Utf8("kind", KindWord(entry.kind));
            if (style.keys) line.Text("key", tree.Key(node)).Number("image", tree.Image(node)).Text("tag", tree.Tag(node));
            if (entry.file) line.Text("file", entry.file->FileName());
            if (entry.item) line.Number("line", entry.item->Line);
            else if (entry.classObj && (entry.kind == ST_CLASS)) line.Number("endline", entry.classObj->EndLine);
            line.WriteTo(std::cout);
        } else {
            std::cout << std::string(2 * depth, ' ') << Utf8(tree.Text(node));
            if (style.keys) {
                std::cout << "  [" << Utf8(tree.Key(node)) << "] image " << tree.Image(node);
                const std::u16string tag = tree.Tag(node);
                if (!tag.empty()) std::cout << " tag " << Quoted(tag);
            }
            if (style.lines && entry.file && (entry.item || entry.kind == ST_CLASS)) {
                std::cout << "  " << Utf8(entry.file->FileName());
                if (entry.item) std::cout << ':' << entry.item->Line;
            }
            std::cout << '\n';
        }
        PrintOutline(view, tree, classTree, tree.FirstChild(node), depth + 1, style);
    }
}

int Tree(const std::vector<std::string>& args) {
    std::string project;
    bool filesView = false, expand = false;
    OutlineStyle style;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--files") filesView = true;
        else if (a == "--expand") expand = true;
        else if (a == "--keys") style.keys = true;
        else if (a == "--lines") style.lines = true;
        else if (a == "--format") style.json = JsonFormat(OptionValue(args, i));
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
    PrintOutline(session.View(), shown, !filesView, shown.FirstChild(kNoNode), 0, style);
    return session.ErrorCount() == 0 ? 0 : 1;
}

// One line of dump's output: a record's kind and its fields, as text or as JSON.
class DumpRecord {
public:
    DumpRecord(int depth, const char* kind, bool json) : depth_(depth), kind_(kind), json_(json) {
        if (json_) line_.Utf8("record", kind);
    }
    // A record's name is written after its kind alone in text.
    DumpRecord& Name(std::u16string_view name) {
        if (json_) line_.Text("name", name);
        else text_ += " " + Quoted(name);
        return *this;
    }
    DumpRecord& Text(const char* field, std::u16string_view value) {
        if (json_) line_.Text(field, value);
        else text_ += std::string(" ") + field + " " + Quoted(value);
        return *this;
    }
    DumpRecord& Number(const char* field, int64_t value) {
        if (json_) line_.Number(field, value);
        else text_ += std::string(" ") + field + " " + std::to_string(value);
        return *this;
    }
    ~DumpRecord() {
        if (json_) line_.WriteTo(std::cout);
        else std::cout << std::string(2 * depth_, ' ') << kind_ << text_ << '\n';
    }

private:
    int depth_;
    const char* kind_;
    bool json_;
    JsonLine line_;
    std::string text_;
};

void DumpItem(const char* kind, const clsOneItem& item, bool json) {
    DumpRecord(2, kind, json)
        .Name(item.Name())
        .Number("line", item.Line)
        .Number("scope", item.Scope)
        .Number("userid", item.UserId)
        .Text("userdata", item.UserData())
        .Text("params", item.Params())
        .Text("key", item.KeyVal());
}

int Dump(const std::vector<std::string>& args) {
    std::string project;
    bool json = false;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--format") json = JsonFormat(OptionValue(args, i));
        else if (args[i].starts_with("-")) throw UsageError("unknown option '" + args[i] + "'");
        else if (project.empty()) project = args[i];
        else throw UsageError("unexpected argument '" + args[i] + "'");
    }
    if (project.empty()) throw UsageError("no PROJECT given");
    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(project);
    TreeView& view = session.View();
    AllFilesPtr all = view.files();
    DumpRecord(0, "project", json).Number("language", view.Language()).Number("id", view.ID()).Number("files", all->count());
    for (const FilePtr& file : all->Files()) {
        DumpRecord(0, "file", json)
            .Name(file->GetTrueFile())
            .Number("type", file->FileType())
            .Number("classes", file->count())
            .Number("userid", file->UserId)
            .Text("userdata", file->UserData);
        for (const ClassPtr& c : file->Classes()) {
            DumpRecord(1, "class", json)
                .Name(c->Name)
                .Number("endline", c->EndLine)
                .Text("userdata", c->UserData)
                .Number("userid", c->UserId)
                .Number("variables", c->CountVars())
                .Number("functions", c->CountFunc());
            for (const ItemPtr& v : c->Variables()) DumpItem("variable", *v, json);
            for (const ItemPtr& f : c->Functions()) DumpItem("function", *f, json);
        }
    }
    return session.ErrorCount() == 0 ? 0 : 1;
}

int Where(const std::vector<std::string>& args) {
    std::vector<std::string> positional;
    bool json = false;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--format") json = JsonFormat(OptionValue(args, i));
        else if (args[i].starts_with("--")) throw UsageError("unknown option '" + args[i] + "'");
        else positional.push_back(args[i]);
    }
    if (positional.size() != 3) throw UsageError("needs PROJECT, FILE and LINE");
    const int32_t line = ParseNumber("LINE", positional[2]);
    ProjectSession session(ProjectSession::Kind::Shown);
    session.Load(positional[0]);
    FilePtr file = session.View().files()->FindFile(FromUtf8(AbsolutePath(positional[1])));
    if (!file) throw Failure(positional[1], "not in the project");
    ItemPtr item = file->InProc(line);
    if (!item) {
        std::cerr << "kestrel: " << positional[1] << ": no function starts at or before line " << line << '\n';
        return 1;
    }
    std::u16string owner;
    for (const ClassPtr& c : file->Classes())
        if (c->func(item->KeyVal()) == item) owner = c->Name;
    if (json) {
        JsonLine()
            .Text("class", owner)
            .Text("name", item->Name())
            .Text("params", item->Params())
            .Text("file", file->FileName())
            .Number("line", item->Line)
            .WriteTo(std::cout);
    } else {
        std::cout << Utf8(owner) << "::" << Utf8(std::u16string(item->Name()).append(item->Params())) << " line "
                  << item->Line << '\n';
    }
    return session.ErrorCount() == 0 ? 0 : 1;
}

int Find(const std::vector<std::string>& args) {
    std::string project, what, name;
    std::vector<int32_t> types;
    bool all = false, json = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--class" || a == "--function" || a == "--userdata") {
            if (!what.empty()) throw UsageError("give only one of --class, --function and --userdata");
            what = a;
            name = OptionValue(args, i);
        } else if (a == "--type") {
            types = {ParseFileType(OptionValue(args, i))};
        } else if (a == "--all") {
            all = true;
        } else if (a == "--format") {
            json = JsonFormat(OptionValue(args, i));
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
    const std::u16string key = FromUtf8(name);
    // The project's own searches ask each file of a type in project order, and the first
    // that answers wins; --all goes on through every file of every type.
    bool found = false;
    for (int32_t type : types) {
        for (const FilePtr& file : session.View().files()->Files()) {
            if (file->FileType() != type) continue;
            ClassPtr c;
            int32_t line = -1;
            if (what == "--class") c = file->GetClass(key);
            else if (what == "--userdata") c = file->FindClass_ByUserData(key);
            else line = file->IsFunctionDefined(key);
            if (!c && line < 0) continue;
            found = true;
            if (json) {
                JsonLine hit;
                hit.Utf8("found", c ? "class" : "function").Text("name", c ? c->Name : key).Text("file", file->FileName());
                if (!c) hit.Number("line", line);
                hit.WriteTo(std::cout);
            } else if (c) {
                std::cout << Utf8(c->Name) << '\t' << Utf8(file->FileName()) << '\n';
            } else {
                std::cout << name << '\t' << Utf8(file->FileName()) << "\tline " << line << '\n';
            }
            if (!all) return 0;
        }
    }
    if (found) return 0;
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
