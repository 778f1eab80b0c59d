#include "qt/conversions.h"

namespace kestrel::qt {

QFont ToQFont(const Font& font) {
    QFont result(ToQString(font.name));
    if (font.size > 0) result.setPointSizeF(font.size);
    result.setBold(font.bold);
    result.setItalic(font.italic);
    result.setUnderline(font.underline);
    result.setStrikeOut(font.strikethrough);
    return result;
}

Font FromQFont(const QFont& font) {
    Font result;
    result.name = ToText(font.family());
    // A font sized in pixels has no point size; its pixel size at 96 dots per inch is the nearest.
    result.size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 72.0 / 96.0;
    result.bold = font.bold();
    result.italic = font.italic();
    result.underline = font.underline();
    result.strikethrough = font.strikeOut();
    return result;
}

}  // namespace kestrel::qt
