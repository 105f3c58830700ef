// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// Runs another program in place of this one, in the background of the session. Everything of this
/// one is gone by then: it holds no key, no name and no file any more. Returns only when the other
/// cannot be run, after one log line.
void becomeProgram(const QString &path);

} // namespace tovek
