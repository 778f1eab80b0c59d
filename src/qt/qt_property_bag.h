#pragma once
// The control's six design-time properties kept by the host: either in a group of a
// QSettings file or in a QVariantMap the host saves as it likes. Booleans and numbers
// are stored as such; a font as its QFont description string.
#include <QSettings>
#include <QString>
#include <QVariantMap>

#include "control/platform/property_bag.h"

namespace kestrel::qt {

class QtPropertyBag final : public PropertyBag {
public:
    QtPropertyBag(QSettings& settings, QString group) : settings_(&settings), group_(std::move(group)) {}
    explicit QtPropertyBag(QVariantMap& map) : map_(&map) {}

    PropertyValue ReadProperty(std::string_view name, const PropertyValue& defaultValue) override;
    void WriteProperty(std::string_view name, const PropertyValue& value, const PropertyValue& defaultValue) override;

private:
    QString PathOf(std::string_view name) const;

    QSettings* settings_ = nullptr;
    QString group_;
    QVariantMap* map_ = nullptr;
};

}  // namespace kestrel::qt
