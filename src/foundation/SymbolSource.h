// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <functional>

class QColor;

namespace tovek {

/// Draws a system symbol by its name ("doc.text") in one colour. The font size in points says how
/// large; the image has the device pixel ratio given. A name that nobody drew gives a null image.
using SymbolSource = std::function<QImage(const QString &name, const QColor &color, double points,
                                          double devicePixelRatio)>;

} // namespace tovek
