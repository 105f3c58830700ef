// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFont>

namespace tovek {

/// The desktop's own UI font at a size in points, which are logical pixels. Unhinted and without
/// coloured edges, so that text keeps its proportions at every scale and inside pictures. Needs a
/// QGuiApplication.
QFont systemFont(double size, QFont::Weight weight);

} // namespace tovek
