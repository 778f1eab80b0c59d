#include "json_text.h"

#include <cstdio>

#include "common/text.h"

namespace kestrel::cli {

std::string JsonString(std::u16string_view text) {
    std::u16string valid(text);
    for (size_t i = 0; i < valid.size(); ++i) {
        const char16_t c = valid[i];
        const bool high = c >= 0xD800 && c <= 0xDBFF, low = c >= 0xDC00 && c <= 0xDFFF;
        if (high && i + 1 < valid.size() && valid[i + 1] >= 0xDC00 && valid[i + 1] <= 0xDFFF) {
            ++i;
        } else if (high || low) {
            valid[i] = 0xFFFD;
        }
    }
    std::string out = "\"";
    for (char c : ToUtf8(valid)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    out += '"';
    return out;
}

}  // namespace kestrel::cli

namespace kestrel::cli {

JsonLine& JsonLine::Raw(std::string_view name, std::string_view json) {
    if (!fields_.empty()) fields_ += ", ";
    fields_.append(JsonString(FromUtf8(name))).append(": ").append(json);
    return *this;
}

JsonLine& JsonLine::Text(std::string_view name, std::u16string_view value) { return Raw(name, JsonString(value)); }
JsonLine& JsonLine::Utf8(std::string_view name, std::string_view value) { return Raw(name, JsonString(FromUtf8(value))); }
JsonLine& JsonLine::Number(std::string_view name, int64_t value) { return Raw(name, std::to_string(value)); }

}  // namespace kestrel::cli
