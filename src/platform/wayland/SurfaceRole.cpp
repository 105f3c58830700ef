// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/SurfaceRole.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

namespace tovek {

wl_surface *surfaceOf(QWindow &window)
{
    return static_cast<wl_surface *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
}

wl_output *outputOf(QScreen *screen)
{
    if (!screen)
        return nullptr;
    return static_cast<wl_output *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", screen));
}

} // namespace tovek
