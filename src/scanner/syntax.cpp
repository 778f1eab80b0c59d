#include "scanner/syntax.h"

#include "common/constants.h"
#include "errorlog/errorlog.h"
#include "scanner/scan_output.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

struct IncludeForm {
    const char16_t* open;
    const char16_t* close;
};

struct ScopeKeyword {
    const char16_t* word;
    int16_t scope;
};

// The words of one language family, in the order the table is filled.
struct Vocabulary {
    Languages language;
    const char16_t* oneLineComment;
    const char16_t* multiCommentStart;
    const char16_t* multiCommentEnd;
    const char16_t* stringDelim;
    const char16_t* charDelim;
    const char16_t* blockStart;
    const char16_t* blockEnd;
    std::vector<IncludeForm> includes;
    const char16_t* classWord;
    ScopeKeyword scopeStart, scopeMiddle, scopeEnd;
    const char16_t* endProc[3];  // start, end, middle
    const char16_t* proc[3];
    const char16_t* var[3];
    // Declaration depth for implementation files and for every other file type.
    int16_t declareLevelImplementation, declareLevelOther;
};

const std::vector<Vocabulary>& Vocabularies() {
    static const std::vector<Vocabulary> table = {
        {LANGUAGE_C, u"//", u"/*", u"*/", u"\"", u"'", u"{", u"}",
         {{u"#include \"", u"\""}, {u"#include <", u">"}},
         u"class", {u"private", PRIVATE_SCOPE}, {u"protected", PROTECTED_SCOPE}, {u"public", PUBLIC_SCOPE},
         {u"", u"", u""}, {u"", u"", u""}, {u"", u"", u""}, 0, 1},
        {LANGUAGE_JAVA, u"//", u"/*", u"*/", u"\"", u"'", u"{", u"}",
         {{u"import ", u";"}},
         u"class", {u"private", PRIVATE_SCOPE}, {u"protected", PROTECTED_SCOPE}, {u"public", PUBLIC_SCOPE},
         {u"", u"", u""}, {u"", u"", u""}, {u"", u"", u""}, 1, 1},
        // Basic keeps the lower-case class word of C.
        {LANGUAGE_BASIC, u"'", u"", u"", u"\"", u"", u"", u"",
         {},
         u"class", {u"Private", PRIVATE_SCOPE}, {u"Friend", PROTECTED_SCOPE}, {u"Public", PUBLIC_SCOPE},
         {u"End Function", u"End Sub", u""}, {u"Function", u"Sub", u""}, {u"Dim", u"As", u""}, 0, 0},
    };
    return table;
}

void SetWords(RTriple& triple, const char16_t* const (&words)[3]) {
    triple.StartWord.word = words[0];
    triple.EndWord.word = words[1];
    triple.MiddleWord.word = words[2];
}

void SetScope(RWord& word, const ScopeKeyword& keyword) {
    word.word = keyword.word;
    word.Scope = keyword.scope;
}

}  // namespace

void SyntaxTable::MakeSyntax(ScanOutput& file, int16_t nLang) {
    Trap(kModule, "Sub MakeSyntax", [&] {
        AssignmentOps = u"=><";

        // Codes 0 and 256 are never set and stay false.
        for (int c = 1; c <= 255; ++c) SeparatorTable[c] = false;
        for (auto [from, to] : {std::pair{32, 47}, {58, 63}, {91, 96}, {123, 128}}) {
            for (int c = from; c <= to; ++c) SeparatorTable[c] = true;
        }
        SeparatorTable[u'_'] = false;  // the underscore joins words

        IncludeWords.clear();

        // Modern C++ reads the words of C; its passes are its own.
        const int16_t wordsOf = nLang == LANGUAGE_CPP ? int16_t{LANGUAGE_C} : nLang;
        for (const Vocabulary& v : Vocabularies()) {
            if (v.language != wordsOf) continue;
            OneLineComment = v.oneLineComment;
            MultiCommentStart = v.multiCommentStart;
            MultiCommentEnd = v.multiCommentEnd;
            StringDelim = v.stringDelim;
            CharDelim = v.charDelim;
            BlockStart = v.blockStart;
            BlockEnd = v.blockEnd;
            for (const IncludeForm& form : v.includes) {
                RTriple& triple = IncludeWords.emplace_back();
                triple.StartWord.word = form.open;
                triple.EndWord.word = form.close;
            }
            ClassWord = v.classWord;
            SetScope(ScopeWords.StartWord, v.scopeStart);
            SetScope(ScopeWords.MiddleWord, v.scopeMiddle);
            SetScope(ScopeWords.EndWord, v.scopeEnd);
            SetWords(EndProcWords, v.endProc);
            SetWords(ProcWords, v.proc);
            SetWords(VarWords, v.var);
            if (v.declareLevelImplementation == v.declareLevelOther) {
                DeclareLevel = v.declareLevelOther;
            } else {
                DeclareLevel = file.FileType() == FILETYPE_IMPLEMENTATION ? v.declareLevelImplementation
                                                                          : v.declareLevelOther;
            }
        }
    });
}

int32_t SyntaxTable::CheckOneWord(std::u16string_view line, std::u16string_view word, int32_t start) const {
    if (word.empty()) return 0;
    size_t from = start > 0 ? static_cast<size_t>(start - 1) : 0;
    if (from > line.size()) return 0;
    size_t at = FindText(line, word, from);
    if (at == std::u16string_view::npos) return 0;
    if (at > 0 && !IsSeparatorLow8(line[at - 1])) return 0;
    size_t after = at + word.size();
    if (after >= line.size()) return -1;
    return IsSeparatorLow8(line[after]) ? static_cast<int32_t>(at + 1) : 0;
}

}  // namespace kestrel
