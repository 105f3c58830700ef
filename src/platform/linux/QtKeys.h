// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QList>

namespace tovek {

class KeyboardLayout;

/// The numbers, key with modifiers, under which KDE may know a combination; empty when it can have
/// no name for it. KDE goes by what a key types: Shift with a key for which it chooses another
/// sign, not another letter, is that sign without Shift. Its window manager counted the keypad
/// among the other keys until Plasma 5, and goes by the second sign on the Print key when Alt
/// is held, which may use up the Alt.
QList<int> qtKeysOf(KeyCombo combo, const KeyboardLayout &layout);

} // namespace tovek
