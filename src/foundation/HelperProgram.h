// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// The path of a program that this one starts: beside it, or in its libexec folder, where it is
/// looked for when it is nowhere. Tests lie in a folder beside that of the programs.
QString helperProgram(const QString &name);

} // namespace tovek
