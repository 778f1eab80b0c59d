#pragma once
// Reads one C++ statement (the text of a declaration joined from its lines, without
// its closing ";" or "{") as a function or variable declaration. Grammar-free: it looks
// for the name before the first parenthesis at bracket depth 0 and at what stands
// around it, and rejects what reads as a statement, a call or a macro invocation.
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel {

struct CppDeclaration {
    bool isFunction = false;
    // The class written in front of the name (A in A::f, B in A::B::f, its template
    // arguments dropped); empty when the name is not qualified.
    std::u16string_view qualifier;
    std::u16string_view name;     // as written; "~X" for a destructor
    std::u16string operatorName;  // "operator ==", "operator bool", when the name is one
    size_t nameAt = 0;            // where the name starts in the statement
    // Functions: the parameter list with its parentheses. Variables: the type before the name.
    std::u16string_view text;

    std::u16string_view Member() const { return operatorName.empty() ? name : std::u16string_view(operatorName); }
};

// A function the block pass has read goes on in the result list already read: its
// class in Class, its member name and parameter text in word joined by a tab, which no
// cleaned line holds, and Bag set to kReadFunction. The second pass writes it as it is.
inline constexpr char16_t kReadSeparator = u'\t';
inline constexpr int16_t kReadFunction = 1;

// `owner` is the class whose body holds the statement ("" outside classes); it tells a
// constructor from a macro call. False when the statement declares nothing.
bool ReadCppDeclaration(std::u16string_view statement, std::u16string_view owner, CppDeclaration& out);

// After the variable `d` read from `statement`, the next declarator of the same
// statement (b and c in int a, *b = 2, c[4];), with d's type. False when there is none.
bool ReadNextCppVariable(std::u16string_view statement, CppDeclaration& d);

// The class head's kind: "class", "struct" or "union" when the statement opens a class
// body (after template prefixes, attributes and typedef), with its name (export macros,
// attributes and "final" skipped; the last part of A::B). Empty kind otherwise.
struct CppClassHead {
    std::u16string_view kind;
    std::u16string_view name;
};
CppClassHead ReadCppClassHead(std::u16string_view statement);

// The statement without leading blanks, template prefixes and attributes.
std::u16string_view SkipCppPrefixes(std::u16string_view statement);

// A name written as macros are: two units or more, capitals and no lower-case letter
// (LIB_EXPORT, Q_OBJECT).
bool IsCppMacroName(std::u16string_view word);

// The first word of a text (letters, digits, "_").
std::u16string_view FirstCppWord(std::u16string_view text);

// The ASCII units of a name: letters, digits and "_".
inline constexpr std::array<bool, 128> kCppWordUnits = [] {
    std::array<bool, 128> table{};
    for (char c = 'a'; c <= 'z'; ++c) table[static_cast<size_t>(c)] = true;
    for (char c = 'A'; c <= 'Z'; ++c) table[static_cast<size_t>(c)] = true;
    for (char c = '0'; c <= '9'; ++c) table[static_cast<size_t>(c)] = true;
    table['_'] = true;
    return table;
}();

// True for a letter, digit, "_" or any unit beyond ASCII.
inline bool IsCppWordUnit(char16_t c) { return c >= 128 || kCppWordUnits[c]; }

}  // namespace kestrel
