// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Gives the application its style and the icon of its windows, the first time it is called: the
/// program mostly has no window to show them.
enum class Windows { asThePalette, dark };
void useModernLook(Windows windows = Windows::asThePalette);

} // namespace tovek
