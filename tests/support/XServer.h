// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Program.h"

#include <QSize>
#include <QString>

namespace tovek {

/// A virtual X server of a test's own, on a display number that nobody else has. Any number of
/// them run side by side. It ends with this object.
class XServer
{
public:
    explicit XServer(QSize size = {1280, 800}, int depth = 24);

    /// The reason why no such server can run on this machine; empty when it can.
    static QString missing();

    /// False, with an error, when the server did not get ready. The keyboard is then the ordinary
    /// one of 105 keys, its key codes those of evdev, with the American layout.
    [[nodiscard]] bool start();
    /// Ends the server as a crash would: its clients are not told.
    void kill();
    QString displayName() const { return m_displayName; }
    qint64 pid() const { return m_server.pid(); }
    QString error() const { return m_error; }
    bool isRunning() const { return m_server.isRunning(); }

private:
    bool readDisplayName(int descriptor);
    bool setKeyboard();

    QSize m_size;
    int m_depth;
    Program m_server;
    QString m_displayName;
    QString m_error;
};

} // namespace tovek
