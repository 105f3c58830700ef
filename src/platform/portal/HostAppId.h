// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// What this program is called wherever desktops keep something by program.
const inline QString ownAppId = QStringLiteral("org.tovek.Tovek");

/// The name that a portal gives to a program outside of any sandbox which does not tell one itself:
/// that in the unit of systemd which the desktop started it in. Empty without such a unit, as when
/// it was started in a terminal; all programs without a name share what is permitted to one.
QString hostAppId(const QString &cgroups);
/// Of this process.
QString hostAppId();

/// Whether this process runs in a sandbox that gives it its name, and hides the desktop's stores.
bool isInSandbox();

} // namespace tovek
