#include "control/memory/memory_property_bag.h"

namespace kestrel {

PropertyValue MemoryPropertyBag::ReadProperty(std::string_view name, const PropertyValue& defaultValue) {
    auto it = values_.find(name);
    // A stored value of another kind than the default is as good as missing.
    if (it == values_.end() || it->second.index() != defaultValue.index()) return defaultValue;
    return it->second;
}

void MemoryPropertyBag::WriteProperty(std::string_view name, const PropertyValue& value,
                                      const PropertyValue& defaultValue) {
    auto it = values_.find(name);
    if (value == defaultValue) {
        if (it != values_.end()) values_.erase(it);
        return;
    }
    if (it != values_.end())
        it->second = value;
    else
        values_.emplace(std::string(name), value);
}

}  // namespace kestrel
