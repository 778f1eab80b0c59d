#include "scanner/block_scan.h"

#include <array>

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/class_stack.h"
#include "scanner/splice_text.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr std::u16string_view kEndClassText = u"\u00ABEND\u00BFCLASS\u00BB";
constexpr size_t npos = std::u16string::npos;

// Cuts out every piece that opens and closes with `delim` on the line (string and
// character literals). An unclosed one stays.
void RemoveLiterals(std::u16string& line, const SoughtText& literal, const UnitSet& present) {
    const std::u16string_view delim = literal.text;
    if (line.empty() || delim.empty() || !present.MayHold(literal.units)) return;
    SpliceText text(line);
    size_t from = 0;
    for (;;) {
        size_t open = text.Find(delim, from);
        if (open == npos) break;
        size_t close = text.Find(delim, open + delim.size());
        if (close == npos) break;
        text.Erase(open, close + delim.size());
        from = SpliceText::JunctionStart(open, delim.size());
    }
    text.Finish();
}

// Position of the first of two keywords found as a whole word (the first tried
// first), with the keyword that matched.
int32_t FindEither(const SyntaxTable& syntax, std::u16string_view line, const SoughtText (&words)[2],
                   std::u16string_view& found, const UnitSet& present) {
    for (const SoughtText& word : words) {
        found = word.text;
        if (const int32_t pos = present.MayHold(word.units) ? syntax.CheckOneWord(line, found, 1) : 0; pos != 0) return pos;
    }
    return 0;
}

// The start and end word of a pair, as FindEither tries them.
struct WordPair {
    explicit WordPair(const RTriple& words) : words{SoughtText(words.StartWord.word), SoughtText(words.EndWord.word)} {}
    // Languages without procedure or variable keywords leave a pair empty: no line can
    // hold them, and the searches are skipped.
    bool Used() const { return !words[0].text.empty() || !words[1].text.empty(); }
    SoughtText words[2];
};

// The scope words in the order they are tried, each with the scope it stands for.
struct ScopeWord {
    SoughtText word;
    int16_t scope;
};
using ScopeWords = std::array<ScopeWord, 3>;

ScopeWords ScopeWordsOf(const SyntaxTable& syntax) {
    const RTriple& w = syntax.ScopeWords;
    return {ScopeWord{SoughtText(w.StartWord.word), w.StartWord.Scope}, ScopeWord{SoughtText(w.MiddleWord.word), w.MiddleWord.Scope},
            ScopeWord{SoughtText(w.EndWord.word), w.EndWord.Scope}};
}

int16_t ScopeIn(const SyntaxTable& syntax, const ScopeWords& words, std::u16string_view line, const UnitSet& present) {
    int16_t scope = -1;
    Trap(kModule, "Sub CheckScope", [&] {
        for (const ScopeWord& w : words) {
            if (present.MayHold(w.word.units) && syntax.CheckOneWord(line, w.word.text, 1) != 0) {
                scope = w.scope;
                return;
            }
        }
    });
    return scope;
}

// The 0-based start of a whole word that CheckOneWord reported at `pos` (-1: it ends the line).
size_t WordStart(std::u16string_view line, std::u16string_view word, int32_t pos) {
    return pos == -1 ? line.size() - word.size() : static_cast<size_t>(pos - 1);
}

// The name after the class word at 1-based `start`: separators skipped, then up to
// the next separator. Every character is looked up by its full code.
std::u16string_view ClassName(const SyntaxTable& syntax, std::u16string_view line, int32_t start) {
    size_t k = std::min(start > 0 ? static_cast<size_t>(start - 1) : 0, line.size());
    while (k < line.size() && syntax.IsSeparator(line[k])) ++k;
    size_t begin = k;
    while (k < line.size() && !syntax.IsSeparator(line[k])) ++k;
    std::u16string_view name = TrimmedView(line.substr(begin, k - begin));
    while (!name.empty() && name.back() == u':') name.remove_suffix(1);
    return name;
}

class LevelScanner {
public:
    LevelScanner(const SyntaxTable& syntax, int16_t nLang, ResultList& results)
        : syntax_(syntax),
          nLang_(nLang),
          results_(results),
          stringDelim_(syntax.StringDelim),
          charDelim_(syntax.CharDelim),
          classWord_(syntax.ClassWord),
          blockStart_(syntax.BlockStart),
          blockEnd_(syntax.BlockEnd),
          endProcWords_(syntax.EndProcWords),
          procWords_(syntax.ProcWords),
          varWords_(syntax.VarWords),
          scopeWords_(ScopeWordsOf(syntax)) {}

    // `present` holds at least the units of L.
    void ScanLine(std::u16string& L, int32_t i, const UnitSet& present);
    // Only a class pushed onto a full stack raises inside ScanLine, and a line pushes at
    // most once for its class word and once for each block it opens: never more often
    // than it has units, plus one.
    bool MayRaise(const std::u16string& L) const { return stack_.Room() <= L.size(); }

private:
    bool AtDeclarationLevel() const { return depth_ == stack_.Level() + 1; }
    void TakeScope(std::u16string_view text) {
        int16_t found = ScopeIn(syntax_, scopeWords_, text, *present_);
        if (found >= 0) scope_ = found;
    }
    void SweepBlocks(std::u16string& L, int32_t i);

    const SyntaxTable& syntax_;
    const int16_t nLang_;
    ResultList& results_;
    int32_t depth_ = 0;
    int16_t scope_ = UNKNOWN_SCOPE;
    bool inProcedure_ = false;
    std::u16string candidate_;
    clsStack stack_;
    const UnitSet* present_ = nullptr;  // of the line being scanned
    // What the scan looks for, each with its units, gathered once.
    const SoughtText stringDelim_, charDelim_, classWord_, blockStart_, blockEnd_;
    const WordPair endProcWords_, procWords_, varWords_;
    const ScopeWords scopeWords_;
};

