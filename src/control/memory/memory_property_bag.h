#pragma once
// A property bag held in a map; a value equal to its default is not kept, as a host
// would not write it into the form file.
#include <map>
#include <string>

#include "control/platform/property_bag.h"

namespace kestrel {

class MemoryPropertyBag final : public PropertyBag {
public:
    PropertyValue ReadProperty(std::string_view name, const PropertyValue& defaultValue) override;
    void WriteProperty(std::string_view name, const PropertyValue& value,
                       const PropertyValue& defaultValue) override;

    bool Contains(std::string_view name) const { return values_.count(std::string(name)) != 0; }
    const std::map<std::string, PropertyValue, std::less<>>& Values() const { return values_; }

private:
    std::map<std::string, PropertyValue, std::less<>> values_;
};

}  // namespace kestrel
