// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Shortcut.h"

class QKeyEvent;

namespace tovek {
class KeyboardLayout;
}

namespace KeyboardShortcuts {

/// A key event of our own windows with the key by its place on the keyboard and the modifiers as
/// they are on it. A modifier that goes down changes flags; it is no key.
InputEvent inputEventFrom(const QKeyEvent &event, const tovek::KeyboardLayout &layout);

} // namespace KeyboardShortcuts
