// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// How the user starts this program from a command line. Needs the application.
QString programCommand();

} // namespace tovek
