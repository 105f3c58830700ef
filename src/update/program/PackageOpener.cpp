// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/PackageOpener.h"

#include <QTimer>

#include <utility>

namespace tovek {

namespace {

// On some desktops it ends with the program that it started, on others before that.
constexpr int certainMs = 5000;

} // namespace

PackageOpener::PackageOpener()
{
    m_opener.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&m_opener, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        answer(status == QProcess::NormalExit && code == 0);
    });
    connect(&m_opener, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            answer(false);
    });
}

void PackageOpener::open(const QString &file, std::function<void(bool isTaken)> done)
{
    m_done = std::move(done);
    QTimer::singleShot(certainMs, this, [this] { answer(true); });
    m_opener.start(QStringLiteral("xdg-open"), {file});
}

void PackageOpener::answer(bool isTaken)
{
    if (const auto done = std::exchange(m_done, nullptr))
        done(isTaken);
}

} // namespace tovek
