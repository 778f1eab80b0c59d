#pragma once
// Conversions between the control's plain values and their Qt counterparts.
#include <QFont>
#include <QString>
#include <string>
#include <string_view>

#include "control/platform/font.h"

namespace kestrel::qt {

inline QString ToQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::u16string ToText(const QString& text) { return text.toStdU16String(); }

QFont ToQFont(const Font& font);
Font FromQFont(const QFont& font);

}  // namespace kestrel::qt
