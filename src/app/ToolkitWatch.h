// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

class QScreen;

namespace tovek {

/// Tells when the monitors have become such that the program would start on another window system
/// now than the one it runs on: on GNOME, one shows the own pixels of monitors at whole scales, the
/// other at fractions. A process keeps the one that it started on. Needs a QGuiApplication.
class ToolkitWatch : public QObject
{
public:
    ToolkitWatch();

    /// Whether anything would be lost by a new start. Asked again until it is idle.
    std::function<bool()> isIdle;
    std::function<bool()> isOutdated;
    std::function<void()> onOutdated;

private:
    void watch(const QScreen *screen);
    void check();

    QTimer m_delay;
};

} // namespace tovek
