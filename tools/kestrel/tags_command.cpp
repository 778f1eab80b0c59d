// kestrel tags (and kestrel-ctags, the same program under that name): writes tags of
// source files that tools built for Universal Ctags read: Vim and readtags, Tagbar,
// Vista.vim, ctrlp, and GNU Global's plug-in parser through --filter.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "project_session.h"
#include "file_list.h"
#include "tag_collection.h"
#include "tag_output.h"

namespace kestrel::cli {

namespace {

namespace fs = std::filesystem;

constexpr const char* kTagsUsage =
    "usage: kestrel tags [-f FILE|-] [-R] [--languages=LIST] [--language-force=L] [--fields=F]\n"
    "                    [--extras=E] [--sort=yes|no|foldcase] [--output-format=u-ctags|e-ctags|json]\n"
    "                    [--excmd=number|pattern|combine] [-x [--_xformat=FORMAT]] [-L LIST] FILE...\n"
    "       kestrel tags --filter [--filter-terminator=TEXT] ...   (file names on standard input)\n"
    "Writes tags of the classes, functions and variables of C, C++, Java and Basic files\n"
    "in the format of Universal Ctags (format 2), to FILE (default: tags; - for standard\n"
    "output). kestrel-ctags is this command under a name tools can run.\n"
    "  -R                  descend into folders\n"
    "  --fields=F          k kind letter, K kind name, z kind:NAME, n line:, s class:,\n"
    "                      Z scope:, a access:, S signature:, t typeref:, e end:,\n"
    "                      l language: (default knsaSet; +F adds, -F removes)\n"
    "  --sort              yes sorts by name as readtags searches, foldcase ignoring case\n"
    "  -x                  cross-reference lines instead, after --_xformat\n"
    "  --filter            tags of each file named on standard input, then the terminator\n"
    "  --list-languages, --list-kinds[=L], --list-features, --version\n"
    "Options it does not know are passed over (--verbose names them).\n";

struct Options {
    TagFormat format;
    std::string output = "tags";
    bool outputGiven = false;
    bool recurse = false;
    bool filter = false;
    std::string terminator;
    bool verbose = false;
    bool pseudoOnStdout = false;
    const TagLanguage* forced = nullptr;
    std::vector<const TagLanguage*> languages;  // empty: all
    std::vector<std::string> files;
    std::vector<std::string> lists;
    std::vector<std::string> ignored;
    enum class Listing { None, Languages, Kinds, Features, Version } listing = Listing::None;
    std::string listingLanguage;
};

// --fields: letters replace the set, or with '+' and '-' add to it and take from it.
void ApplyFields(std::string& fields, const std::string& letters) {
    if (letters.empty()) return;
    bool adding = true;
    if (letters[0] != '+' && letters[0] != '-') fields.clear();
    for (size_t i = 0; i < letters.size(); ++i) {
        const char c = letters[i];
        if (c == '+' || c == '-') adding = c == '+';
        else if (c == '{') i = std::min(letters.find('}', i), letters.size());  // fields by long name: none of ours
        else if (adding && fields.find(c) == std::string::npos) fields += c;
        else if (!adding) fields.erase(std::remove(fields.begin(), fields.end(), c), fields.end());
    }
}

// Splits "--name=value"; value empty when there is no '='.
bool Named(const std::string& arg, const char* name, std::string& value) {
    const std::string prefix = std::string(name) + "=";
    if (arg.rfind(prefix, 0) == 0) {
        value = arg.substr(prefix.size());
        return true;
    }
    if (arg == name) {
        value.clear();
        return true;
    }
    return false;
}

void Parse(const std::vector<std::string>& args, Options& o) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        std::string v;
        auto next = [&]() -> std::string {
            if (i + 1 >= args.size()) throw UsageError(a + " needs a value");
            return args[++i];
        };
        if (a.empty() || a[0] != '-' || a == "-") {
            o.files.push_back(a);
        } else if (a == "-f" || a == "-o") {
            o.output = next();
            o.outputGiven = true;
        } else if ((a.rfind("-f", 0) == 0 || a.rfind("-o", 0) == 0) && a.size() > 2 && a[1] != '-') {
            o.output = a.substr(2);
            o.outputGiven = true;
        } else if (a == "-L") {
            o.lists.push_back(next());
        } else if (Named(a, "--fields", v)) {
            ApplyFields(o.format.fields, v);
        } else if (Named(a, "--sort", v)) {
            if (v == "no") o.format.sort = TagFormat::Sort::No;
            else if (v == "foldcase") o.format.sort = TagFormat::Sort::FoldCase;
            else if (v == "yes" || v.empty()) o.format.sort = TagFormat::Sort::Yes;
            else throw UsageError("--sort takes yes, no or foldcase, not '" + v + "'");
        } else if (Named(a, "--output-format", v)) {
            if (v == "u-ctags") o.format.output = TagFormat::Output::UCtags;
            else if (v == "e-ctags") o.format.output = TagFormat::Output::ECtags;
            else if (v == "json") o.format.output = TagFormat::Output::Json;
            else throw UsageError("--output-format takes u-ctags, e-ctags or json, not '" + v + "'");
        } else if (Named(a, "--excmd", v)) {
            if (v == "number") o.format.excmd = TagFormat::Excmd::Number;
            else if (v == "combine") o.format.excmd = TagFormat::Excmd::Combine;
            else if (v == "pattern" || v == "mixed") o.format.excmd = TagFormat::Excmd::Pattern;
            else throw UsageError("--excmd takes number, pattern or combine, not '" + v + "'");
        } else if (Named(a, "--language-force", v)) {
            o.forced = TagLanguageNamed(v);
            if (!o.forced) throw UsageError("unknown language '" + v + "' (--list-languages lists them)");
        } else if (Named(a, "--languages", v)) {
            std::string rest = v;
            if (!rest.empty() && rest[0] == '=') rest.erase(0, 1);
            size_t at = 0;
            while (at <= rest.size()) {
                const size_t comma = std::min(rest.find(',', at), rest.size());
                std::string name = rest.substr(at, comma - at);
                if (!name.empty() && (name[0] == '+' || name[0] == '-')) name.erase(0, 1);
                if (name == "all") o.languages.clear();
                else if (const TagLanguage* l = TagLanguageNamed(name)) o.languages.push_back(l);
                else if (!name.empty()) o.ignored.push_back("--languages: " + name);
                at = comma + 1;
            }
        } else if (Named(a, "--extras", v) || Named(a, "--extra", v)) {
            if (v.find("+p") != std::string::npos || v.find('p') == 0) o.pseudoOnStdout = true;
            else o.ignored.push_back(a);
        } else if (a == "-R" || Named(a, "--recurse", v)) {
            o.recurse = v != "no";
        } else if (a == "--filter" || Named(a, "--filter", v)) {
            o.filter = v != "no";
        } else if (Named(a, "--filter-terminator", v)) {
            o.terminator = v;
        } else if (Named(a, "--_xformat", v)) {
            o.format.xformat = v;
        } else if (a == "--verbose" || a == "-V") {
            o.verbose = true;
        } else if (a == "--version") {
            o.listing = Options::Listing::Version;
        } else if (a == "--list-languages") {
            o.listing = Options::Listing::Languages;
        } else if (Named(a, "--list-kinds", v) || Named(a, "--list-kinds-full", v)) {
            o.listing = Options::Listing::Kinds;
            o.listingLanguage = v;
        } else if (a == "--list-features") {
            o.listing = Options::Listing::Features;
        } else if (a[0] == '-' && a[1] != '-') {
            // Bundled short flags, as Global passes -xu.
            for (char c : a.substr(1)) {
                if (c == 'x') o.format.output = TagFormat::Output::Xref;
                else if (c == 'u') o.format.sort = TagFormat::Sort::No;
                else if (c == 'R') o.recurse = true;
                else if (c == 'V') o.verbose = true;
                else o.ignored.push_back(std::string("-") + c);
            }
        } else {
            o.ignored.push_back(a);  // --format=2, --append=no, --c++-kinds=..., --file-scope=yes, --langmap=...
        }
    }
}

