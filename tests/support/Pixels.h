// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

namespace tovek {

/// How many pixels differ; all of them when the sizes do. The alpha channel is not looked at.
int differentPixels(const QImage &one, const QImage &other);

} // namespace tovek
