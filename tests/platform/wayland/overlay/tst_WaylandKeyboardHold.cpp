// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/WaylandKeyboardHold.h"
#include "support/Skip.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QRasterWindow>
#include <QTest>

using namespace tovek;

namespace {

/// Collects the keys that reach it.
class Window : public QRasterWindow
{
public:
    QList<int> keys;

protected:
    void keyPressEvent(QKeyEvent *event) override { keys << event->key(); }
};

WaylandDesktop *desktop = nullptr; ///< null where there is none

} // namespace

/// A window that gets the keys that the desktop has for itself.
class TestWaylandKeyboardHold : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(desktop ? QString() : WaylandDesktop::missing()); }

    void bringsTheKeysOfTheDesktop()
    {
        WaylandHand hand(desktop->socket(), {1280, 800});
        QTest::qWait(200); // the toolkit takes its keyboard in
        desktop->tell({QStringLiteral("bindsym Mod4+Shift+s nop")});
        const auto hold = WaylandKeyboardHold::create();
        QVERIFY(hold);
        Window window;
        window.resize(200, 100);
        window.show();
        QTRY_VERIFY(window.isActive());

        const auto pressed = [&] {
            window.keys.clear();
            const bool isDone =
                hand.tap(QStringLiteral("Super_L+Shift_L+s")) && hand.tap(QStringLiteral("x"));
            return isDone && QTest::qWaitFor([&] { return window.keys.contains(Qt::Key_X); });
        };
        QVERIFY(pressed());
        QVERIFY(!window.keys.contains(Qt::Key_S));
        hold->hold(&window);
        QVERIFY(pressed());
        QVERIFY(window.keys.contains(Qt::Key_S));
        hold->hold(nullptr);
        QVERIFY(pressed());
        QVERIFY(!window.keys.contains(Qt::Key_S));
    }
};

int main(int argc, char **argv)
{
    WaylandDesktop ours;
    if (WaylandDesktop::missing().isEmpty()) {
        if (!ours.start())
            qFatal("%s", qPrintable(ours.error()));
        desktop = &ours;
        qputenv("WAYLAND_DISPLAY", ours.socket().toLocal8Bit());
        qputenv("XDG_RUNTIME_DIR", ours.environment().value("XDG_RUNTIME_DIR").toLocal8Bit());
        qputenv("QT_QPA_PLATFORM", "wayland");
    }
    QGuiApplication application(argc, argv);
    TestWaylandKeyboardHold test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_WaylandKeyboardHold.moc"
