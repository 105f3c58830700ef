// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QRect>

#include <vector>

namespace tovek {

/// A monitor of the X server, whole or cut out of an output.
struct X11Monitor
{
    quint32 id = 0; ///< the atom of its name: unique, and the same again after replugging
    QString name;
    QRect native; ///< native pixels, y down, global; never beyond the root window

    bool operator==(const X11Monitor &) const = default;
};

/// The monitors, the primary one first. Asks the server again only after it told of a change.
/// Main thread only.
class X11Monitors : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit X11Monitors(std::shared_ptr<X11Connection> connection);
    ~X11Monitors() override;
    const std::vector<X11Monitor> &list() const;

Q_SIGNALS:
    /// The list differs from the one last handed out, or may do so.
    void changed();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    std::vector<X11Monitor> query() const;
    void announce();
    void checkSoon();

    std::shared_ptr<X11Connection> m_connection;
    mutable bool m_isKnown = false;
    mutable std::vector<X11Monitor> m_list;
    bool m_isAnnouncing = false;
    bool m_isChecking = false;
};

} // namespace tovek
