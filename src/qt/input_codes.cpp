#include "qt/input_codes.h"

#include <QKeyEvent>
#include <initializer_list>
#include <utility>

namespace kestrel::qt {

namespace {

// Keys whose virtual-key number is not their ASCII code.
constexpr std::pair<int, int16_t> kKeyTable[] = {
    {Qt::Key_Backspace, 8},  {Qt::Key_Tab, 9},       {Qt::Key_Backtab, 9},   {Qt::Key_Clear, 12},
    {Qt::Key_Return, 13},    {Qt::Key_Enter, 13},    {Qt::Key_Shift, 16},    {Qt::Key_Control, 17},
    {Qt::Key_Alt, 18},       {Qt::Key_Pause, 19},    {Qt::Key_CapsLock, 20}, {Qt::Key_Escape, 27},
    {Qt::Key_Space, 32},     {Qt::Key_PageUp, 33},   {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},
    {Qt::Key_Home, 36},      {Qt::Key_Left, 37},     {Qt::Key_Up, 38},       {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},      {Qt::Key_Print, 44},    {Qt::Key_Insert, 45},   {Qt::Key_Delete, 46},
    {Qt::Key_Help, 47},      {Qt::Key_Meta, 91},     {Qt::Key_Menu, 93},     {Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, 145}, {Qt::Key_Semicolon, 186}, {Qt::Key_Equal, 187}, {Qt::Key_Comma, 188},
    {Qt::Key_Minus, 189},    {Qt::Key_Period, 190},  {Qt::Key_Slash, 191},   {Qt::Key_QuoteLeft, 192},
    {Qt::Key_BracketLeft, 219}, {Qt::Key_Backslash, 220}, {Qt::Key_BracketRight, 221},
    {Qt::Key_Apostrophe, 222},
};

}  // namespace

int16_t KeyCodeOf(const QKeyEvent& event) {
    const int key = event.key();
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
        // The keypad's digits have their own numbers.
        if ((event.modifiers() & Qt::KeypadModifier) && key <= Qt::Key_9) return static_cast<int16_t>(96 + key - Qt::Key_0);
        return static_cast<int16_t>(key);
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return static_cast<int16_t>(112 + key - Qt::Key_F1);
    for (const auto& [qtKey, code] : kKeyTable) {
        if (qtKey == key) return code;
    }
    return 0;
}

int16_t KeyAsciiOf(const QKeyEvent& event) {
    const QString text = event.text();
    if (text.isEmpty()) return 0;
    return static_cast<int16_t>(text.at(0).unicode());
}

namespace {

// Qt's flags as the events' bit sets: each flag that is set adds its bit.
template <class Flags, class Flag>
int16_t BitsOf(Flags flags, std::initializer_list<std::pair<Flag, int16_t>> bits) {
    int16_t result = 0;
    for (const auto& [flag, bit] : bits) {
        if (flags & flag) result = static_cast<int16_t>(result | bit);
    }
    return result;
}

}  // namespace

int16_t ShiftOf(Qt::KeyboardModifiers modifiers) {
    return BitsOf(modifiers, {std::pair{Qt::ShiftModifier, int16_t{1}}, {Qt::ControlModifier, int16_t{2}},
                              {Qt::AltModifier, int16_t{4}}});
}

int16_t ButtonsOf(Qt::MouseButtons buttons) {
    return BitsOf(buttons, {std::pair{Qt::LeftButton, int16_t{1}}, {Qt::RightButton, int16_t{2}},
                            {Qt::MiddleButton, int16_t{4}}});
}

}  // namespace kestrel::qt
