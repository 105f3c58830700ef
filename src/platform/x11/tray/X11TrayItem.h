// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>

namespace tovek {

class X11TrayWindow;

/// The status item as a window of our own that the panel embeds: it can be as wide as a thumbnail,
/// and gets real mouse events. Panels that only forward such windows to their own kind of item give
/// neither; they are a last resort.
class X11TrayItem : public QObject, public Tray, private QAbstractNativeEventFilter
{
public:
    /// Null where the program does not run on an X server.
    static std::unique_ptr<Tray> create();
    X11TrayItem();
    ~X11TrayItem() override;

    void setVisible(bool isVisible) override;
    void setPicture(const TrayPicture &picture) override;
    void setToolTip(const QString &text) override;
    bool hasHost() const override { return m_host != 0; }
    bool isLastResort() const override { return m_isHostProxy; }
    bool isLookingForHost() const override { return false; }
    bool canDrag() const override { return hasHost(); }
    QObject *dragSource() override;
    QRect geometry() const override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void findHost();
    void dock();
    void undock();
    void hostGone();

    quint32 m_host = 0; ///< the panel's window that takes items in
    bool m_isHostProxy = false;
    bool m_isVisible = false;
    TrayPicture m_picture;
    QString m_toolTip;
    std::unique_ptr<X11TrayWindow> m_window;
};

} // namespace tovek
