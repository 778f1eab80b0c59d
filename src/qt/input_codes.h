#pragma once
// Qt input translated into the codes the control's events carry: key codes are the
// classic virtual-key numbers (letters and digits as their capital ASCII codes, 13 Enter,
// 37-40 arrows ...), the shift state is a bit set (1 Shift, 2 Ctrl, 4 Alt) and mouse
// buttons are a bit set (1 left, 2 right, 4 middle).
#include <cstdint>

#include <Qt>

class QKeyEvent;

namespace kestrel::qt {

int16_t KeyCodeOf(const QKeyEvent& event);
// The character a key press types, or 0 when it types none (arrows, function keys).
int16_t KeyAsciiOf(const QKeyEvent& event);
int16_t ShiftOf(Qt::KeyboardModifiers modifiers);
int16_t ButtonsOf(Qt::MouseButtons buttons);

}  // namespace kestrel::qt
