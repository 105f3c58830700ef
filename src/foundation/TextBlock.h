// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <memory>
#include <vector>

class QColor;
class QFont;
class QPainter;
class QTextLayout;

namespace tovek {

/// Text laid out without a bound on its width: one line for each line of the text, font leading
/// included, in metrics that do not depend on the scale it is drawn at. A line that runs from
/// right to left ends at the right edge of the block. Needs a QGuiApplication.
class TextBlock
{
public:
    TextBlock(const QString &text, const QFont &font);
    ~TextBlock();
    TextBlock(TextBlock &&) noexcept;

    Size size() const { return m_size; }
    /// `topLeft` is in the painter's own coordinates, y down.
    void draw(QPainter &painter, QPointF topLeft, const QColor &color) const;

private:
    std::vector<std::unique_ptr<QTextLayout>> m_lines;
    Size m_size;
};

} // namespace tovek
