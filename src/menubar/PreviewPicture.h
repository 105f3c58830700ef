// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QWidget>

#include <functional>
#include <optional>

namespace tovek {

/// A small picture of the last capture, which can be dragged and clicked.
class PreviewPicture : public QWidget
{
public:
    /// `margin` in points around the picture.
    PreviewPicture(QImage image, int margin, QWidget *parent = nullptr);

    static constexpr QSize box{200, 110}; ///< points, that it fits into
    QSize sizeHint() const override;

    std::function<void()> onPressed;
    std::function<void()> onDragged;
    std::function<void()> onClicked;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QImage m_image;
    QImage m_scaled;
    int m_margin;
    QSize m_size;
    std::optional<QPointF> m_pressedAt;
};

} // namespace tovek
