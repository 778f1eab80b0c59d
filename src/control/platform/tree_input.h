#pragma once
// What a tree reports about the user's input. The platform calls these on the
// user-interface thread; the control forwards them to its handlers with the tree's
// index. Arguments are references: the host may change them while the control raises
// its own events, and the platform may read them back afterwards.
#include <cstdint>

#include "control/platform/tree.h"

namespace kestrel {

class TreeInput {
public:
    virtual ~TreeInput() = default;

    // The user opened or closed a node (the tree has already changed its state).
    virtual void Expand(NodeId node) = 0;
    virtual void Collapse(NodeId node) = 0;
    virtual void Click() = 0;
    virtual void DblClick() = 0;
    virtual void KeyDown(int16_t& keyCode, int16_t& shift) = 0;
    virtual void KeyPress(int16_t& keyAscii) = 0;
    virtual void KeyUp(int16_t& keyCode, int16_t& shift) = 0;
    virtual void MouseDown(int16_t& button, int16_t& shift, float& x, float& y) = 0;
    virtual void MouseMove(int16_t& button, int16_t& shift, float& x, float& y) = 0;
    virtual void MouseUp(int16_t& button, int16_t& shift, float& x, float& y) = 0;
};

}  // namespace kestrel
