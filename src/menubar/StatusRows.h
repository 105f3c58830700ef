// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;

namespace tovek {

/// The rows of the status item's menu: what they say, and what they do. Main thread only.
class StatusRows
{
public:
    struct Actions
    {
        std::function<void()> startCapture, captureImage, captureText;
        std::function<void()> checkForUpdates, openPreferences, openAbout, quit;
    };

    /// A row whose action is empty is shown and cannot be chosen.
    Actions actions;
    /// Why no check for updates can be made now, shown on its item; empty when one can.
    std::function<QString()> updateObstacle;
    /// Labels a capture item with the shortcut of this name, and keeps it so while it is shown.
    std::function<void(QAction &item, const QString &shortcutName)> bindShortcut;

    void addTo(QMenu &menu);
    /// For a host that draws the menu itself, as things are now.
    std::vector<TrayMenuRow> forHost();
    /// One of the rows that the host was given last; of any other number nothing comes.
    void chooseForHost(int row);

private:
    QObject m_context; ///< of what was chosen and has not run yet
    std::unique_ptr<QMenu> m_hostMenu; ///< behind the rows that the host shows
};

} // namespace tovek
