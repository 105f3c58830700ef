// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/Alphabets.h"

#include <algorithm>
#include <array>

namespace tovek {

namespace {

/// One shape; 0 where an alphabet has no such letter.
struct SharedShape
{
    char32_t latin, greek, cyrillic;
};

// clang-format off
constexpr std::array<SharedShape, 27> sharedShapes{{
    {U'A', 0x391, 0x410}, {U'B', 0x392, 0x412}, {U'C', 0, 0x421},     {U'E', 0x395, 0x415},
    {U'H', 0x397, 0x41d}, {U'I', 0x399, 0x406}, {U'J', 0, 0x408},     {U'K', 0x39a, 0x41a},
    {U'M', 0x39c, 0x41c}, {U'N', 0x39d, 0},     {U'O', 0x39f, 0x41e}, {U'P', 0x3a1, 0x420},
    {U'S', 0, 0x405},     {U'T', 0x3a4, 0x422}, {U'X', 0x3a7, 0x425}, {U'Y', 0x3a5, 0},
    {U'Z', 0x396, 0},     {U'a', 0, 0x430},     {U'c', 0, 0x441},     {U'e', 0, 0x435},
    {U'i', 0, 0x456},     {U'j', 0, 0x458},     {U'o', 0x3bf, 0x43e}, {U'p', 0, 0x440},
    {U's', 0, 0x455},     {U'x', 0, 0x445},     {U'y', 0, 0x443}}};
// clang-format on

const SharedShape *shapeOf(char32_t letter)
{
    const auto found = std::find_if(sharedShapes.begin(), sharedShapes.end(), [&](auto &shape) {
        return letter == shape.latin || letter == shape.greek || letter == shape.cyrillic;
    });
    return letter == 0 || found == sharedShapes.end() ? nullptr : &*found;
}

} // namespace

void settleAlphabet(std::u32string &word)
{
    int greek = 0;
    int cyrillic = 0;
    for (const char32_t letter : word) {
        if (shapeOf(letter))
            continue;
        const bool isLatin =
            (letter >= U'A' && letter <= U'Z') || (letter >= U'a' && letter <= U'z');
        greek += (letter >= 0x386 && letter <= 0x3ce) - isLatin;
        cyrillic += (letter >= 0x401 && letter <= 0x45f) - isLatin;
    }
    for (char32_t &letter : word) {
        const SharedShape *shape = shapeOf(letter);
        if (!shape)
            continue;
        const char32_t own = greek > 0 && greek >= cyrillic ? shape->greek
            : cyrillic > 0                                  ? shape->cyrillic
                                                            : shape->latin;
        if (own != 0)
            letter = own;
    }
}

} // namespace tovek