// The files to tag: those named, those of the lists, and with -R those under folders.
std::vector<TagFile> Inputs(const Options& o, std::vector<std::string> names) {
    for (const std::string& list : o.lists) {
        std::ifstream file;
        if (list != "-") file.open(list);
        std::istream& in = list == "-" ? std::cin : file;
        if (!in) throw Failure(list, "cannot be read");
        for (std::string line; std::getline(in, line);)
            if (!line.empty()) names.push_back(line);
    }
    std::vector<TagFile> files;
    auto wanted = [&](const std::string& path) { return o.forced || LanguageOfExtension(path).has_value(); };
    for (const std::string& name : names) {
        std::error_code ec;
        if (fs::is_directory(name, ec)) {
            if (!o.recurse) {
                std::cerr << "kestrel-ctags: " << name << ": a folder (-R descends into folders)\n";
                continue;
            }
            std::vector<std::string> found;
            for (auto it = fs::recursive_directory_iterator(name, fs::directory_options::skip_permission_denied, ec);
                 it != fs::recursive_directory_iterator(); it.increment(ec)) {
                if (ec) break;
                if (it->path().filename().string().starts_with(".")) {
                    if (it->is_directory()) it.disable_recursion_pending();
                    continue;
                }
                if (it->is_regular_file()) found.push_back(it->path().string());
            }
            std::sort(found.begin(), found.end());
            for (const std::string& path : found)
                if (wanted(path)) files.push_back({path, o.forced});
        } else {
            files.push_back({name, o.forced});
        }
    }
    return files;
}

