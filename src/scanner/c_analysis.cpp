#include "scanner/c_analysis.h"

#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr size_t npos = std::u16string_view::npos;

constexpr std::u16string_view kOperator = u"operator";
constexpr std::u16string_view kQualifier = u"::";
const UnitSet kOperatorUnits = UnitSet::Of(kOperator);
const UnitSet kQualifierUnits = UnitSet::Of(kQualifier);

bool IsNameBreak(char16_t c) {
    return c == u' ' || c == u'&' || c == u'*';
}

bool IsDestructorOf(std::u16string_view name, std::u16string_view className) {
    return !name.empty() && name[0] == u'~' && SameText(name.substr(1), className);
}

}  // namespace

void CAnalysis::ProcessDeclaration(RWord& wrd, const UnitSet& units) {
    Trap(kModule, kDeclarationTitle, [&] {
        std::u16string_view text = wrd.word;
        if (!text.empty() && text[0] == u'#') return;  // preprocessor lines
        if (text.substr(0, 7) == u"typedef") return;
        size_t p = FindUnit(text, u'(');
        if (p == npos) {
            ProcessCVariable(wrd);
            return;
        }
        // Only what comes before the first parenthesis counts; "operator" holds none,
        // so any of it that starts there also ends there.
        const std::u16string_view beforeParen = text.substr(0, p);
        const bool isOperator = units.MayHold(kOperatorUnits) && FindText(beforeParen, kOperator) != npos;
        if (FindUnit(beforeParen, u'=') != npos && !isOperator) {
            ProcessCVariable(wrd);  // an initialiser that calls something
            return;
        }

        std::u16string_view head = TrimmedView(text.substr(0, p));
        int32_t sep = -1;  // 1-based position of the name break before the name
        std::u16string_view className = wrd.Class;
        size_t c = units.MayHold(kQualifierUnits) ? FindText(head, kQualifier) : npos;
        if (c != npos) {
            // The qualifier written in the text wins over the enclosing class.
            size_t i = c;
            while (i > 0 && !IsNameBreak(head[i - 1])) --i;
            if (i > 0) sep = static_cast<int32_t>(i);
            className = head.substr(i, c - i);
            head = TrimmedView(head.substr(c + 2));
        }
        if (head.empty()) return;

        size_t blank = FindLastUnit(head, u' ');
        if (blank != npos) head = TrimmedView(head.substr(blank + 1));
        if (head.empty()) return;

        std::u16string_view member = head;
        std::u16string operatorName;
        if (isOperator) {
            size_t at = FindText(head, kOperator);
            if (at != npos) head.remove_prefix(at + 8);
            member = operatorName.assign(u"operator ").append(head);
        }

        if (sep < 1 && !isOperator) {
            size_t n = FindText(wrd.word, head);
            for (size_t k = 0; n != npos && k <= n && k < wrd.word.size(); ++k) {
                if (IsNameBreak(wrd.word[k])) {
                    sep = static_cast<int32_t>(k + 1);
                    break;
                }
            }
        }
        // Nothing before the name: only a constructor or destructor is a declaration
        // (this rejects calls such as foo(1); and macro lines).
        if (sep == -1 && !isOperator && !SameText(head, className) && !IsDestructorOf(head, className)) return;

        output.WriteMember__(true, className, member, wrd.Line, wrd.Scope, params.CollectParams(wrd));
    });
}

void CAnalysis::ProcessCVariable(RWord& wrd) {
    Trap(kModule, kVariableTitle, [&] {
        std::u16string_view& word = wrd.word;
        if (word.empty() || word[0] == u'#') return;

        size_t semicolon = FindUnit(word, u';');
        if (semicolon != npos) {
            word = word.substr(0, semicolon);
        } else {
            // Without a semicolon only an initialiser continued in a block is taken
            // (int a[] = followed by a brace).
            size_t last = word.find_last_not_of(u' ');
            if (last == npos || word[last] != u'=') return;
        }

        // Cutting after the first ":" and trimming, again and again, leaves the
        // trimmed text after the last one: access labels and every qualifier go.
        size_t colon = FindLastUnit(word, u':');
        if (colon != npos) word = TrimmedView(word.substr(colon + 1));

        size_t bracket = FindUnit(word, u'[');
        if (bracket != npos) word = word.substr(0, bracket);

        size_t paren = FindUnit(word, u'(');
        if (paren == npos) {
            if (FindUnit(word, u',') != npos) return;  // several variables: skipped whole
        } else {
            size_t eq = FindUnit(word, u'=');
            if (eq == npos || eq > paren) return;
        }

        size_t eq = FindUnit(word, u'=');
        std::u16string_view decl = TrimmedView(word.substr(0, eq));

        size_t k = decl.size();
        while (k > 0) {
            char16_t ch = decl[k - 1];
            if (ch == u' ' || ch == u'*') break;
            if (ch == u',') return;
            --k;
        }
        if (k == 0) return;  // a single word

        std::u16string_view name = decl.substr(k);
        // Reused from one variable to the next on this thread.
        thread_local std::u16string typeText;
        typeText.assign(CollectCVarParams(wrd, name));
        // The last character of the full name: of "::" when the name is empty.
        if (syntax.IsSeparator(name.empty() ? u':' : name.back())) return;
        output.WriteMember__(false, wrd.Class, name, wrd.Line, wrd.Scope, typeText);
    });
}

std::u16string_view CollectCVarParams(const RWord& wrd, std::u16string_view name) {
    std::u16string_view typeText;
    Trap(kModule, "Function CollectCVarParams", [&] {
        size_t at = FindLastText(wrd.word, name);
        if (at != npos && at >= 2) typeText = TrimmedView(wrd.word.substr(0, at));
    });
    return typeText;
}

int32_t AssignmentOffset(std::u16string_view line) {
    for (char16_t sign : {u'=', u'>', u'<', u'#'}) {
        size_t at = line.find(sign);
        if (at != npos) return static_cast<int32_t>(at + 1);
    }
    return -1;
}

}  // namespace kestrel
