#pragma once
// The names --language accepts, besides a language number. Every command reads them
// from this one table, and lists them from it when a name is not known.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/constants.h"

namespace kestrel::cli {

struct LanguageName {
    std::string_view name;
    int32_t language;  // a Languages value
};

inline constexpr std::array kLanguageNames{
    LanguageName{"c", LANGUAGE_C},          LanguageName{"cpp", LANGUAGE_CPP},  LanguageName{"c++", LANGUAGE_CPP},
    LanguageName{"java", LANGUAGE_JAVA},    LanguageName{"basic", LANGUAGE_BASIC}, LanguageName{"vb", LANGUAGE_BASIC},
};

inline std::optional<int32_t> LanguageOfName(std::string_view text) {
    for (const LanguageName& n : kLanguageNames)
        if (n.name == text) return n.language;
    return std::nullopt;
}

// "c, cpp, c++, java, basic, vb or a language number"
inline std::string AcceptedLanguages() {
    std::string names;
    for (const LanguageName& n : kLanguageNames) names.append(n.name).append(", ");
    names.resize(names.size() - 2);
    return names + " or a language number";
}

}  // namespace kestrel::cli
