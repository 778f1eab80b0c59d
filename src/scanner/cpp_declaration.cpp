#include "scanner/cpp_declaration.h"

#include <algorithm>
#include <array>

#include "common/text.h"

namespace kestrel {

namespace {

constexpr size_t npos = std::u16string_view::npos;

// Words that start a statement or a declaration of something other than a function
// or variable.
constexpr std::array<std::u16string_view, 33> kNotDeclarationStarts{
    u"typedef", u"using",  u"static_assert", u"namespace", u"return",   u"else",      u"case",
    u"default", u"goto",   u"throw",         u"delete",    u"new",      u"do",        u"co_return",
    u"co_yield", u"co_await", u"break",      u"continue",  u"if",       u"while",     u"for",
    u"switch",  u"try",    u"catch",         u"public",    u"private",  u"protected", u"template",
    u"enum",    u"concept", u"asm",          u"__asm__",   u"requires"};

// Words that stand before a parenthesis without naming a function.
constexpr std::array<std::u16string_view, 27> kNotFunctionNames{
    u"if",          u"while",           u"for",         u"switch",       u"return",     u"sizeof",
    u"decltype",    u"alignof",         u"typeid",      u"static_cast",  u"dynamic_cast", u"const_cast",
    u"reinterpret_cast", u"new",        u"delete",      u"catch",        u"throw",      u"noexcept",
    u"alignas",     u"static_assert",   u"__attribute__", u"__declspec", u"defined",    u"co_await",
    u"requires",    u"explicit",        u"_Pragma"};

// Words that never name a variable.
constexpr std::array<std::u16string_view, 20> kNotVariableNames{
    u"const",    u"volatile", u"mutable", u"static", u"inline",   u"virtual",  u"explicit",
    u"constexpr", u"override", u"final",  u"noexcept", u"int",    u"char",     u"bool",
    u"void",     u"long",     u"short",   u"unsigned", u"signed", u"auto"};

template <size_t N>
bool IsOneOf(std::u16string_view word, const std::array<std::u16string_view, N>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

size_t SkipBlanks(std::u16string_view s, size_t k) {
    while (k < s.size() && s[k] == u' ') ++k;
    return k;
}

// Just past the bracket that closes the one at `open`; the end of the text when none does.
size_t SkipBalanced(std::u16string_view s, size_t open) {
    const char16_t opening = s[open];
    const char16_t closing = opening == u'(' ? u')' : opening == u'[' ? u']' : opening == u'{' ? u'}' : u'>';
    int depth = 0;
    for (size_t k = open; k < s.size(); ++k) {
        const char16_t c = s[k];
        if (c == opening) ++depth;
        else if (c == closing && --depth == 0) return k + 1;
        else if (opening == u'<' && (c == u'(' || c == u'[')) k = SkipBalanced(s, k) - 1;
    }
    return s.size();
}

// Where the angle bracket that closes at `close` opens, walking back; npos when none does.
size_t AngleOpening(std::u16string_view s, size_t close) {
    int depth = 0;
    for (size_t k = close + 1; k-- > 0;) {
        if (s[k] == u'>') ++depth;
        else if (s[k] == u'<' && --depth == 0) return k;
    }
    return npos;
}

std::u16string_view WordAt(std::u16string_view s, size_t k) {
    size_t end = k;
    while (end < s.size() && IsCppWordUnit(s[end])) ++end;
    return s.substr(k, end - k);
}

// Past an attribute at k ([[...]], alignas(...), __declspec(...), __attribute__((...))),
// or k itself when none starts there.
size_t SkipAttribute(std::u16string_view s, size_t k) {
    // Every attribute starts with one of these three units; most words do not.
    if (k >= s.size() || (s[k] != u'[' && s[k] != u'a' && s[k] != u'_')) return k;
    if (s.substr(k, 2) == u"[[") {
        const size_t end = s.find(u"]]", k + 2);
        return end == npos ? s.size() : end + 2;
    }
    const std::u16string_view word = WordAt(s, k);
    if (word == u"alignas" || word == u"__declspec" || word == u"__attribute__") {
        const size_t paren = SkipBlanks(s, k + word.size());
        if (paren < s.size() && s[paren] == u'(') return SkipBalanced(s, paren);
    }
    return k;
}

// Past the constraint of a requires clause that starts at k: terms in parentheses or
// names with template arguments, joined by && and ||.
size_t SkipConstraint(std::u16string_view s, size_t k) {
    for (;;) {
        k = SkipBlanks(s, k);
        while (k < s.size() && s[k] == u'!') k = SkipBlanks(s, k + 1);
        if (k < s.size() && s[k] == u'(') {
            k = SkipBalanced(s, k);
        } else {
            for (;;) {
                k += WordAt(s, k).size();
                if (k < s.size() && s[k] == u'<') k = SkipBalanced(s, k);
                if (s.substr(k, 2) != u"::") break;
                k += 2;
            }
        }
        const size_t next = SkipBlanks(s, k);
        if (s.substr(next, 2) != u"&&" && s.substr(next, 2) != u"||") return k;
        k = next + 2;
    }
}

// The first non-blank unit before k, or 0 when there is none.
char16_t UnitBefore(std::u16string_view s, size_t k) {
    while (k > 0 && s[k - 1] == u' ') --k;
    return k > 0 ? s[k - 1] : 0;
}

// A name written back from `end` (exclusive): "~"? word, with template arguments
// after it skipped. Sets `start`; returns the name without its template arguments.
std::u16string_view NameBefore(std::u16string_view s, size_t end, size_t& start) {
    size_t e = end;
    while (e > 0 && s[e - 1] == u' ') --e;
    if (e > 0 && s[e - 1] == u'>') {
        const size_t open = AngleOpening(s, e - 1);
        if (open == npos) {
            start = e;
            return {};
        }
        e = open;
        while (e > 0 && s[e - 1] == u' ') --e;
    }
    size_t b = e;
    while (b > 0 && IsCppWordUnit(s[b - 1])) --b;
    if (b > 0 && s[b - 1] == u'~') --b;
    start = b;
    return s.substr(b, e - b);
}

// Walks the "A::B::" qualifiers written before `start` back; returns the last one
// (B) and moves `start` before them all.
std::u16string_view QualifierBefore(std::u16string_view s, size_t& start) {
    std::u16string_view last;
    while (start >= 2 && s[start - 1] == u':' && s[start - 2] == u':') {
        size_t b;
        const std::u16string_view part = NameBefore(s, start - 2, b);
        if (last.empty()) last = part;
        start = b;
        if (part.empty()) break;  // ::f, the global qualifier
    }
    return last;
}

// What may stand before a declared name: words, blanks, pointers, references and
// template arguments. Anything else shows an expression or a statement.
bool LooksLikeType(std::u16string_view prefix) {
    for (size_t k = 0; k < prefix.size(); ++k) {
        const char16_t c = prefix[k];
        if (IsCppWordUnit(c)) continue;
        if (prefix.substr(k, 3) == u"...") {  // a pack in template arguments
            k += 2;
            continue;
        }
        switch (c) {
            case u' ': case u'*': case u'&': case u':': case u'<': case u'>': case u',': case u'[': case u']':
            case u'(': case u')':
                continue;
            default:
                return false;
        }
    }
    return true;
}

bool ReadVariable(std::u16string_view s, size_t b, size_t end, CppDeclaration& out);

// Reads the function whose parameters open at `paren`. A macro call that stands where a
// return type would sets `retry` to where the declaration it decorates may start.
bool ReadFunction(std::u16string_view s, size_t b, size_t paren, std::u16string_view owner, CppDeclaration& out,
                  size_t& retry) {
    // void (*handler)(int): a pointer to a function is a variable.
    size_t k = SkipBlanks(s, paren + 1);
    if (k < s.size() && (s[k] == u'*' || s[k] == u'&' || s[k] == u'^')) {
        const size_t at = SkipBlanks(s, k + 1);
        const std::u16string_view word = WordAt(s, at);
        const size_t close = SkipBlanks(s, at + word.size());
        if (word.empty() || close >= s.size() || s[close] != u')') return false;
        out = {};
        out.name = word;
        out.nameAt = at;
        out.text = TrimmedView(s.substr(b, paren - b));
        return !out.text.empty();
    }
    size_t start;
    const std::u16string_view name = NameBefore(s, paren, start);
    if (name.empty() || name == u"~" || IsOneOf(name, kNotFunctionNames)) return false;
    size_t prefixEnd = start;
    const std::u16string_view qualifier = QualifierBefore(s, prefixEnd);
    const std::u16string_view prefix = TrimmedView(s.substr(b, prefixEnd - b));
    if (!LooksLikeType(prefix)) return false;
    // T value MACRO(init): a macro after a declared name, which it initialises. A type
    // and a name stand before it, not only a type (void DFS(), constexpr EVT()).
    if (qualifier.empty() && IsCppMacroName(name) && name != owner && !prefix.empty() && IsCppWordUnit(prefix.back()) &&
        prefix.find(u' ') != npos) {
        return ReadVariable(s, b, start, out);
    }
    const size_t close = SkipBalanced(s, paren);
    if (prefix.empty()) {
        // Nothing before the name: a constructor or destructor, a member defined out
        // of its class whose return type stood alone on a line that read as a macro
        // (HRESULT), or else a macro call, which may decorate the declaration that
        // follows it.
        const std::u16string_view cls = qualifier.empty() ? owner : qualifier;
        const bool structor = name[0] == u'~' || (!cls.empty() && name == cls);
        if (!structor && (qualifier.empty() || IsCppMacroName(name))) {
            if (IsCppMacroName(name) && close < s.size()) retry = close;
            return false;
        }
    }
    out = {};
    out.isFunction = true;
    out.qualifier = qualifier;
    out.name = name;
    out.nameAt = start;
    out.text = s.substr(paren, close - paren);
    return true;
}

// operator at `at`: the name runs to the parenthesis that opens the parameters
// ("()" is a name of its own).
bool ReadOperator(std::u16string_view s, size_t b, size_t at, CppDeclaration& out) {
    size_t k = SkipBlanks(s, at + 8);
    size_t symbolEnd;
    if (k < s.size() && s[k] == u'(') {
        symbolEnd = s.find(u')', k);
        if (symbolEnd == npos) return false;
        ++symbolEnd;
    } else if (k < s.size() && IsCppWordUnit(s[k])) {
        // A conversion to a type, whose template arguments may hold parentheses.
        for (symbolEnd = k; symbolEnd < s.size() && s[symbolEnd] != u'(';) {
            symbolEnd = s[symbolEnd] == u'<' ? SkipBalanced(s, symbolEnd) : symbolEnd + 1;
        }
    } else {
        symbolEnd = s.find(u'(', k);
    }
    const size_t paren = s.find(u'(', symbolEnd);
    if (paren == npos) return false;
    size_t start = at;
    const std::u16string_view qualifier = QualifierBefore(s, start);
    if (!LooksLikeType(s.substr(b, start - b))) return false;
    const size_t close = SkipBalanced(s, paren);
    out = {};
    out.isFunction = true;
    out.qualifier = qualifier;
    out.name = s.substr(at, symbolEnd - at);
    out.operatorName.assign(u"operator ").append(TrimmedView(s.substr(k, symbolEnd - k)));
    out.nameAt = at;
    out.text = s.substr(paren, close - paren);
    return true;
}

bool ReadVariable(std::u16string_view s, size_t b, size_t end, CppDeclaration& out) {
    size_t start;
    const std::u16string_view name = NameBefore(s, end, start);
    if (name.empty() || name[0] == u'~' || (name[0] >= u'0' && name[0] <= u'9') || IsOneOf(name, kNotVariableNames))
        return false;
    size_t typeEnd = start;
    const std::u16string_view qualifier = QualifierBefore(s, typeEnd);
    const std::u16string_view type = TrimmedView(s.substr(b, typeEnd - b));
    if (type.empty() || !LooksLikeType(type)) return false;
    out = {};
    out.qualifier = qualifier;
    out.name = name;
    out.nameAt = start;
    out.text = type;
    return true;
}

bool ReadFrom(std::u16string_view s, size_t b, std::u16string_view owner, CppDeclaration& out, size_t& retry) {
    b = s.size() - SkipCppPrefixes(s.substr(b)).size();
    for (;;) {
        const std::u16string_view word = WordAt(s, b);
        if (IsOneOf(word, kNotDeclarationStarts)) return false;
        if (word == u"friend" || word == u"extern") {
            b = SkipBlanks(s, b + word.size());
            if (s.substr(b, 2) == u"\"\"") b = SkipBlanks(s, b + 2);  // extern "C" int f();
            b = s.size() - SkipCppPrefixes(s.substr(b)).size();
            continue;
        }
        if (word == u"class" || word == u"struct" || word == u"union") {
            if (s.find(u'(', b) == npos) return false;  // a forward declaration
        }
        break;
    }
    int angles = 0;
    for (size_t k = b; k < s.size();) {
        const char16_t c = s[k];
        if (IsCppWordUnit(c)) {
            const std::u16string_view word = WordAt(s, k);
            if (word == u"operator" && angles == 0) return ReadOperator(s, b, k, out);
            k += word.size();
            continue;
        }
        switch (c) {
            case u'<':
                if (angles > 0 || IsCppWordUnit(UnitBefore(s, k))) ++angles;
                break;
            case u'>':
                if (angles > 0) --angles;
                break;
            case u'(':
                if (angles == 0) return ReadFunction(s, b, k, owner, out, retry);
                k = SkipBalanced(s, k);
                continue;
            case u'[':
                if (s.substr(k, 2) == u"[[") {
                    k = SkipAttribute(s, k);
                    continue;
                }
                if (angles == 0) return ReadVariable(s, b, k, out);
                break;
            case u'=':
            case u'{':
            case u',':
            case u';':
                if (angles == 0) return ReadVariable(s, b, k, out);
                break;
            case u':':
                if (angles == 0 && s.substr(k, 2) != u"::" && UnitBefore(s, k) != u':') return ReadVariable(s, b, k, out);
                if (s.substr(k, 2) == u"::") ++k;
                break;
            default:
                break;
        }
        ++k;
    }
    return ReadVariable(s, b, s.size(), out);
}

}  // namespace

bool IsCppMacroName(std::u16string_view word) {
    return word.size() >= 2 && std::none_of(word.begin(), word.end(), [](char16_t c) { return c >= u'a' && c <= u'z'; }) &&
           std::any_of(word.begin(), word.end(), [](char16_t c) { return c >= u'A' && c <= u'Z'; });
}

std::u16string_view FirstCppWord(std::u16string_view text) { return WordAt(text, SkipBlanks(text, 0)); }

std::u16string_view SkipCppPrefixes(std::u16string_view s) {
    size_t k = 0;
    for (;;) {
        k = SkipBlanks(s, k);
        const std::u16string_view word = k < s.size() && (s[k] == u't' || s[k] == u'r') ? WordAt(s, k) : std::u16string_view();
        if (word == u"template") {
            const size_t angle = SkipBlanks(s, k + 8);
            if (angle < s.size() && s[angle] == u'<') {
                k = SkipBalanced(s, angle);
                continue;
            }
            return s.substr(k);
        }
        if (word == u"requires") {
            k = SkipConstraint(s, k + 8);
            continue;
        }
        const size_t past = SkipAttribute(s, k);
        if (past == k) return s.substr(k);
        k = past;
    }
}

bool ReadCppDeclaration(std::u16string_view statement, std::u16string_view owner, CppDeclaration& out) {
    for (size_t from = 0;;) {
        size_t retry = std::u16string_view::npos;
        if (ReadFrom(statement, from, owner, out, retry)) return true;
        if (retry == std::u16string_view::npos) return false;
        from = retry;
    }
}

bool ReadNextCppVariable(std::u16string_view s, CppDeclaration& d) {
    if (d.isFunction) return false;
    // The comma that ends d's declarator, brackets and template arguments passed over.
    size_t k = d.nameAt + d.name.size();
    int depth = 0;
    for (; k < s.size(); ++k) {
        const char16_t c = s[k];
        if (c == u'(' || c == u'[' || c == u'{' || c == u'<') ++depth;
        else if ((c == u')' || c == u']' || c == u'}' || c == u'>') && depth > 0) --depth;
        else if (c == u',' && depth == 0) break;
    }
    if (k >= s.size()) return false;
    size_t at = k + 1;
    while (at < s.size() && (s[at] == u' ' || s[at] == u'*' || s[at] == u'&')) ++at;
    const std::u16string_view name = WordAt(s, at);
    if (name.empty() || (name[0] >= u'0' && name[0] <= u'9')) return false;
    d.name = name;
    d.nameAt = at;
    return true;
}

CppClassHead ReadCppClassHead(std::u16string_view statement) {
    std::u16string_view s = SkipCppPrefixes(statement);
    std::u16string_view kind = FirstCppWord(s);
    if (kind == u"typedef") {
        s = s.substr(SkipBlanks(s, 0) + kind.size());
        kind = FirstCppWord(s);
    }
    if (kind != u"class" && kind != u"struct" && kind != u"union") return {};
    size_t k = SkipBlanks(s, 0) + kind.size();
    for (;;) {
        k = SkipBlanks(s, k);
        for (size_t past; (past = SkipAttribute(s, k)) != k;) k = SkipBlanks(s, past);
        // A qualified name, A::B<T>; its last part names the class.
        std::u16string_view name;
        while (k < s.size()) {
            name = WordAt(s, k);
            k = SkipBlanks(s, k + name.size());
            if (k < s.size() && s[k] == u'<') k = SkipBlanks(s, SkipBalanced(s, k));
            if (s.substr(k, 2) != u"::") break;
            k = SkipBlanks(s, k + 2);
        }
        for (size_t past; (past = SkipAttribute(s, k)) != k;) k = SkipBlanks(s, past);
        if (const std::u16string_view word = WordAt(s, k); word == u"final" || word == u"sealed") {
            k = SkipBlanks(s, k + word.size());
        }
        if (k >= s.size() || (s[k] == u':' && s.substr(k, 2) != u"::")) return {kind, name};
        if (name.empty()) return {};
        // The word read was an export macro; the name follows (after the macro's
        // arguments, if it has any).
        if (s[k] == u'(' && IsCppMacroName(name)) {
            k = SkipBalanced(s, k);
            continue;
        }
        if (!IsCppWordUnit(s[k])) return {};
    }
}

}  // namespace kestrel
