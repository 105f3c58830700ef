// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalCapturePermission.h"

#include "foundation/Log.h"
#include "platform/portal/HostAppId.h"
#include "platform/portal/PortalPicture.h"
#include "platform/portal/PortalRequest.h"

#include <QDBusMessage>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto thinkingTime = 5min;

CaptureAdvice withoutPortal()
{
    return {QStringLiteral("No Portal for Screenshots"),
            QStringLiteral("This desktop shows its screens to programs only through a desktop "
                           "portal, and none is installed:"),
            {QStringLiteral("Install xdg-desktop-portal and the part for your desktop, such as "
                            "xdg-desktop-portal-gnome"),
             QStringLiteral("Log out, and in again")}};
}

} // namespace

PortalCapturePermission::PortalCapturePermission(std::shared_ptr<PortalBus> bus, Asking asking)
    : m_bus(std::move(bus))
    , m_asking(asking)
{
}

StoredAnswer PortalCapturePermission::answer() const
{
    // The store is out of reach in a sandbox.
    return isInSandbox() ? StoredAnswer::unknown
                         : storedScreenshotAnswer(m_bus->connection(), m_bus->appId());
}

bool PortalCapturePermission::hasAccess() const
{
    if (!m_bus->isOffered())
        return false;
    switch (answer()) {
    case StoredAnswer::no:
        return false;
    case StoredAnswer::none:
        return m_isGranted || m_asking == Asking::withTheFirstPicture;
    case StoredAnswer::yes:
    case StoredAnswer::askEachTime:
    case StoredAnswer::unknown:
        break;
    }
    return true;
}

void PortalCapturePermission::requestAccess()
{
    if (m_isAsking || !m_bus->isOffered())
        return;
    if (answer() == StoredAnswer::no) {
        const QString error = forgetScreenshotAnswer(m_bus->connection(), m_bus->appId());
        if (!error.isEmpty())
            logLine(QStringLiteral("The desktop keeps its answer about screenshots: ") + error);
    }
    m_isAsking = true;
    const auto drop = [](const QVariantMap &results) {
        dropPortalPicture(results.value(QStringLiteral("uri")).toString());
    };
    QDBusMessage ask = Portal::call(QStringLiteral("Screenshot"), QStringLiteral("Screenshot"));
    ask << QString();
    auto *request = PortalRequest::send(
        *m_bus, ask, {{QStringLiteral("interactive"), false}}, thinkingTime, this,
        [this, drop](const PortalAnswer &answer) {
            m_isGranted = answer.kind == PortalAnswer::Kind::given;
            if (m_isGranted)
                drop(answer.results);
            else
                logLine(QStringLiteral("No permission for screenshots: ") + answer.reason());
            answered();
        });
    request->onLate = drop;
}

void PortalCapturePermission::answered()
{
    m_isAsking = false;
    if (onAnswered)
        onAnswered();
}

std::optional<CaptureAdvice> PortalCapturePermission::advice() const
{
    if (!m_bus->isOffered())
        return withoutPortal();
    const bool wasRefused = answer() == StoredAnswer::no;
    CaptureAdvice advice;
    advice.hasSettings = true;
    advice.title = wasRefused ? QStringLiteral("Screenshots Were Refused")
                              : QStringLiteral("May Tovek See the Screen?");
    advice.explanation = wasRefused
        ? QStringLiteral("The desktop was told that Tovek may take no screenshots, and keeps to "
                         "that until it is told otherwise.")
        : QStringLiteral("The desktop asks once whether Tovek may take screenshots. Without that "
                         "there is nothing to select from.");
    if (m_bus->appId().isEmpty())
        advice.explanation += QStringLiteral(" The answer holds for all programs that it does not "
                                             "know by name.");
    advice.button = wasRefused ? QStringLiteral("Ask Me Again") : QStringLiteral("Ask Me Now");
    advice.steps = {QStringLiteral("Click \"%1\" below").arg(advice.button),
                    QStringLiteral("Choose \"Allow\" in the desktop's question")};
    return advice;
}

} // namespace tovek
