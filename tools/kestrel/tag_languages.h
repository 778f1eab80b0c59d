#pragma once
// The languages and kinds of tag that kestrel's tags writer knows, under the names and
// letters tools written for Universal Ctags look for.
#include <cstdint>
#include <optional>
#include <string_view>

#include "common/constants.h"

namespace kestrel::cli {

struct TagKind {
    char letter;
    std::string_view name;
    std::string_view description;  // as --list-kinds shows it
};

struct TagLanguage {
    std::string_view name;  // as --list-languages shows it
    int32_t family;         // the Languages value whose extensions its files have
    int32_t language;       // the Languages value its files are scanned in
    TagKind classKind, functionKind, memberKind, variableKind;
};

inline constexpr TagLanguage kTagLanguages[] = {
    {"C++", LANGUAGE_C, LANGUAGE_CPP, {'c', "class", "classes"}, {'f', "function", "function definitions"},
     {'m', "member", "class, struct, and union members"}, {'v', "variable", "variable definitions"}},
    {"Java", LANGUAGE_JAVA, LANGUAGE_JAVA, {'c', "class", "classes"}, {'m', "method", "methods"}, {'f', "field", "fields"},
     {'f', "field", "fields"}},
    {"Basic", LANGUAGE_BASIC, LANGUAGE_BASIC, {'c', "class", "classes"}, {'f', "function", "functions and subroutines"},
     {'v', "variable", "variables"}, {'v', "variable", "variables"}},
};

// A language by the name a tool passes (--languages, --language-force): letter case
// ignored, and C, C++ and cpp all meaning the C family.
const TagLanguage* TagLanguageNamed(std::string_view name);
// The language whose files have the extensions of `family` (as the folder walk knows them).
const TagLanguage* TagLanguageOfFamily(int32_t family);

}  // namespace kestrel::cli
