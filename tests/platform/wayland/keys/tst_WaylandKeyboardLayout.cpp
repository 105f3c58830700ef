// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/keys/WaylandKeyboardLayout.h"
#include "support/Skip.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QStandardPaths>

using namespace tovek;

/// The layout of a compositor whose keyboards come and change.
class TestWaylandKeyboardLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(WaylandDesktop::missing());
        QVERIFY2(m_desktop.start(), qPrintable(m_desktop.error()));
        qputenv("WAYLAND_DISPLAY", m_desktop.socket().toLocal8Bit());
    }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void isAmericanWithoutAKeyboard()
    {
        const auto layout = WaylandKeyboardLayout::create();
        QVERIFY(layout);
        QCOMPARE(layout->character(0), QStringLiteral("a"));
        QCOMPARE(layout->shiftedCharacter(20), QStringLiteral("#"));
        QVERIFY(!layout->character(105));
        QCOMPARE(layout->keyCodeOfScanCode(38), 0);
        QCOMPARE(layout->characterOfScanCode(38), QStringLiteral("a"));
    }

    void followsTheKeyboard()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("wtype")).isEmpty())
            QSKIP("wtype is not installed");
        const auto layout = WaylandKeyboardLayout::create();
        int changes = 0;
        layout->onChanged = [&] { ++changes; };
        layout->startDispatching();
        const WaylandHand hand(m_desktop.socket(), {1280, 800});
        QTRY_VERIFY(changes > 0);
        QCOMPARE(layout->character(0), QStringLiteral("a"));
        // Brings a keyboard of its own, on which the first key types this.
        changes = 0;
        m_desktop.output("wtype", {"-s", "300", QStringLiteral("é")});
        QTRY_VERIFY(changes > 0);
    }

    void isNotThereWithoutACompositor()
    {
        const QByteArray before = qgetenv("WAYLAND_DISPLAY");
        qputenv("WAYLAND_DISPLAY", "/nowhere");
        QVERIFY(!WaylandKeyboardLayout::create());
        qputenv("WAYLAND_DISPLAY", before);
    }

private:
    WaylandDesktop m_desktop;
};

QTEST_GUILESS_MAIN(TestWaylandKeyboardLayout)
#include "tst_WaylandKeyboardLayout.moc"
