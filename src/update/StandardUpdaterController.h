// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/Updater.h"

namespace tovek {

/// Owns the updater and starts it when it is told to. Main thread only.
class StandardUpdaterController
{
public:
    StandardUpdaterController(UpdateConfiguration configuration, UserDefaults &defaults,
                              Clock &clock)
        : m_updater(std::move(configuration), defaults, clock)
    {
    }

    Updater &updater() { return m_updater; }
    const Updater &updater() const { return m_updater; }
    void startUpdater() { m_updater.start(); }
    void checkForUpdates() { m_updater.checkForUpdates(); }

private:
    Updater m_updater;
};

} // namespace tovek
