// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QSize>

#include <vector>

namespace tovek::bench {

/// How long the program's main thread makes an event wait while the text of a whole screen is
/// recognised, and once it has been: prints a table with two rows a screen.
void printResponsiveness(const std::vector<QSize> &screens);

} // namespace tovek::bench
