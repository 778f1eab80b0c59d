#pragma once
// The host's store of a control's design-time properties.
#include <cstdint>
#include <string_view>
#include <variant>

#include "control/platform/font.h"

namespace kestrel {

using PropertyValue = std::variant<bool, int32_t, Font>;

class PropertyBag {
public:
    virtual ~PropertyBag() = default;

    // The stored value, or the default when the name was never stored.
    virtual PropertyValue ReadProperty(std::string_view name, const PropertyValue& defaultValue) = 0;
    // A value equal to the default need not be stored.
    virtual void WriteProperty(std::string_view name, const PropertyValue& value,
                               const PropertyValue& defaultValue) = 0;
};

}  // namespace kestrel
