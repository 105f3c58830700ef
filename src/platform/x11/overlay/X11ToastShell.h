// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ToastWindow.h"

namespace tovek {

/// Toasts as override-redirect windows: no window manager moves, decorates or focuses them. With a
/// compositing manager the window has an alpha channel; without one it is opaque and its picture
/// brings along what lies below, since an alpha channel would show as black.
class X11ToastShell : public ToastShell
{
public:
    /// Null where the program does not run on an X server.
    static std::unique_ptr<ToastShell> create();

    std::unique_ptr<ToastWindow> create(QRect native, const QString &title) override;
    bool blends() const override;
    QImage pixelsBelow(QRect native) override;
};

} // namespace tovek
