// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalLoginItem.h"

#include "foundation/Log.h"
#include "platform/portal/PortalRequest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// A person may be asked first.
constexpr auto answerLimit = 5min;

} // namespace

PortalLoginItem::PortalLoginItem(std::shared_ptr<PortalBus> bus, QString note)
    : m_bus(std::move(bus))
    , m_note(std::move(note))
{
}

QString PortalLoginItem::standardNote()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/tovek/starts-at-login");
}

bool PortalLoginItem::isEnabled() const
{
    return QFile::exists(m_note);
}

std::optional<QString> PortalLoginItem::setEnabled(bool isEnabled)
{
    if (!m_bus->isOffered())
        return QStringLiteral("no desktop portal runs here");
    if (const auto error = keep(isEnabled))
        return error;
    QDBusMessage ask =
        Portal::call(QStringLiteral("Background"), QStringLiteral("RequestBackground"));
    ask << QString();
    const QVariantMap options{
        {QStringLiteral("reason"), QStringLiteral("To hear its shortcuts from the login on")},
        {QStringLiteral("autostart"), isEnabled},
        {QStringLiteral("commandline"),
         QStringList{QStringLiteral("tovek"), QStringLiteral("--background")}},
    };
    const int question = ++m_questions;
    PortalRequest::send(*m_bus, ask, options, answerLimit, this,
                        [this, question, isEnabled](const PortalAnswer &answer) {
                            if (question == m_questions)
                                answered(answer, isEnabled);
                        });
    return std::nullopt;
}

void PortalLoginItem::answered(const PortalAnswer &answer, bool wanted)
{
    const bool isGiven = answer.kind == PortalAnswer::Kind::given;
    // Without an answer, everything is as it was before the question.
    const bool isNow =
        isGiven ? answer.results.value(QStringLiteral("autostart")).toBool() : !wanted;
    if (isNow == wanted)
        return;
    logLine(QStringLiteral("Failed to change whether Tovek starts at login: %1")
                .arg(isGiven ? QStringLiteral("the desktop refused it") : answer.reason()));
    if (const auto error = keep(isNow))
        logLine(*error);
    if (m_isWatching && onChanged)
        onChanged();
}

std::optional<QString> PortalLoginItem::keep(bool isEnabled)
{
    QFile note(m_note);
    const bool isKept = isEnabled
        ? QDir().mkpath(QFileInfo(m_note).path()) && note.open(QIODevice::WriteOnly)
        : !note.exists() || note.remove();
    return isKept ? std::nullopt
                  : std::optional(QStringLiteral("%1: %2").arg(m_note, note.errorString()));
}

} // namespace tovek
