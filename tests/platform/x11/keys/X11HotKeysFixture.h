// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/TestKeyboard.h"
#include "platform/x11/keys/X11HotKeys.h"
#include "support/Skip.h"
#include "support/Wait.h"
#include "support/XServer.h"

#include <QApplication>
#include <QProcess>
#include <QTest>

namespace tovek {

/// Hot keys and the keyboard of a real X server, on which the first of them is held: Control, Super
/// and C, as number 1. What is told stands in the log as "down 1", "up 1".
class X11HotKeysFixture
{
protected:
    static constexpr KeyCombo capture{8, 0x1100};
    static constexpr int keyC = 46;

    void setUp()
    {
        m_keyboard = std::make_unique<TestKeyboard>(qEnvironmentVariable("DISPLAY"));
        m_log.clear();
        open();
        QCOMPARE(m_hotKeys->grab(1, capture), 0);
        m_hotKeys->startDispatching();
    }
    void tearDown()
    {
        m_keyboard.reset();
        m_hotKeys.reset();
        setLayout("us");
    }
    void open()
    {
        m_hotKeys.reset();
        m_hotKeys = X11HotKeys::create();
        QVERIFY(m_hotKeys);
        m_hotKeys->onPressed = [this](quint32 id) { m_log << QStringLiteral("down %1").arg(id); };
        m_hotKeys->onReleased = [this](quint32 id) { m_log << QStringLiteral("up %1").arg(id); };
    }
    bool waitForLog(int lines) const
    {
        return waitUntil([&] { return m_log.size() >= lines; });
    }
    static void run(const char *program, const QList<const char *> &arguments)
    {
        QStringList list;
        for (const char *argument : arguments)
            list << QString::fromLatin1(argument);
        QCOMPARE(QProcess::execute(QString::fromLatin1(program), list), 0);
    }
    static void setLayout(const char *layout) { run("setxkbmap", {"-layout", layout}); }

    std::unique_ptr<TestKeyboard> m_keyboard;
    std::unique_ptr<X11HotKeys> m_hotKeys;
    QStringList m_log;
};

/// The main function of a test with a server of its own, where there can be one.
template <typename Test>
int runOnXServer(int argc, char **argv)
{
    XServer server;
    if (XServer::missing().isEmpty()) {
        if (!server.start())
            qFatal("%s", qPrintable(server.error()));
        qputenv("DISPLAY", server.displayName().toLatin1());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    // No desktop of the machine's has a say in this test.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace tovek