std::vector<Tag> TagsOf(const Options& o, const std::vector<TagFile>& files, bool& unreadable) {
    std::vector<Tag> tags = CollectTags(files, unreadable);
    if (!o.languages.empty() && !o.forced) {
        std::erase_if(tags, [&](const Tag& t) {
            return std::find(o.languages.begin(), o.languages.end(), t.language) == o.languages.end();
        });
    }
    return tags;
}

void List(const Options& o) {
    switch (o.listing) {
        case Options::Listing::Version:
            std::cout << "kestrel-ctags " KESTREL_VERSION
                         ", an independent tagger compatible with Universal Ctags (not Universal Ctags itself)\n"
                         "Tags C, C++, Java and Basic with the kestrel class-view scanner.\n";
            break;
        case Options::Listing::Languages:
            for (const TagLanguage& l : kTagLanguages) std::cout << l.name << '\n';
            break;
        case Options::Listing::Features:
            std::cout << "#NAME             DESCRIPTION\njson              supports json format output\n";
            break;
        case Options::Listing::Kinds:
            for (const TagLanguage& l : kTagLanguages) {
                const bool one = !o.listingLanguage.empty();
                if (one && TagLanguageNamed(o.listingLanguage) != &l) continue;
                if (!one) std::cout << l.name << '\n';
                std::vector<const TagKind*> kinds;
                for (const TagKind* k : {&l.classKind, &l.functionKind, &l.memberKind, &l.variableKind})
                    if (std::none_of(kinds.begin(), kinds.end(), [&](const TagKind* seen) { return seen->letter == k->letter; }))
                        kinds.push_back(k);
                for (const TagKind* k : kinds) std::cout << (one ? "" : "    ") << k->letter << "  " << k->description << '\n';
            }
            break;
        case Options::Listing::None:
            break;
    }
}

int Tags(const std::vector<std::string>& args) {
    Options o;
    Parse(args, o);
    if (o.verbose)
        for (const std::string& a : o.ignored) std::cerr << "kestrel-ctags: passed over: " << a << '\n';
    if (o.listing != Options::Listing::None) {
        List(o);
        return 0;
    }
    bool unreadable = false;
    if (o.filter) {
        // One file name a line in, its tags and the terminator out, until the input ends.
        o.format.pseudoTags = false;
        for (std::string name; std::getline(std::cin, name);) {
            if (name.empty()) continue;
            std::vector<Tag> tags = TagsOf(o, Inputs(o, {name}), unreadable);
            SortTags(tags, o.format.sort);
            WriteTags(std::cout, tags, o.format);
            std::cout << o.terminator << std::flush;
        }
        return 0;
    }
    if (o.files.empty() && o.lists.empty()) throw UsageError("no FILE given");
    std::vector<Tag> tags = TagsOf(o, Inputs(o, o.files), unreadable);
    SortTags(tags, o.format.sort);
    const bool toStdout = o.output == "-" || o.format.output == TagFormat::Output::Xref;
    o.format.pseudoTags = !toStdout || o.pseudoOnStdout;
    if (toStdout) {
        WriteTags(std::cout, tags, o.format);
    } else {
        std::ofstream out(o.output, std::ios::binary | std::ios::trunc);
        if (!out) throw Failure(o.output, "cannot be written");
        WriteTags(out, tags, o.format);
        out.close();
        if (!out) throw Failure(o.output, "could not be written whole");
    }
    return unreadable ? 1 : 0;
}

}  // namespace

int RunTags(int argc, char** argv) { return RunCommand("tags", kTagsUsage, argc, argv, Tags); }
void TagsHelp(std::ostream& out) { out << kTagsUsage; }

}  // namespace kestrel::cli
