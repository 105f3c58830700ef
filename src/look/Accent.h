// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>

namespace tovek {

/// What is written on an accent.
inline const QColor accentText(Qt::white);

/// How far two opaque colours are apart to the eye: 1 for the same, 21 for black and white.
double contrastOf(const QColor &one, const QColor &other);

/// The nearest shade of a desktop's accent that text can be read on, and that stands out from the
/// window as far as the text allows.
QColor readableAccent(QColor accent, const QColor &window);

} // namespace tovek
