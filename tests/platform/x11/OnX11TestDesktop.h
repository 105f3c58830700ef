// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11TestDesktop.h"

#include <QGuiApplication>
#include <QTest>

#include <cstdio>

namespace tovek {

/// Runs the test as a client of an X11TestDesktop of that size, to which it points `desktop`. The
/// test is skipped where there can be none.
template <typename Test, typename Application = QGuiApplication>
int runOnX11TestDesktop(int argc, char **argv, X11TestDesktop *&desktop, QSize size)
{
    X11TestDesktop server;
    if (!server.start(size, 24)) {
        std::puts("SKIP: no Xvfb");
        return 77;
    }
    desktop = &server;
    qputenv("DISPLAY", server.displayName());
    qputenv("QT_QPA_PLATFORM", "xcb");
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace tovek
