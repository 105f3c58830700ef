// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11TestDesktop.h"

#include <QGuiApplication>
#include <QTest>

namespace tovek {

/// A monitor of `X11TestDesktop::setMonitor`; a name that begins with "*" is the primary one's.
struct TestMonitor
{
    const char *name;
    const char *geometry;
};

/// Runs the test on a server of 1366 x 768 pixels that the two monitors share, and points `desktop`
/// to it. Where there can be none, the test runs without and `desktop` stays null.
template <typename Test>
int runOnTwoMonitors(int argc, char **argv, X11TestDesktop *&desktop, TestMonitor first,
                     TestMonitor second)
{
    X11TestDesktop server;
    if (server.start(QSize(1366, 768), 24)
        && server.setMonitor(first.name, first.geometry, "screen")
        && server.setMonitor(second.name, second.geometry)) {
        desktop = &server;
        qputenv("DISPLAY", server.displayName());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    QGuiApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace tovek
