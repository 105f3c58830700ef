// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyCodes.h"

#include <algorithm>
#include <iterator>
#include <linux/input-event-codes.h>

namespace tovek {

namespace {

struct KeyPosition
{
    int keyCode;
    int evdev; ///< as the kernel names it
};

// Matched by where the key is on the keyboard, never by what it types. Where a hardware code has
// two keys, the first row is the one that most keyboards have.
// clang-format off
constexpr KeyPosition positions[] = {
    // The letters, digits and signs.
    {0, KEY_A}, {1, KEY_S}, {2, KEY_D}, {3, KEY_F}, {4, KEY_H}, {5, KEY_G}, {6, KEY_Z},
    {7, KEY_X}, {8, KEY_C}, {9, KEY_V}, {10, KEY_102ND}, {11, KEY_B}, {12, KEY_Q}, {13, KEY_W},
    {14, KEY_E}, {15, KEY_R}, {16, KEY_Y}, {17, KEY_T}, {18, KEY_1}, {19, KEY_2}, {20, KEY_3},
    {21, KEY_4}, {22, KEY_6}, {23, KEY_5}, {24, KEY_EQUAL}, {25, KEY_9}, {26, KEY_7},
    {27, KEY_MINUS}, {28, KEY_8}, {29, KEY_0}, {30, KEY_RIGHTBRACE}, {31, KEY_O}, {32, KEY_U},
    {33, KEY_LEFTBRACE}, {34, KEY_I}, {35, KEY_P}, {36, KEY_ENTER}, {37, KEY_L}, {38, KEY_J},
    {39, KEY_APOSTROPHE}, {40, KEY_K}, {41, KEY_SEMICOLON}, {42, KEY_BACKSLASH}, {43, KEY_COMMA},
    {44, KEY_SLASH}, {45, KEY_N}, {46, KEY_M}, {47, KEY_DOT}, {48, KEY_TAB}, {49, KEY_SPACE},
    {50, KEY_GRAVE}, {51, KEY_BACKSPACE}, {53, KEY_ESC},
    // Modifiers: Command is Super, Option is Alt.
    {54, KEY_RIGHTMETA}, {55, KEY_LEFTMETA}, {56, KEY_LEFTSHIFT}, {57, KEY_CAPSLOCK},
    {58, KEY_LEFTALT}, {59, KEY_LEFTCTRL}, {60, KEY_RIGHTSHIFT}, {61, KEY_RIGHTALT},
    {62, KEY_RIGHTCTRL},
    // The keypad; its Clear is Num Lock.
    {65, KEY_KPDOT}, {67, KEY_KPASTERISK}, {69, KEY_KPPLUS}, {71, KEY_NUMLOCK}, {75, KEY_KPSLASH},
    {76, KEY_KPENTER}, {78, KEY_KPMINUS}, {81, KEY_KPEQUAL}, {82, KEY_KP0}, {83, KEY_KP1},
    {84, KEY_KP2}, {85, KEY_KP3}, {86, KEY_KP4}, {87, KEY_KP5}, {88, KEY_KP6}, {89, KEY_KP7},
    {91, KEY_KP8}, {92, KEY_KP9},
    // F1 to F20, with Print Screen, Scroll Lock and Pause in the places of F13 to F15.
    {122, KEY_F1}, {120, KEY_F2}, {99, KEY_F3}, {118, KEY_F4}, {96, KEY_F5}, {97, KEY_F6},
    {98, KEY_F7}, {100, KEY_F8}, {101, KEY_F9}, {109, KEY_F10}, {103, KEY_F11}, {111, KEY_F12},
    {105, KEY_SYSRQ}, {105, KEY_F13}, {107, KEY_SCROLLLOCK}, {107, KEY_F14}, {113, KEY_PAUSE},
    {113, KEY_F15}, {106, KEY_F16}, {64, KEY_F17}, {79, KEY_F18}, {80, KEY_F19}, {90, KEY_F20},
    // Sound keys.
    {72, KEY_VOLUMEUP}, {73, KEY_VOLUMEDOWN}, {74, KEY_MUTE},
    // Keys of Japanese keyboards.
    {93, KEY_YEN}, {94, KEY_RO}, {95, KEY_KPCOMMA}, {102, KEY_MUHENKAN}, {104, KEY_HENKAN},
    // The block of editing keys and arrows, and the menu key.
    {110, KEY_COMPOSE}, {114, KEY_INSERT}, {114, KEY_HELP}, {115, KEY_HOME}, {116, KEY_PAGEUP},
    {117, KEY_DELETE}, {119, KEY_END}, {121, KEY_PAGEDOWN}, {123, KEY_LEFT}, {124, KEY_RIGHT},
    {125, KEY_DOWN}, {126, KEY_UP},
};
// clang-format on

} // namespace

std::vector<int> evdevCodes(int keyCode)
{
    std::vector<int> codes;
    for (const KeyPosition &position : positions) {
        if (position.keyCode == keyCode)
            codes.push_back(position.evdev);
    }
    return codes;
}

std::optional<quint32> keycodeOf(int keyCode)
{
    const std::vector<int> codes = evdevCodes(keyCode);
    return codes.empty() ? std::nullopt
                         : std::optional(quint32(codes.front() + windowSystemKeyOffset));
}

int hardwareKeyCode(int evdevCode)
{
    const auto found = std::find_if(
        std::begin(positions), std::end(positions),
        [evdevCode](const KeyPosition &position) { return position.evdev == evdevCode; });
    return found == std::end(positions) ? KeyCode::none : found->keyCode;
}

} // namespace tovek
