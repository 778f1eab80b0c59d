#pragma once
// Texts as JSON string literals, for the commands' JSON Lines output.
#include <string>
#include <string_view>

namespace kestrel::cli {

// The text between double quotes, with the escapes JSON requires; a lone surrogate
// (which UTF-8 cannot carry) becomes U+FFFD.
std::string JsonString(std::u16string_view text);

}  // namespace kestrel::cli
