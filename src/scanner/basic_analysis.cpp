#include "scanner/basic_analysis.h"

#include "common/constants.h"
#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr size_t npos = std::u16string_view::npos;

// Index of the first character of `text` that is one of `stops`, or its length.
size_t UpTo(std::u16string_view text, std::u16string_view stops) {
    size_t at = text.find_first_of(stops);
    return at == npos ? text.size() : at;
}

}  // namespace

void BasicAnalysis::ProcessBasicDeclaration(RWord& wrd) {
    Trap(kModule, kDeclarationTitle, [&] {
        std::u16string_view text = wrd.word;
        if (text.empty()) return;
        // "Function" first, so a line holding both is a function.
        std::u16string_view keyword = syntax.ProcWords.StartWord.word;
        size_t at = text.find(keyword);
        if (at == npos) {
            keyword = syntax.ProcWords.EndWord.word;
            at = text.find(keyword);
            if (at == npos) return;
        }
        std::u16string_view rest = TrimmedView(text.substr(at + keyword.size()));
        std::u16string_view name = rest.substr(0, UpTo(rest, u" ("));
        output.WriteMember__(true, wrd.Class, name, wrd.Line, wrd.Scope, params.CollectParams(wrd));
    });
}

std::u16string_view BasicAnalysis::GetBasicScope(RWord& wrd) {
    std::u16string_view rest;
    Trap(kModule, "Function GetBasicScope", [&] {
        // Private, Friend, Public: the first word that occurs anywhere wins.
        for (const RWord* w : {&syntax.ScopeWords.StartWord, &syntax.ScopeWords.MiddleWord, &syntax.ScopeWords.EndWord}) {
            size_t at = wrd.word.find(w->word);
            if (at != npos) {
                rest = TrimmedView(wrd.word.substr(at + w->word.size()));
                wrd.Scope = w->Scope;
                return;
            }
        }
        rest = wrd.word;
        wrd.Scope = UNKNOWN_SCOPE;
    });
    return rest;
}

void BasicAnalysis::ProcessBasicVariable(RWord& wrd) {
    Trap(kModule, kVariableTitle, [&] {
        if (wrd.word.empty() || wrd.Scope != kResultVariable) return;
        std::u16string_view text = GetBasicScope(wrd);
        std::u16string_view name;
        const std::u16string_view dim = syntax.VarWords.StartWord.word;
        size_t at = text.find(dim);
        if (at != npos) {
            // The first word after Dim: only the first variable of a list.
            std::u16string_view rest = TrimmedView(text.substr(at + dim.size()));
            name = rest.substr(0, UpTo(rest, u" *("));
        } else {
            // The last word before As, without a fixed length or array bounds.
            at = text.find(syntax.VarWords.EndWord.word);
            if (at == npos) return;
            std::u16string_view before = TrimmedView(text.substr(0, at));
            before = before.substr(0, UpTo(before, u"*"));
            before = before.substr(0, UpTo(before, u"("));
            size_t blank = before.rfind(u' ');
            name = blank == npos ? before : before.substr(blank + 1);
        }
        static const std::u16string kNoTypeText;
        output.WriteMember__(false, wrd.Class, name, wrd.Line, wrd.Scope, kNoTypeText);
    });
}

}  // namespace kestrel
