// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyCodes.h"

#include <algorithm>
#include <iterator>

namespace tovek {

namespace {

struct KeyPosition
{
    int carbon;
    int evdev;
};

// Matched by where the key is on the keyboard, never by what it types. Where a hardware code has
// two keys, the first row is the one that most keyboards have.
// clang-format off
constexpr KeyPosition positions[] = {
    // The letters, digits and signs.
    {0, 30}, {1, 31}, {2, 32}, {3, 33}, {4, 35}, {5, 34}, {6, 44}, {7, 45}, {8, 46}, {9, 47},
    {10, 86}, {11, 48}, {12, 16}, {13, 17}, {14, 18}, {15, 19}, {16, 21}, {17, 20}, {18, 2},
    {19, 3}, {20, 4}, {21, 5}, {22, 7}, {23, 6}, {24, 13}, {25, 10}, {26, 8}, {27, 12}, {28, 9},
    {29, 11}, {30, 27}, {31, 24}, {32, 22}, {33, 26}, {34, 23}, {35, 25}, {36, 28}, {37, 38},
    {38, 36}, {39, 40}, {40, 37}, {41, 39}, {42, 43}, {43, 51}, {44, 53}, {45, 49}, {46, 50},
    {47, 52}, {48, 15}, {49, 57}, {50, 41}, {51, 14}, {53, 1},
    // Modifiers: Command is Super, Option is Alt.
    {54, 126}, {55, 125}, {56, 42}, {57, 58}, {58, 56}, {59, 29}, {60, 54}, {61, 100}, {62, 97},
    // The keypad; its Clear is Num Lock.
    {65, 83}, {67, 55}, {69, 78}, {71, 69}, {75, 98}, {76, 96}, {78, 74}, {81, 117}, {82, 82},
    {83, 79}, {84, 80}, {85, 81}, {86, 75}, {87, 76}, {88, 77}, {89, 71}, {91, 72}, {92, 73},
    // F1 to F20, with Print Screen, Scroll Lock and Pause in the places of F13 to F15.
    {122, 59}, {120, 60}, {99, 61}, {118, 62}, {96, 63}, {97, 64}, {98, 65}, {100, 66}, {101, 67},
    {109, 68}, {103, 87}, {111, 88}, {105, 99}, {105, 183}, {107, 70}, {107, 184}, {113, 119},
    {113, 185}, {106, 186}, {64, 187}, {79, 188}, {80, 189}, {90, 190},
    // Sound keys.
    {72, 115}, {73, 114}, {74, 113},
    // Keys of Japanese keyboards.
    {93, 124}, {94, 89}, {95, 121}, {102, 94}, {104, 92},
    // The block of editing keys and arrows, and the menu key.
    {110, 127}, {114, 110}, {114, 138}, {115, 102}, {116, 104}, {117, 111}, {119, 107}, {121, 109},
    {123, 105}, {124, 106}, {125, 108}, {126, 103},
};
// clang-format on

} // namespace

std::vector<int> evdevCodes(int carbonKeyCode)
{
    std::vector<int> codes;
    for (const KeyPosition &position : positions) {
        if (position.carbon == carbonKeyCode)
            codes.push_back(position.evdev);
    }
    return codes;
}

std::optional<quint32> keycodeOf(int carbonKeyCode)
{
    const std::vector<int> codes = evdevCodes(carbonKeyCode);
    return codes.empty() ? std::nullopt
                         : std::optional(quint32(codes.front() + windowSystemKeyOffset));
}

int carbonKeyCode(int evdevCode)
{
    const auto found = std::find_if(
        std::begin(positions), std::end(positions),
        [evdevCode](const KeyPosition &position) { return position.evdev == evdevCode; });
    return found == std::end(positions) ? KeyCode::none : found->carbon;
}

} // namespace tovek
