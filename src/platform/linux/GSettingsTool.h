// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tovek {

/// What the tool of GNOME's settings prints for these arguments; absent when it fails, or has not
/// ended after the limit. Any thread.
std::optional<QString> askGSettings(const QStringList &arguments, int limitMs);

} // namespace tovek
