// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/StandardUpdaterController.h"

namespace tovek {

/// The program's only contact with the updater. Main thread only.
class UpdaterManager : public QObject
{
    Q_OBJECT

public:
    /// The updater starts a second later.
    UpdaterManager(UpdateConfiguration configuration, UserDefaults &defaults, Clock &clock);

    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    void setAutomaticallyChecksForUpdates(bool isOn);
    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    void checkForUpdates();
    /// See Updater.
    QString unavailableReason() const { return m_updaterController.updater().unavailableReason(); }

    /// Why no check can be made now; empty when one can.
    QString checkObstacle() const;

    StandardUpdaterController &updaterController() { return m_updaterController; }

Q_SIGNALS:
    /// Before each change of one of the two values.
    void willChange();
    void changed();

private:
    void refreshCanCheck();

    Clock &m_clock;
    StandardUpdaterController m_updaterController;
    bool m_automaticallyChecksForUpdates = false;
    bool m_canCheckForUpdates = false;
};

} // namespace tovek
