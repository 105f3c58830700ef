// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Eye.h"
#include "support/Picture.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"
#include "support/XConnection.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <xcb/randr.h>

using namespace tovek;

namespace {

QList<QRect> monitorsOf(const QString &displayName)
{
    const XConnection connection(displayName);
    const XPtr<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, connection.root(), true), nullptr));
    QList<QRect> rects;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
         xcb_randr_monitor_info_next(&it))
        rects.append({it.data->x, it.data->y, it.data->width, it.data->height});
    return rects;
}

} // namespace

class TestTestDesktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        DesktopPlan plan;
        plan.monitors = {QRect(0, 0, 10, 10)};
        if (const QString reason = TestDesktop::missing(plan); !reason.isEmpty())
            QSKIP(qPrintable(reason));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void leavesNoFileAndNoServerBehind()
    {
        QString home;
        qint64 pid = 0;
        {
            TestDesktop desktop;
            QVERIFY2(desktop.start(), qPrintable(desktop.error()));
            home = desktop.home();
            pid = desktop.server().pid();
            QVERIFY(QDir(home).exists());
        }
        QVERIFY(!QDir(home).exists());
        QVERIFY(pid > 0);
        QVERIFY(!QFile::exists(QStringLiteral("/proc/%1").arg(pid)));
    }

    void hasAWindowManagerAndABus()
    {
        TestDesktop desktop;
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        const XConnection connection(desktop.displayName());
        QVERIFY(
            !connection.property(connection.root(), connection.atom("_NET_SUPPORTED")).isEmpty());
        Program *asker = desktop.run(QStringLiteral("dbus-send"),
                                     {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                                      QStringLiteral("--dest=org.freedesktop.DBus"),
                                      QStringLiteral("/org/freedesktop/DBus"),
                                      QStringLiteral("org.freedesktop.DBus.ListNames")});
        QVERIFY(asker);
        QCOMPARE(asker->waitForExit(), std::optional(0));
    }

    void hasNoBusWhenAskedForNone()
    {
        DesktopPlan plan;
        plan.hasBus = false;
        plan.windowManager.clear();
        TestDesktop desktop(plan);
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        Program *asker = desktop.run(
            QStringLiteral("dbus-send"),
            {QStringLiteral("--session"), QStringLiteral("/a"), QStringLiteral("a.b.c")});
        QVERIFY(asker);
        QVERIFY(asker->waitForExit() > std::optional(0));
    }

    void placesTheMonitorsOfThePlan()
    {
        DesktopPlan plan;
        plan.size = {2000, 1000};
        plan.monitors = {{800, 100, 1200, 900}, {0, 0, 800, 600}};
        TestDesktop desktop(plan);
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        QCOMPARE(monitorsOf(desktop.displayName()),
                 (QList<QRect>{{800, 100, 1200, 900}, {0, 0, 800, 600}}));
        QVERIFY(desktop.removeMonitor(TestDesktop::monitorName(1)));
        QCOMPARE(monitorsOf(desktop.displayName()), (QList<QRect>{{800, 100, 1200, 900}}));
    }

    void coversEachMonitorWithAPicture()
    {
        DesktopPlan plan;
        plan.size = {2000, 1000};
        plan.monitors = {{800, 100, 1200, 900}, {0, 0, 800, 600}};
        TestDesktop desktop(plan);
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        for (const QRect &monitor : plan.monitors) {
            QVERIFY(desktop.showPicture(monitor));
            const QImage seen = Eye(desktop.displayName()).lookWhenStill(monitor);
            for (const QPoint &at :
                 {QPoint(0, 0), QPoint(monitor.width() - 1, 300), QPoint(5, monitor.height() - 1)})
                QCOMPARE(seen.pixel(at), pictureColor(uint32_t(at.x()), uint32_t(at.y())));
        }
    }

    void tellsHowAProgramEnded()
    {
        TestDesktop desktop;
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        const QString shell = QStringLiteral("/bin/sh");
        const QString option = QStringLiteral("-c");
        Program *three = desktop.run(shell, {option, QStringLiteral("echo one; exit 3")});
        QVERIFY(three && three->waitForLine(QStringLiteral("one")));
        QCOMPARE(three->waitForExit(), std::optional(3));
        Program *killed = desktop.run(shell, {option, QStringLiteral("kill -9 $$")});
        QVERIFY(killed);
        QCOMPARE(killed->waitForExit(), std::optional(128 + 9));
        Program *sleeper = desktop.run(QStringLiteral("sleep"), {QStringLiteral("60")});
        QVERIFY(sleeper && sleeper->isRunning());
        QCOMPARE(sleeper->stop(), 128 + 15);
    }
};

QTEST_GUILESS_MAIN(TestTestDesktop)
#include "tst_TestDesktop.moc"
