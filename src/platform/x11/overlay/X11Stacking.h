// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>

#include <set>

namespace tovek {

/// Keeps our overlays above windows that other programs put on top later (notifications, docks).
/// Each foreign window is answered once, so that two programs that both insist do not flicker.
/// Watches the desktop only while an overlay shows. Main thread only.
class X11Stacking : private QAbstractNativeEventFilter
{
public:
    explicit X11Stacking(std::shared_ptr<X11Connection> connection);
    ~X11Stacking() override;
    void add(xcb_window_t overlay);
    void remove(xcb_window_t overlay);

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void setWatching(bool isOn);
    void answer(xcb_window_t foreign);

    std::shared_ptr<X11Connection> m_connection;
    std::set<xcb_window_t> m_overlays;
    std::set<xcb_window_t> m_answered;
};

} // namespace tovek
