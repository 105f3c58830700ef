// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Keys.h"

class QKeyEvent;

namespace tovek {

class KeyboardLayout;

/// A key event of our own windows in the words of the rules. Letters are Latin whatever the layout
/// (with its help; without it, a letter of another script stays what it is); Ctrl and Super both
/// count as Command.
KeyPress keyPressFrom(const QKeyEvent &event, const KeyboardLayout *layout);

} // namespace tovek
