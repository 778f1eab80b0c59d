#pragma once
// The events a TreeView raises to its host. The arguments of the key and mouse
// events are references: what the host stores in them is what the caller sees
// afterwards. Every event has an empty default, so a host overrides only what it needs.
#include <cstdint>
#include <string>

namespace kestrel {

class TreeViewEvents {
public:
    virtual ~TreeViewEvents() = default;

    virtual void KeyDown(int16_t& /*keyCode*/, int16_t& /*shift*/) {}
    virtual void KeyPress(int16_t& /*keyAscii*/) {}
    virtual void KeyUp(int16_t& /*keyCode*/, int16_t& /*shift*/) {}
    virtual void MouseDown(int16_t& /*button*/, int16_t& /*shift*/, float& /*x*/, float& /*y*/) {}
    virtual void MouseMove(int16_t& /*button*/, int16_t& /*shift*/, float& /*x*/, float& /*y*/) {}
    virtual void MouseUp(int16_t& /*button*/, int16_t& /*shift*/, float& /*x*/, float& /*y*/) {}
    virtual void Click() {}
    virtual void DblClick() {}
    virtual void ToolTipChanged(const std::u16string& /*toolTipText*/) {}
};

}  // namespace kestrel
