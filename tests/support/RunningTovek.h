// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Eye.h"
#include "support/Hand.h"
#include "support/TestDesktop.h"

#include <QJsonObject>

namespace tovek {

/// The program itself, running on a test desktop, with a shortcut for each way of capturing.
class RunningTovek
{
public:
    static constexpr const char *captureScreenshot = "Super_L+Shift_L+c";
    static constexpr const char *captureImage = "Super_L+Shift_L+i";
    static constexpr const char *captureText = "Super_L+Shift_L+t";

    RunningTovek(TestDesktop &desktop, const QString &path);

    /// The stored settings that hold the three shortcuts, without marks on words, and whatever else
    /// is given; what is given as null is not stored.
    static QJsonObject settings(const QJsonObject &more = {});
    bool writeSettings(const QByteArray &bytes) const;
    /// More of its environment; set before the start.
    std::map<QString, QString> variables;
    /// Whether it finds the models to recognise text with; set before the start. To load them costs
    /// more than all else that a capture does.
    bool readsText = false;
    /// Starts it without its window, and waits until the shortcuts are its own. False when that
    /// did not come about; `error` tells.
    [[nodiscard]] bool start(double scale = 1, const QJsonObject &more = {});
    /// As `start`, with the settings that are there.
    [[nodiscard]] bool startAsItIs(double scale = 1);

    /// Presses the keys, and waits until an overlay lies over each of the monitors.
    [[nodiscard]] bool open(const QString &chord, const QList<QRect> &monitors);
    bool covers(const QList<QRect> &monitors) const;
    /// Whether an overlay is up there, even one that another window hides.
    bool isShownOn(const QRect &monitor) const;
    /// Waits until none of its windows is to be seen.
    [[nodiscard]] bool waitUntilGone() const;
    /// True while another program than the asker holds the keys.
    bool holds(const QString &chord) const;

    Program &program() { return *m_program; }
    Hand &hand() { return m_hand; }
    Eye &eye() { return m_eye; }
    QString error() const { return m_error; }

private:
    TestDesktop &m_desktop;
    QString m_path;
    Hand m_hand;
    Eye m_eye;
    Program *m_program = nullptr;
    QString m_error;
};

} // namespace tovek
