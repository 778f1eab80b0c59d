#pragma once
// The languages and kinds of tag that kestrel's tags writer knows, under the names and
// letters tools written for Universal Ctags look for.
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel::cli {

struct TagKind {
    char letter;
    std::string_view name;
    std::string_view description;  // as --list-kinds shows it
};

struct TagLanguage {
    std::string_view name;  // as --list-languages shows it
    int32_t language;       // a Languages value
    TagKind classKind, functionKind, memberKind, variableKind;
};

inline constexpr TagLanguage kTagLanguages[] = {
    {"C++", 0, {'c', "class", "classes"}, {'f', "function", "function definitions"},
     {'m', "member", "class, struct, and union members"}, {'v', "variable", "variable definitions"}},
    {"Java", 1, {'c', "class", "classes"}, {'m', "method", "methods"}, {'f', "field", "fields"},
     {'f', "field", "fields"}},
    {"Basic", 2, {'c', "class", "classes"}, {'f', "function", "functions and subroutines"},
     {'v', "variable", "variables"}, {'v', "variable", "variables"}},
};

// A language by the name a tool passes (--languages, --language-force): letter case
// ignored, and C, C++ and cpp all meaning the C family.
const TagLanguage* TagLanguageNamed(std::string_view name);
const TagLanguage* TagLanguageOf(int32_t language);

}  // namespace kestrel::cli
