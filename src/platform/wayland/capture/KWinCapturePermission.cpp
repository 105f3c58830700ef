// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/KWinCapturePermission.h"

#include "foundation/Log.h"
#include "platform/wayland/capture/KWinPictures.h"

#include <QCoreApplication>

namespace tovek {

bool KWinCapturePermission::hasAccess() const
{
    if (m_isGranted)
        return true;
    m_isGranted = kwinAccess() != KWinAccess::refused;
    if (!m_isGranted)
        logLine(QStringLiteral("KWin knows no desktop file that lets %1 see the screen")
                    .arg(QCoreApplication::applicationFilePath()));
    return m_isGranted;
}

std::optional<CaptureAdvice> KWinCapturePermission::advice() const
{
    return CaptureAdvice{
        QStringLiteral("KWin Does Not Know This Tovek"),
        QStringLiteral("KWin shows the screen to installed programs only, by a desktop file that "
                       "names the very program which asks. This one is not installed, or it was "
                       "a moment ago:"),
        {QStringLiteral("Install Tovek, and start the installed one"),
         QStringLiteral("After an installation wait some seconds, or log out and in")}};
}

} // namespace tovek
