#pragma once
// A host container without a window: it records what the control tells it.
#include <string>
#include <vector>

#include "control/platform/site.h"

namespace kestrel {

class MemorySite final : public ControlSite {
public:
    Font AmbientFont() const override { return ambientFont; }
    void PropertyChanged(std::string_view name) override { changedProperties.emplace_back(name); }
    std::intptr_t WindowHandle() const override { return windowHandle; }
    float ScaleWidth() const override { return width; }
    float ScaleHeight() const override { return height; }
    int16_t MousePointer() const override { return pointer; }
    void SetMousePointer(int16_t value) override {
        pointer = value;
        pointerHistory.push_back(value);
    }

    Font ambientFont;
    std::intptr_t windowHandle = 0;
    float width = 3600;
    float height = 4800;
    int16_t pointer = kPointerDefault;
    std::vector<std::string> changedProperties;
    std::vector<int16_t> pointerHistory;
};

}  // namespace kestrel
