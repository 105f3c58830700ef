// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QImage>
#include <QRasterWindow>

namespace tovek {

/// The window of a status item that a panel embeds. What the toolkit believes about its place and
/// size is not true once the panel has taken it in; both are asked of the server.
class X11TrayWindow : public QRasterWindow
{
public:
    /// Tells the item of the pointer. Translucent where the panel embeds windows with an alpha
    /// channel.
    X11TrayWindow(Tray &item, bool isTranslucent);

    quint32 id() const { return quint32(winId()); }
    bool isEmbedded() const { return m_isEmbedded; }
    /// The panel has taken the window in, so that it may be shown.
    void setEmbedded();
    void setPicture(const TrayPicture &picture);
    /// Finds out what the item lies on: its tint follows from that, and without an alpha channel
    /// its own background as well.
    void look();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void lookSoon();
    QSize nativeSize() const;
    QImage edgeOnScreen() const;
    QImage besideOnScreen() const;
    QImage panelBehind() const;
    QColor tint() const;

    Tray &m_item;
    bool m_isTranslucent;
    bool m_isEmbedded = false;
    TrayPicture m_picture;
    QImage m_background;
};

} // namespace tovek