void LevelScanner::ScanLine(std::u16string& L, int32_t i, const UnitSet& present) {
    present_ = &present;
    RemoveLiterals(L, stringDelim_, present);
    RemoveLiterals(L, charDelim_, present);

    std::u16string_view word;
    int32_t pos = endProcWords_.Used() ? FindEither(syntax_, L, endProcWords_.words, word, present) : 0;
    if (pos != 0) {
        inProcedure_ = false;
        L.erase(WordStart(L, word, pos), word.size());
    }

    if (procWords_.Used() && FindEither(syntax_, L, procWords_.words, word, present) != 0) {
        TakeScope(L);
        results_.Add(L, i, scope_, stack_.Data(), present);
        L.clear();
        inProcedure_ = true;
    }

    if (varWords_.Used() && FindEither(syntax_, L, varWords_.words, word, present) != 0 && !inProcedure_) {
        results_.Add(L, i, kResultVariable, stack_.Data(), present);
        L.clear();
    }

    pos = present.MayHold(classWord_.units) ? syntax_.CheckOneWord(L, classWord_.text, 1) : 0;
    if (pos != 0) {
        if (FindUnit(L, u';') != npos) {
            L.clear();  // a forward declaration
        } else {
            // A class word that ends the line reports -1, and the name is still read
            // from -1 + the word's length.
            candidate_.assign(ClassName(syntax_, L, pos + static_cast<int32_t>(syntax_.ClassWord.size())));
            if (candidate_.find(u',') == npos) stack_.Push(candidate_, depth_);
        }
    }

    if (!L.empty() && !blockStart_.text.empty() && !blockEnd_.text.empty()) SweepBlocks(L, i);

    if (depth_ == stack_.Level()) inProcedure_ = false;
}

// Consumes the line delimiter by delimiter. The first opening and closing delimiter
// are remembered and looked for again only once the line has been consumed past them.
void LevelScanner::SweepBlocks(std::u16string& L, int32_t i) {
    const std::u16string_view open = blockStart_.text;
    const std::u16string_view close = blockEnd_.text;
    size_t cur = 0;
    size_t p = present_->MayHold(blockStart_.units) ? FindText(L, open) : npos;
    size_t q = present_->MayHold(blockEnd_.units) ? FindText(L, close) : npos;
    while (cur < L.size()) {
        if (p != npos && p < cur) p = FindText(L, open, cur);
        if (q != npos && q < cur) q = FindText(L, close, cur);
        std::u16string_view rest = std::u16string_view(L).substr(cur);
        if (p == npos && q == npos) {
            if (AtDeclarationLevel()) {
                TakeScope(rest);
                results_.Add(rest, i, scope_, stack_.Data(), *present_);
            }
            cur = L.size();
            break;
        }
        if (p != npos && (q == npos || p < q)) {
            size_t headLength = p - cur;
            if (AtDeclarationLevel() && headLength >= 1) {
                std::u16string_view head = rest.substr(0, headLength);
                TakeScope(head);
                results_.Add(head, i, scope_, stack_.Data(), *present_);
            }
            // extern "C" { (the string already removed): the linkage block counts as a
            // class body so its declarations stay at declaration level. It pushes
            // whatever name the last class header left behind.
            if (nLang_ == LANGUAGE_C && headLength > 5 && rest.substr(0, 6) == u"extern" &&
                TrimmedView(rest.substr(6, headLength - 6)).empty()) {
                stack_.Push(candidate_, depth_);
            }
            ++depth_;
            cur = p + open.size();
            continue;
        }
        if (q != npos && (p == npos || q < p)) {
            if (AtDeclarationLevel() &&
                (nLang_ == LANGUAGE_C || nLang_ == LANGUAGE_JAVA || nLang_ == LANGUAGE_CINCLUDE)) {
                results_.Add(kEndClassText, i, kResultEndClass, stack_.Data());
            }
            --depth_;
            cur = q + close.size();
            if (depth_ == stack_.Level()) stack_.Pop();
            continue;
        }
        break;  // both delimiters at one place: the line cannot be consumed further
    }
    L.erase(0, cur);
}

}  // namespace

int16_t CheckScope(const SyntaxTable& syntax, std::u16string_view line, const UnitSet& present) {
    return ScopeIn(syntax, ScopeWordsOf(syntax), line, present);
}

void TakeLevelsOut(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                   int16_t nLang, ResultList& results, const std::vector<UnitSet>* present) {
    LevelScanner scanner(syntax, nLang, results);
    const UnitSet anything = UnitSet::Anything();
    std::u16string L;
    // A run-time error ends the pass; the line being worked on keeps its earlier text.
    // Lines are worked on in place while no error can come; a copy is taken only once
    // the class stack could fill up on the line.
    Trap(kModule, "Sub TakeLevelsOut", [&] {
        for (int32_t i = 1; i <= lineCount; ++i) {
            std::u16string& stored = lines.at(static_cast<size_t>(i));
            const UnitSet& units = present ? (*present)[static_cast<size_t>(i)] : anything;
            if (!scanner.MayRaise(stored)) {
                scanner.ScanLine(stored, i, units);
                continue;
            }
            L.assign(stored);
            scanner.ScanLine(L, i, units);
            stored.assign(L);  // never longer than before, so no allocation
        }
    });
}

}  // namespace kestrel
