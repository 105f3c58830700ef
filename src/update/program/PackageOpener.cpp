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

PackageOpener::PackageOpener() : m_opener(std::make_unique<QProcess>())
{
    m_opener->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // With nobody left to read them, lines to a pipe would end it.
    m_opener->setStandardOutputFile(QProcess::nullDevice());
    connect(m_opener.get(), &QProcess::finished, this,
            [this](int code, QProcess::ExitStatus status) {
                answer(status == QProcess::NormalExit && code == 0);
            });
    connect(m_opener.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            answer(false);
    });
}

PackageOpener::~PackageOpener()
{
    m_opener->disconnect(this);
    // The user may be in the middle of installing, and the end of this object would kill the
    // program: so it stays for as long as we run.
    if (m_opener->state() != QProcess::NotRunning)
        static_cast<void>(m_opener.release());
}

void PackageOpener::open(const QString &file, std::function<void(bool isTaken)> done)
{
    m_done = std::move(done);
    QTimer::singleShot(certainMs, this, [this] { answer(true); });
    m_opener->start(QStringLiteral("xdg-open"), {file});
}

void PackageOpener::answer(bool isTaken)
{
    if (const auto done = std::exchange(m_done, nullptr))
        done(isTaken);
}

} // namespace tovek
