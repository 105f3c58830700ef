// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>

namespace tovek {

enum class Windows { asThePalette, dark };
/// Gives the application its style and the icon of its windows, the first time it is called: the
/// program mostly has no window to show them. An accent that is valid takes the place of the
/// palette's, as far as text on it stays readable.
void useModernLook(Windows windows = Windows::asThePalette, const QColor &accent = {});

} // namespace tovek
