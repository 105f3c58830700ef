// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/Screens.h"
#include "platform/x11/OnX11TestDesktop.h"
#include "platform/x11/overlay/X11FrameGate.h"

#include <QGuiApplication>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

X11TestDesktop *desktop = nullptr;

} // namespace

class TestX11FrameGate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesItsIntervalFromTheScreen_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("none") << 0.0 << 16;
        QTest::newRow("too slow for a screen") << 23.9 << 16;
        QTest::newRow("cinema") << 24.0 << 41;
        QTest::newRow("usual") << 60.0 << 16;
        QTest::newRow("fast") << 144.0 << 6;
        QTest::newRow("fastest") << 250.0 << 4;
        QTest::newRow("too fast") << 250.1 << 16;
    }
    void takesItsIntervalFromTheScreen()
    {
        QFETCH(double, rate);
        QFETCH(int, milliseconds);
        QCOMPARE(frameInterval(rate).count(), milliseconds);
    }

    void letsOneFrameThroughInAnInterval()
    {
        X11FrameGate gate(X11Connection::create(), 2000ms);
        QVERIFY(gate.isOpen());
        gate.framePassed(X11FrameGate::Waiting::byCaller);
        QVERIFY(!gate.isOpen());
        QVERIFY(gate.untilNext() > 1000ms);
        QTRY_VERIFY(gate.isOpen());
    }

    void waitsForTheServer_data()
    {
        QTest::addColumn<bool>("isOwn");
        QTest::newRow("the toolkit's connection, which a thread reads") << false;
        QTest::newRow("one of our own, which nobody else reads") << true;
    }
    void waitsForTheServer()
    {
        QFETCH(bool, isOwn);
        const auto connection = isOwn ? X11Connection::open() : X11Connection::create();
        QVERIFY(connection);
        X11FrameGate gate(connection, 4ms);
        xcb_grab_server(desktop->client());
        desktop->sync();
        gate.framePassed(X11FrameGate::Waiting::here);
        connection->flush();
        QTest::qWait(100);
        QVERIFY(!gate.isOpen());
        QCOMPARE(gate.untilNext(), 1ms);
        xcb_ungrab_server(desktop->client());
        desktop->sync();
        QTRY_VERIFY(gate.isOpen());
    }
};

int main(int argc, char **argv)
{
    return runOnX11TestDesktop<TestX11FrameGate>(argc, argv, desktop, {640, 480});
}

#include "tst_X11FrameGate.moc"
