#pragma once
// JSON for the commands' JSON Lines output: string literals, and one object a line.
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace kestrel::cli {

// The text between double quotes, with the escapes JSON requires; a lone surrogate
// (which UTF-8 cannot carry) becomes U+FFFD.
std::string JsonString(std::u16string_view text);

// One object, its fields in the order they are added, written as one line.
class JsonLine {
public:
    JsonLine& Text(std::string_view name, std::u16string_view value);
    JsonLine& Utf8(std::string_view name, std::string_view value);
    JsonLine& Number(std::string_view name, int64_t value);
    // Writes "{...}" and a line end.
    void WriteTo(std::ostream& out) const { out << '{' << fields_ << "}\n"; }

private:
    JsonLine& Raw(std::string_view name, std::string_view json);
    std::string fields_;
};

}  // namespace kestrel::cli
