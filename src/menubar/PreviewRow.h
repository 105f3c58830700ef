// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QWidgetAction>

#include <functional>

namespace tovek {

/// The last capture as the first row of a menu, to be dragged out of it where the status item
/// itself cannot be dragged. A click keeps the menu open.
class PreviewRow : public QWidgetAction
{
public:
    PreviewRow(const QImage &image, QObject *parent);

    /// The pointer was pressed on the picture and has gone far enough.
    std::function<void()> onDragged;

protected:
    QWidget *createWidget(QWidget *parent) override;

private:
    QImage m_image;
};

} // namespace tovek
