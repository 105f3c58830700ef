// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/PictureCut.h"

#include <QStringList>

class QDBusMessage;

namespace tovek {

/// A monitor that is switched on, as mutter tells of it.
struct MutterMonitor
{
    QString connector; ///< of several that show the same, one
    QPoint position; ///< in units of mutter's layout, whatever they are
    QSize native; ///< pixels, as it is turned

    bool operator==(const MutterMonitor &) const = default;
};

/// Of the reply of org.gnome.Mutter.DisplayConfig to GetCurrentState. Empty where it is another.
std::vector<MutterMonitor> mutterMonitors(const QDBusMessage &state);

/// The connector of each display, which may be laid out in other units than the monitors: they are
/// in the same order. Empty where these are not the same screens.
QStringList connectorsOf(const std::vector<PortalDisplay> &displays,
                         std::vector<MutterMonitor> monitors);

} // namespace tovek
