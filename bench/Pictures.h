// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek::bench {

/// A photograph's worth of entropy, the same on every run: smooth gradients under the noise of a
/// sensor, shared by the channels (luminance) and of their own (chroma).
QImage photographicNoise(QSize size);

/// A desktop of overlapping windows full of text over a gradient, the same on every run. Needs a
/// QGuiApplication.
QImage windowsWithText(QSize size);

/// Sentences all over the picture, dark on white, no two lines the same. Needs a QGuiApplication.
QImage pageOfText(QSize size);

} // namespace tovek::bench
