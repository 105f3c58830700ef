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

/// Keeps the AppImage under a name beside it, until the one that takes its place has started once.
/// Where that cannot be done, there is none to go back to.
void keepAppImage(const QString &file);
/// Puts the kept one back in its place; false when there is none.
bool restoreAppImage(const QString &file);
/// This one has started: the kept one is not needed any more.
void forgetKeptAppImage(const QString &file);

} // namespace tovek
