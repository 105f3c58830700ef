// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PlatformParts.h"

#include "foundation/Log.h"
#include "foundation/Unfinished.h"
#include "platform/null/NullCapturePermission.h"

#include <QtGlobal>

#include <cstdlib>

namespace tovek {

namespace {

constexpr std::chrono::seconds unfinishedLimit(5);

} // namespace

bool isWaylandSession()
{
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

std::unique_ptr<CapturePermission> refuseToCapture()
{
    logLine(QStringLiteral("This Wayland session cannot be captured: nothing will be"));
    return std::make_unique<NullCapturePermission>(CaptureAdvice{
        QStringLiteral("This Session Cannot Be Captured"),
        QStringLiteral("This kind of Wayland desktop shows its screens through a desktop portal "
                       "only, and none answers. Without it, Tovek would see nothing but black:"),
        {QStringLiteral("Install xdg-desktop-portal and its part for your desktop, such as "
                        "xdg-desktop-portal-gnome"),
         QStringLiteral("Log out and in, and start Tovek again"),
         QStringLiteral("Or choose a session \"on Xorg\" or \"X11\" on the login screen")}});
}

void waitForUnfinished()
{
    Unfinished::waitForAll(unfinishedLimit);
}

[[noreturn]] void exitUnfinished()
{
    waitForUnfinished();
    std::_Exit(1);
}

} // namespace tovek
