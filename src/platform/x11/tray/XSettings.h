// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <optional>

/// The settings that the desktop's settings daemon publishes to programs on the X server.
namespace tovek::XSettings {

/// The value of a whole-number setting in the daemon's published block. Absent when the block has
/// no such setting, or is damaged.
std::optional<int> integer(const QByteArray &block, const QByteArray &name);

/// Whether the user wants event sounds; true where nobody says otherwise. Main thread only.
bool areEventSoundsEnabled();

} // namespace tovek::XSettings
