// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QCursor>

#include <optional>

class QWidget;

namespace tovek {

/// The overlay's cursor over a widget, which is set only when its shape changes: each change is a
/// request to the display server, and not one a motion event.
class ShownCursor
{
public:
    /// Scales are those of the widget's Screen.
    ShownCursor(QWidget &widget, double scale, int cursorScale)
        : m_widget(widget)
        , m_scale(scale)
        , m_cursorScale(cursorScale)
    {
    }

    void show(Qt::CursorShape shape);
    /// Also where it is believed to be shown.
    void showAgain(Qt::CursorShape shape);

private:
    QWidget &m_widget;
    double m_scale; ///< pixels per point
    int m_cursorScale;
    std::optional<Qt::CursorShape> m_shape;
};

} // namespace tovek
