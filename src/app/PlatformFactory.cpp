// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PlatformFactory.h"

#include "foundation/Log.h"
#include "platform/Clipboard.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"
#include "platform/linux/NullDesktop.h"
#include "platform/linux/QtClock.h"
#ifdef TOVEK_WITH_X11
#include "platform/x11/X11FrontmostApp.h"
#include "platform/x11/X11OverlaySurface.h"
#include "platform/x11/X11ScreenGrabber.h"
#include "platform/x11/X11Screens.h"
#endif

namespace tovek {

namespace {

/// False where the session is not one of X11.
bool addX11Desktop(Platform &platform)
{
#ifdef TOVEK_WITH_X11
    const std::shared_ptr<X11Connection> connection = X11Connection::create();
    if (!connection)
        return false;
    const auto monitors = std::make_shared<X11Monitors>(connection);
    platform.screens = std::make_unique<X11Screens>(connection, monitors);
    platform.grabber = std::make_unique<X11ScreenGrabber>(connection, monitors);
    platform.overlayShell = std::make_unique<X11OverlayShell>(connection, monitors);
    platform.frontmostApp = std::make_unique<X11FrontmostApp>(connection);
    return true;
#else
    Q_UNUSED(platform)
    return false;
#endif
}

void addNullDesktop(Platform &platform)
{
    platform.screens = std::make_unique<NullScreens>();
    platform.grabber = std::make_unique<NullScreenGrabber>();
    platform.overlayShell = std::make_unique<NullOverlayShell>();
    platform.frontmostApp = std::make_unique<NullFrontmostApp>();
}

} // namespace

Platform makePlatform()
{
    Platform platform;
    platform.clock = std::make_unique<QtClock>();
    const QString forced = qEnvironmentVariable("TOVEK_PLATFORM");
    if (forced == QStringLiteral("null") || !addX11Desktop(platform)) {
        if (forced != QStringLiteral("null"))
            logLine(QStringLiteral("No X server to work with: screens cannot be captured"));
        addNullDesktop(platform);
    }
    return platform;
}

} // namespace tovek
