// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdaterManager.h"

#include "foundation/MainThread.h"
#include "platform/Clock.h"

namespace tovek {

using namespace std::chrono_literals;

namespace {

constexpr auto startDelay = 1s;
constexpr auto refreshDelay = 100ms;

} // namespace

UpdaterManager::UpdaterManager(UpdateConfiguration configuration, UserDefaults &defaults,
                               Clock &clock)
    : m_clock(clock)
    , m_updaterController(std::move(configuration), defaults, clock)
{
    const Updater &updater = m_updaterController.updater();
    m_automaticallyChecksForUpdates = updater.automaticallyChecksForUpdates();
    m_canCheckForUpdates = updater.canCheckForUpdates();
    // Told at once, so that an idle program need not wake up to ask.
    connect(&updater, &Updater::canCheckForUpdatesChanged, this, &UpdaterManager::refreshCanCheck);
    m_clock.after(startDelay, this, [this] { m_updaterController.startUpdater(); });
}

void UpdaterManager::setAutomaticallyChecksForUpdates(bool isOn)
{
    Q_EMIT willChange();
    m_updaterController.updater().setAutomaticallyChecksForUpdates(isOn);
    m_automaticallyChecksForUpdates = m_updaterController.updater().automaticallyChecksForUpdates();
    Q_EMIT changed();
}

void UpdaterManager::checkForUpdates()
{
    Q_ASSERT(isMainThread());
    m_updaterController.checkForUpdates();
    m_clock.after(refreshDelay, this, [this] { refreshCanCheck(); });
}

QString UpdaterManager::checkObstacle() const
{
    if (!unavailableReason().isEmpty())
        return unavailableReason();
    // Before the updater has started, the request is kept until then.
    return m_updaterController.updater().isChecking()
        ? tr("Tovek is looking for a new version already")
        : QString();
}

void UpdaterManager::refreshCanCheck()
{
    const bool canCheck = m_updaterController.updater().canCheckForUpdates();
    if (canCheck == m_canCheckForUpdates)
        return;
    Q_EMIT willChange();
    m_canCheckForUpdates = canCheck;
    Q_EMIT changed();
}

} // namespace tovek
