// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ShownCursor.h"

#include "overlay/OverlayCursor.h"

#include <QWidget>

namespace tovek {

void ShownCursor::show(Qt::CursorShape shape)
{
    if (m_shape != shape)
        showAgain(shape);
}

void ShownCursor::showAgain(Qt::CursorShape shape)
{
    m_shape = shape;
    m_widget.setCursor(overlayCursor(shape, m_scale, m_cursorScale));
}

} // namespace tovek
