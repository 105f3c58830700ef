// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <optional>

namespace tovek {

/// The dots per inch in the X resources, from which the toolkit makes its scale; absent where they
/// name none, or what is no number.
std::optional<double> dotsPerInchIn(const QByteArray &resources);

/// Those of the environment's display, asked over a connection made for this call. Needs no
/// application.
std::optional<double> x11DotsPerInch();

} // namespace tovek
