#pragma once
// A font as the control keeps it in its property bag: a plain value, so that the
// control can hand the same font to both trees.
#include <string>

namespace kestrel {

struct Font {
    std::u16string name = u"MS Sans Serif";
    double size = 8.25;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;

    bool operator==(const Font&) const = default;
};

}  // namespace kestrel
