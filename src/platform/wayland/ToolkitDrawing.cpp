// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/ToolkitDrawing.h"

#include <QtGlobal>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformintegration.h>

namespace tovek {

namespace {

constexpr char choice[] = "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION";

} // namespace

void keepToShmBuffers()
{
    QPlatformIntegration *toolkit = QGuiApplicationPrivate::platformIntegration();
    if (!toolkit || qEnvironmentVariableIsSet(choice))
        return;
    qputenv(choice, "none");
    // It looks once, when it is first asked, and complains that there is no such way.
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    toolkit->hasCapability(QPlatformIntegration::OpenGL);
    qInstallMessageHandler(before);
    // Programs that are started from here may want to draw with it.
    qunsetenv(choice);
}

} // namespace tovek
