// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// A token for another program that shall show a window now because the user asked us for it. The
/// window manager is told of it as of a launch (freedesktop.org's startup notification); without
/// that, metacity 3.46 and its kin leave the window behind the one that was used last. Empty where
/// there is no server to reach. Waits for the server's answer.
QString newX11ActivationToken();

} // namespace tovek
