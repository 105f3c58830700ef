// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Keys.h"

#include <optional>
#include <vector>

namespace tovek {

/// What the window systems add to an evdev code to make the key code of their events
/// (QKeyEvent::nativeScanCode included).
inline constexpr int windowSystemKeyOffset = 8;

/// The evdev codes of the keys that stand for a hardware code, the one of a common PC keyboard
/// first; empty when there is none. More than one where a PC keyboard has a key of its own in the
/// place of another (Print Screen is F13, Scroll Lock F14, Pause F15, Insert is Help).
std::vector<int> evdevCodes(int keyCode);

/// What key events call the first of these keys; absent when there is none.
std::optional<quint32> keycodeOf(int keyCode);

/// The hardware code of an evdev code; KeyCode::none when there is none.
int hardwareKeyCode(int evdevCode);

} // namespace tovek
