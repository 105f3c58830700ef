// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/clipboard/FocusedSelection.h"
#include "support/compositor/TestCompositor.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

/// The clipboard of a compositor that hears only the window with the keyboard.
class TestFocusedSelection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void copiesAlthoughAnotherWindowOpens_data()
    {
        QTest::addColumn<int>("windows");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("none does") << 0 << false;
        QTest::newRow("one, in silence") << 1 << false;
        QTest::newRow("one") << 1 << true;
        QTest::newRow("three") << 3 << true;
    }
    void copiesAlthoughAnotherWindowOpens()
    {
        QFETCH(int, windows);
        QFETCH(bool, isTold);
        Desk desk(windows, isTold);
        QVERIFY(desk.take());
        QTRY_COMPARE(desk.compositor.clipboardTypes(), QStringList{"text/plain"});
        QVERIFY(desk.selection->isOwner());
        QCOMPARE(desk.events, QStringList());
        desk.compositor.takeClipboard();
        QTRY_COMPARE(desk.events, QStringList{"lost"});
        QVERIFY(!desk.selection->isOwner());
    }

    void clearsAlthoughAnotherWindowOpens()
    {
        Desk desk(0, false);
        QVERIFY(desk.take());
        QTRY_COMPARE(desk.compositor.clipboardTypes(), QStringList{"text/plain"});
        desk.compositor.overtakeCopies(1);
        desk.selection->clear();
        QTRY_COMPARE(desk.compositor.clipboardTypes(), QStringList());
        QTRY_VERIFY(!desk.compositor.hasFocusedWindow());
    }

    void saysThatItCouldNotCopy()
    {
        Desk desk(1000000, true);
        desk.selection->setLimit(100ms);
        QVERIFY(desk.take());
        QTRY_COMPARE(desk.events, QStringList{"refused"});
        QVERIFY(!desk.selection->isOwner());
        QCOMPARE(desk.compositor.clipboardTypes(), QStringList());
    }

private:
    struct Desk
    {
        Desk(int windows, bool isTold)
            : compositor({.outputs = {{"one", QImage(100, 100, QImage::Format_RGB32)}},
                          .hasKeyboard = true,
                          .overtakenCopies = windows,
                          .tellsRefusedCopies = isTold})
        {
            if (!compositor.start())
                qFatal("the test's compositor does not start");
            const UseCompositor use(compositor);
            const auto connection = WaylandConnection::open();
            connection->handleInMainLoop();
            selection = FocusedSelection::create(connection);
            selection->onLost = [this] { events << "lost"; };
            selection->onRefused = [this] { events << "refused"; };
        }
        bool take()
        {
            return selection->take(
                {{"text/plain", "text/plain", SelectionBytes::copyOf("Some words")}},
                Selection::Readiness::ready);
        }

        TestCompositor compositor;
        std::unique_ptr<FocusedSelection> selection;
        QStringList events;
    };
};

QTEST_GUILESS_MAIN(TestFocusedSelection)
#include "tst_FocusedSelection.moc"
