// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <QTimer>

namespace tovek {

/// The user's message bus, which may die and come back while the program runs. There is one in a
/// process, and it is the first that speaks with the bus. Main thread only.
class SessionBus : public QObject
{
    Q_OBJECT

public:
    /// Connects, or does without a bus that has not answered within a second; the toolkit then does
    /// without it as well.
    SessionBus();
    ~SessionBus() override;

    /// The present connection; one that is not connected while there is no bus.
    const QDBusConnection &connection() const { return m_connection; }
    /// Of the process; the toolkit's where no SessionBus was made.
    static QDBusConnection current();

    /// Tells from now on when the bus goes, and looks for another one. Needs the application.
    void startWatching();

Q_SIGNALS:
    /// It went, or a new one came.
    void changed(const QDBusConnection &bus);

private Q_SLOTS:
    void lost();

private:
    void listen();
    void lookForAnother();
    void connectAgain();

    QByteArray m_address;
    QDBusConnection m_connection;
    QTimer m_search; ///< runs while there is no bus but may be one
    int m_serial = 0;
};

} // namespace tovek
