#include "qt/qt_property_bag.h"

#include "qt/conversions.h"

namespace kestrel::qt {

namespace {

QVariant ToVariant(const PropertyValue& value) {
    if (const bool* b = std::get_if<bool>(&value)) return *b;
    if (const int32_t* n = std::get_if<int32_t>(&value)) return *n;
    return ToQFont(std::get<Font>(value)).toString();
}

// A stored value of the wrong kind reads as the default, so a damaged settings file
// never hands the control a font where it expects a number.
PropertyValue FromVariant(const QVariant& stored, const PropertyValue& defaultValue) {
    if (std::holds_alternative<bool>(defaultValue)) {
        if (stored.canConvert<bool>()) return stored.toBool();
    } else if (std::holds_alternative<int32_t>(defaultValue)) {
        bool ok = false;
        const int value = stored.toInt(&ok);
        if (ok) return static_cast<int32_t>(value);
    } else {
        // A font description is a list of family, size and style fields, never one word.
        const QString description = stored.toString();
        QFont font;
        if (stored.typeId() == QMetaType::QString && description.contains(QLatin1Char(',')) && font.fromString(description)) {
            return FromQFont(font);
        }
    }
    return defaultValue;
}

}  // namespace

QString QtPropertyBag::PathOf(std::string_view name) const {
    const QString key = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    return group_.isEmpty() ? key : group_ + QLatin1Char('/') + key;
}

PropertyValue QtPropertyBag::ReadProperty(std::string_view name, const PropertyValue& defaultValue) {
    const QString path = PathOf(name);
    const QVariant stored = settings_ ? settings_->value(path) : map_->value(path);
    return stored.isValid() ? FromVariant(stored, defaultValue) : defaultValue;
}

void QtPropertyBag::WriteProperty(std::string_view name, const PropertyValue& value, const PropertyValue& defaultValue) {
    const QString path = PathOf(name);
    // A value equal to its default is not stored, so a changed default reaches old hosts.
    if (value == defaultValue) {
        if (settings_) settings_->remove(path); else map_->remove(path);
        return;
    }
    if (settings_) settings_->setValue(path, ToVariant(value)); else map_->insert(path, ToVariant(value));
}

}  // namespace kestrel::qt
