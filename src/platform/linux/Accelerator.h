// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QString>

namespace tovek {

class KeyboardLayout;

/// True when a combination as desktops write it in their settings ("<Primary><Alt>t", "Print",
/// "<Super>Page_Up") is this one. Keys are compared by their names or by what they type in the
/// layout; a combination with a modifier that shortcuts do not know is none of ours.
bool isAccelerator(const QString &accelerator, KeyCombo combo, const KeyboardLayout &layout);

/// The name of a key as keyboards' own tables have it ("Print", "3", "numbersign"), by what it
/// types without modifiers in the layout; empty for one that has none.
QString symbolNameOf(quint32 keyCode, const KeyboardLayout &layout);

/// The same of what it types with Shift, where that is another sign; empty for letters and for keys
/// that type nothing.
QString shiftedSymbolNameOf(quint32 keyCode, const KeyboardLayout &layout);

/// A combination as GNOME and its kin write it; empty where the key has no name.
QString acceleratorOf(KeyCombo combo, const KeyboardLayout &layout);

} // namespace tovek
