// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tovek {

/// Letters of the Latin, Greek and Cyrillic alphabets that look the same (o, ο, о) become those of
/// the alphabet that the word's other letters tell; Latin ones where none tells.
void settleAlphabet(std::u32string &word);

} // namespace tovek
