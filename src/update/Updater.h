// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QDateTime>
#include <QObject>
#include <QProcess>

#include <chrono>
#include <functional>
#include <memory>

namespace tovek {

class Clock;
class UserDefaults;

/// What this build knows of updates.
struct UpdateConfiguration
{
    QString program; ///< the one that checks and installs; empty: this build cannot update itself
    QString installedVersion;
    std::chrono::milliseconds interval = std::chrono::hours(24); ///< between checks by itself
};

/// Checks for new versions, by request or at intervals, in a process of its own that lives only as
/// long as a check: nothing of the network is in this one. Main thread only.
class Updater : public QObject
{
    Q_OBJECT

public:
    /// The defaults are this updater's own store.
    Updater(UpdateConfiguration configuration, UserDefaults &defaults, Clock &clock);
    ~Updater() override;

    /// Why this build can never check; empty when it can.
    QString unavailableReason() const;
    bool canCheckForUpdates() const;
    /// Kept in the store. Off until the user turns it on.
    bool automaticallyChecksForUpdates() const;
    void setAutomaticallyChecksForUpdates(bool isOn);

    /// From now on checks happen by themselves, if they are on.
    void start();
    /// Does nothing while a check is under way; before the start, the check follows then.
    void checkForUpdates();

    /// True from the start of a check to its end, windows included; but not while an offer that
    /// nobody asked for waits for its answer. A request then brings that to the front.
    bool isChecking() const { return m_process && !m_isOffering; }
    /// Its program runs, with windows or without.
    bool isRunning() const { return m_process != nullptr; }
    /// Dark windows for that program, or those of the palette, with an accent unless it is invalid;
    /// nothing while it does not run.
    void setWindows(bool areDark, const QColor &accent = {});

    std::function<void()> onStarted; ///< the program, which has no window yet
    /// A check that somebody asked for came to no result, and no window has said so.
    std::function<void(const QString &text)> onFailed;
    /// A new version is in place, and the check is over: the program shall quit, and then this one
    /// be started.
    std::function<void(const QString &program)> onRelaunch;

Q_SIGNALS:
    void canCheckForUpdatesChanged();

private:
    enum class Reason { requested, scheduled };

    void schedule();
    void check(Reason reason);
    void readOutput();
    void checked();
    void setOffering(bool isOffering);
    /// Empty: without a failure.
    void ended(const QString &failure);

    UpdateConfiguration m_configuration;
    UserDefaults &m_defaults;
    Clock &m_clock;
    std::unique_ptr<QObject> m_schedule; ///< context of the next scheduled check
    std::unique_ptr<QProcess> m_process; ///< present only while a check is under way
    Reason m_reason = Reason::requested; ///< of that check
    bool m_isOffering = false; ///< that check has found something by itself
    QDateTime m_lastFailure; ///< of this process; invalid after a check that came to its end
    QString m_newProgram; ///< empty until a check has installed it
    bool m_isStarted = false;
    bool m_isAsked = false; ///< for a check, before the start
};

} // namespace tovek
