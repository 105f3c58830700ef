// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <optional>

class QProcessEnvironment;

namespace tovek {

/// The AppImage that the running program with this path was unpacked from, links resolved; absent
/// when it was not, whatever the environment has from another AppImage that started it, a terminal
/// for instance.
std::optional<QString> appImageOf(const QString &program, const QProcessEnvironment &environment);

} // namespace tovek
