// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"
#include "platform/x11/X11Connection.h"

#include <QObject>

namespace tovek {

/// The active window as the window manager names it, or the owner of the keyboard without one.
class X11FrontmostApp : public QObject, public FrontmostApp
{
public:
    /// A guest's server on a Wayland desktop sees the windows of some programs only, and the
    /// desktop itself gives the keyboard back to the others.
    enum class Server { own, guest };

    explicit X11FrontmostApp(std::shared_ptr<X11Connection> connection,
                             Server server = Server::own);
    std::optional<RunningApplication> frontmost() const override;
    std::optional<QRect> activeWindowFrame() const override;
    void activate(const RunningApplication &application) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void bringForward(QWindow &window) override;
    quint64 sharedHandle(const QWindow &window) const override;

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void applyPolicy(QWindow &window) const;
    void requestState(xcb_window_t window, bool isSkipped) const;
    void requestActivation(xcb_window_t window) const;
    void sendToRoot(xcb_window_t window, xcb_atom_t type, std::array<uint32_t, 5> data) const;
    bool hasWindowManager() const;
    bool isClient(xcb_window_t window) const;
    /// What a program that draws its own frame draws around it as well.
    QMargins drawnShadow(xcb_window_t window) const;
    std::optional<uint32_t> number(xcb_window_t window, X11Atom property) const;

    std::shared_ptr<X11Connection> m_connection;
    const Server m_server;
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};

} // namespace tovek
