#pragma once
// The host container around the control, and the screen it draws on.
#include <cstdint>
#include <string_view>

#include "control/platform/font.h"

namespace kestrel {

// Screen mouse pointers the control uses.
inline constexpr int16_t kPointerDefault = 0;
inline constexpr int16_t kPointerHourglass = 11;

class ControlSite {
public:
    virtual ~ControlSite() = default;

    virtual Font AmbientFont() const = 0;
    // Tells the host that a persisted property changed, so it saves the bag again.
    virtual void PropertyChanged(std::string_view name) = 0;
    // The control's own window handle (0 when it has none).
    virtual std::intptr_t WindowHandle() const = 0;
    // The control's inner size, in the units of PlatformTree::Move.
    virtual float ScaleWidth() const = 0;
    virtual float ScaleHeight() const = 0;

    virtual int16_t MousePointer() const = 0;
    virtual void SetMousePointer(int16_t pointer) = 0;
};

}  // namespace kestrel
