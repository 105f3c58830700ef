// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/Updater.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/UserDefaults.h"
#include "platform/Clock.h"

#include <utility>

namespace tovek {

using namespace std::chrono_literals;

namespace {

const QString automaticallyKey = QStringLiteral("automaticallyChecksForUpdates");
const QString lastCheckKey = QStringLiteral("lastCheck");
// What the check says of itself; all other lines are for the log.
const QByteArray checkedLine = QByteArrayLiteral("checked");
const QByteArray offeredLine = QByteArrayLiteral("offered");
const QByteArray relaunchLine = QByteArrayLiteral("relaunch ");
/// What it is told, as a line.
const QByteArray showLine = QByteArrayLiteral("show\n");
const QByteArray darkWord = QByteArrayLiteral("dark");
const QByteArray lightWord = QByteArrayLiteral("light");
constexpr auto retryDelay = 1h;
/// Timers stand still while the machine sleeps; the clock on the wall does not.
constexpr auto longestWait = 1h;
constexpr int patienceMs = 2000;

} // namespace

Updater::Updater(UpdateConfiguration configuration, UserDefaults &defaults, Clock &clock)
    : m_configuration(std::move(configuration))
    , m_defaults(defaults)
    , m_clock(clock)
{
}

Updater::~Updater()
{
    if (!m_process)
        return;
    m_process->disconnect(this);
    // It takes this for the end, and leaves nothing half done.
    m_process->closeWriteChannel();
    if (!m_process->waitForFinished(patienceMs)) {
        m_process->kill();
        m_process->waitForFinished(patienceMs);
    }
}

QString Updater::unavailableReason() const
{
    return m_configuration.program.isEmpty()
        ? tr("This build of Tovek does not update itself: it was made without an update address")
        : QString();
}

bool Updater::canCheckForUpdates() const
{
    return !m_configuration.program.isEmpty() && m_isStarted && !isChecking();
}

bool Updater::automaticallyChecksForUpdates() const
{
    return !m_configuration.program.isEmpty()
        && m_defaults.boolean(automaticallyKey).value_or(false);
}

void Updater::setAutomaticallyChecksForUpdates(bool isOn)
{
    if (m_configuration.program.isEmpty())
        return;
    m_defaults.setBoolean(automaticallyKey, isOn);
    schedule();
}

void Updater::start()
{
    Q_ASSERT(isMainThread() && !m_isStarted);
    m_isStarted = true;
    Q_EMIT canCheckForUpdatesChanged();
    if (std::exchange(m_isAsked, false))
        checkForUpdates();
    else
        schedule();
}

void Updater::checkForUpdates()
{
    Q_ASSERT(isMainThread());
    if (!canCheckForUpdates())
        m_isAsked = !m_isStarted;
    else if (m_process)
        m_process->write(showLine);
    else
        check(Reason::requested);
}

void Updater::schedule()
{
    m_schedule.reset();
    if (!m_isStarted || m_process || !automaticallyChecksForUpdates())
        return;
    const QDateTime now = m_clock.now();
    const QString stored = m_defaults.string(lastCheckKey).value_or(QString());
    const QDateTime last = QDateTime::fromString(stored, Qt::ISODate);
    // A time to come is a clock that was wrong.
    const bool isKnown = last.isValid() && last <= now;
    const auto interval = m_configuration.interval;
    const auto passed = isKnown ? std::chrono::milliseconds(last.msecsTo(now)) : interval;
    auto remaining = std::max(interval - passed, 0ms);
    // A check that came to nothing does not count, and is made again before long.
    if (m_lastFailure.isValid() && m_lastFailure <= now)
        remaining =
            std::max(remaining, retryDelay - std::chrono::milliseconds(m_lastFailure.msecsTo(now)));
    m_schedule = std::make_unique<QObject>();
    m_clock.after(std::min<std::chrono::milliseconds>(remaining, longestWait), m_schedule.get(),
                  [this, remaining] {
                      if (remaining <= longestWait)
                          check(Reason::scheduled);
                      else
                          schedule();
                  });
}

void Updater::check(Reason reason)
{
    m_schedule.reset();
    m_reason = reason;
    m_isOffering = false;
    m_lastFailure = m_clock.now(); // until it says that it has checked
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &Updater::readOutput);
    connect(m_process.get(), &QProcess::finished, this,
            [this](int code, QProcess::ExitStatus status) {
                if (status != QProcess::NormalExit)
                    ended(m_process->errorString());
                else
                    ended(code == 0 ? QString() : QStringLiteral("Exit status %1").arg(code));
            });
    connect(m_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            ended(m_process->errorString());
    });
    QStringList arguments{QStringLiteral("--installed-version"), m_configuration.installedVersion};
    if (reason == Reason::scheduled)
        arguments.append(QStringLiteral("--quiet"));
    m_process->start(m_configuration.program, arguments);
    Q_EMIT canCheckForUpdatesChanged();
    if (onStarted)
        onStarted();
}

void Updater::setWindows(bool areDark, const QColor &accent)
{
    if (!m_process)
        return;
    QByteArray line = areDark ? darkWord : lightWord;
    if (accent.isValid())
        line += ' ' + accent.name().toLatin1();
    m_process->write(line + '\n');
}

void Updater::readOutput()
{
    while (m_process && m_process->canReadLine()) {
        const QByteArray line = m_process->readLine().trimmed();
        if (line.startsWith(relaunchLine))
            m_newProgram = QString::fromUtf8(line.mid(relaunchLine.size()));
        else if (line == checkedLine)
            checked();
        else if (line == offeredLine)
            setOffering(m_reason == Reason::scheduled);
        else if (!line.isEmpty())
            logLine(QString::fromUtf8(line));
    }
}

void Updater::checked()
{
    m_lastFailure = {};
    m_defaults.setString(lastCheckKey, m_clock.now().toUTC().toString(Qt::ISODate));
}

void Updater::setOffering(bool isOffering)
{
    if (std::exchange(m_isOffering, isOffering) != isOffering)
        Q_EMIT canCheckForUpdatesChanged();
}

void Updater::ended(const QString &failure)
{
    if (!m_process)
        return;
    readOutput();
    // This may be its own signal.
    m_process->disconnect(this);
    m_process.release()->deleteLater();
    const QString text = QStringLiteral("Failed to check for updates: ") + failure;
    if (!failure.isEmpty())
        logLine(text);
    if (!failure.isEmpty() && m_reason == Reason::requested && onFailed)
        onFailed(text);
    Q_EMIT canCheckForUpdatesChanged();
    schedule();
    const QString program = std::exchange(m_newProgram, QString());
    if (!program.isEmpty() && onRelaunch)
        onRelaunch(program);
}

} // namespace tovek
