// kestrel symbols: the project's classes, functions and variables that a typed query
// finds, the best first, in a form that editors' quickfix lists and grep read.
#include <iostream>
#include <optional>

#include "common/constants.h"
#include "common/text.h"
#include "commands.h"
#include "json_text.h"
#include "project_session.h"
#include "search/symbol_index.h"

namespace kestrel::cli {

namespace {

constexpr const char* kSymbolsUsage =
    "usage: kestrel symbols PROJECT QUERY [--limit N] [--kind class|function|variable]\n"
    "                       [--access public|protected|private] [--format text|json]\n"
    "Finds the symbols whose names hold QUERY's letters in order, letter case ignored,\n"
    "best first: word starts, runs of letters and prefixes rank higher. A space in QUERY\n"
    "matches '_' or nothing; 'Class::name' or 'Class.name' also matches the class.\n"
    "  --limit N   at most N hits (default 100; 0 for all)\n"
    "  --format    text: one hit per line, FILE:LINE: KIND ACCESS CONTAINER::NAME PARAMS;\n"
    "              json: one JSON object per line (JSON Lines)\n"
    "Exit status 1 when nothing is found.\n";

struct Word {
    const char* text;
    int32_t value;
};
constexpr Word kKinds[] = {{"class", int32_t(SymbolKind::Class)},
                           {"function", int32_t(SymbolKind::Function)},
                           {"variable", int32_t(SymbolKind::Variable)}};
// What a member's scope is called; anything else (a class, a Basic module's member of
// no stated scope) is "none".
constexpr Word kAccess[] = {{"public", PUBLIC_SCOPE}, {"protected", PROTECTED_SCOPE}, {"private", PRIVATE_SCOPE}};

template <size_t N>
int32_t ParseWord(const char (&option)[N], const std::string& text, const Word (&words)[3]) {
    std::string accepted;
    for (const Word& w : words) {
        if (text == w.text) return w.value;
        accepted += accepted.empty() ? w.text : std::string(", ") + w.text;
    }
    throw UsageError(std::string(option) + " takes one of " + accepted + ", not '" + text + "'");
}

template <class Value>
const char* WordFor(Value value, const Word (&words)[3], const char* otherwise) {
    for (const Word& w : words)
        if (w.value == static_cast<int32_t>(value)) return w.text;
    return otherwise;
}

void PrintText(const SymbolHit& hit) {
    std::cout << Utf8(hit.file) << ':' << hit.line << ": " << WordFor(hit.kind, kKinds, "?") << ' '
              << WordFor(hit.scope, kAccess, "none") << ' ' << Utf8(hit.container) << "::" << Utf8(hit.name);
    if (!hit.params.empty()) std::cout << ' ' << Utf8(hit.params);
    std::cout << '\n';
}

void PrintJson(const SymbolHit& hit) {
    JsonLine()
        .Text("name", hit.name)
        .Utf8("kind", WordFor(hit.kind, kKinds, "?"))
        .Utf8("access", WordFor(hit.scope, kAccess, "none"))
        .Text("container", hit.container)
        .Text("file", hit.file)
        .Number("line", hit.line)
        .Text("params", hit.params)
        .Number("score", hit.score)
        .WriteTo(std::cout);
}

int Symbols(const std::vector<std::string>& args) {
    std::vector<std::string> positional;
    SymbolQuery query;
    bool json = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--limit") {
            const int32_t limit = ParseNumber("--limit", OptionValue(args, i));
            if (limit < 0) throw UsageError("--limit needs 0 or more");
            query.limit = static_cast<size_t>(limit);
        } else if (a == "--kind") {
            query.kind = static_cast<SymbolKind>(ParseWord("--kind", OptionValue(args, i), kKinds));
        } else if (a == "--access") {
            query.scope = ParseWord("--access", OptionValue(args, i), kAccess);
        } else if (a == "--format") {
            json = JsonFormat(OptionValue(args, i));
        } else if (a.starts_with("-") && a.size() > 1) {
            throw UsageError("unknown option '" + a + "'");
        } else {
            positional.push_back(a);
        }
    }
    if (positional.size() != 2) throw UsageError(positional.empty() ? "no PROJECT given" : "needs PROJECT and QUERY");
    query.text = FromUtf8(positional[1]);

    ProjectSession session(ProjectSession::Kind::Headless);
    session.Load(positional[0]);
    SymbolIndex index;
    index.Rebuild(*session.Files());
    const std::vector<SymbolHit> hits = index.Find(query);
    for (const SymbolHit& hit : hits) json ? PrintJson(hit) : PrintText(hit);
    if (session.ErrorCount() != 0) return 1;
    return hits.empty() ? 1 : 0;
}

}  // namespace

int RunSymbols(int argc, char** argv) { return RunCommand("symbols", kSymbolsUsage, argc, argv, Symbols); }
void SymbolsHelp(std::ostream& out) { out << kSymbolsUsage; }

}  // namespace kestrel::cli
