// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace KeyboardShortcuts {

/// The module's own texts by key, in English, as all of the program speaks. A key that is not in
/// the table reads as itself. "%1" in a text stands for its argument.
QString localized(const QString &key);

} // namespace KeyboardShortcuts
