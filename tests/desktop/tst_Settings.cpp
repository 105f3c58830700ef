// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/Launched.h"
#include "support/Skip.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace tovek;

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void openAtLaunchAtTheirSize()
    {
        Launched l;
        QVERIFY(l.start());
        const SeenWindow window = windowsTitled(*l.eye, "General").first();
        QVERIFY(!window.isUnmanaged);
        QVERIFY(window.native.width() >= 450 && window.native.width() < 470);
        QVERIFY(window.native.height() >= 260 && window.native.height() < 300);
    }

    void stayClosedInTheBackground()
    {
        Launched l;
        l.desktop = std::make_unique<TestDesktop>();
        QVERIFY(l.desktop->start());
        l.eye = std::make_unique<Eye>(l.desktop->displayName());
        QVERIFY(l.launch({"--background"}));
        QVERIFY(l.answers());
        QVERIFY(!waitUntil([&] { return !windowsTitled(*l.eye, "General").isEmpty(); },
                           std::chrono::seconds(1)));
        QVERIFY(l.activateAction("about"));
        QVERIFY(l.isOpen("About"));
    }

    void stayClosedOnASecondLaunchInTheBackground()
    {
        Launched l;
        QVERIFY(l.start());
        QVERIFY(Hand(l.desktop->displayName()).tap("Escape"));
        QVERIFY(l.isClosed());
        Program *second = l.launch({"--background"});
        QVERIFY(second);
        QCOMPARE(second->waitForExit(), std::optional(0));
        QVERIFY(!waitUntil([&] { return !windowsTitled(*l.eye, "General").isEmpty(); },
                           std::chrono::seconds(1)));
        QVERIFY(l.program->isRunning());
    }

    void openAgainOnASecondLaunch()
    {
        Launched l;
        QVERIFY(l.start());
        QVERIFY(Hand(l.desktop->displayName()).tap("Escape"));
        QVERIFY(l.isClosed());
        Program *second = l.launch();
        QVERIFY(second);
        QCOMPARE(second->waitForExit(), std::optional(0));
        QVERIFY(l.isOpen("General"));
        QVERIFY(l.program->isRunning());
    }

    void opensNoSecondWindow()
    {
        Launched l;
        QVERIFY(l.start());
        QVERIFY(l.call({"org.freedesktop.Application.Activate", "{}"}));
        QVERIFY(l.activateAction("about"));
        QVERIFY(l.isOpen("About"));
        QVERIFY(windowsTitled(*l.eye, "General").isEmpty());
        QVERIFY(l.activateAction("preferences"));
        QVERIFY(l.isOpen("General"));
    }

    void comeToTheScreenUnderThePointer_data()
    {
        QTest::addColumn<QRect>("first");
        QTest::addColumn<QRect>("second");
        QTest::newRow("right of the first") << QRect(0, 0, 800, 600) << QRect(800, 0, 800, 600);
        QTest::newRow("left of the first") << QRect(800, 0, 800, 600) << QRect(0, 0, 800, 600);
        QTest::newRow("left of the first and higher")
            << QRect(800, 250, 800, 550) << QRect(0, 0, 800, 600);
        QTest::newRow("above the first") << QRect(0, 400, 800, 400) << QRect(0, 0, 800, 400);
    }
    void comeToTheScreenUnderThePointer()
    {
        QFETCH(QRect, first);
        QFETCH(QRect, second);
        DesktopPlan plan;
        plan.size = {1600, 800};
        plan.monitors = {first, second};
        Launched l;
        QVERIFY(l.start(plan));
        Hand hand(l.desktop->displayName());
        for (const QRect &screen : {second, first}) {
            hand.move(screen.center());
            QVERIFY(l.call({"org.freedesktop.Application.Activate", "{}"}));
            QVERIFY(waitUntil([&] {
                const auto windows = windowsTitled(*l.eye, "General");
                return windows.size() == 1 && screen.contains(windows.first().native);
            }));
        }
    }

    void capturesAndQuitsOnCommandsFromOutside()
    {
        Launched l;
        QVERIFY(l.start());
        QVERIFY(l.activateAction("start-capture"));
        QVERIFY(waitUntil([&] { return l.eye->overlays("tovek").size() == 1; }));
        QVERIFY(Hand(l.desktop->displayName()).tap("Escape"));
        QVERIFY(waitUntil([&] { return l.eye->overlays("tovek").isEmpty(); }));
        QVERIFY(l.activateAction("quit"));
        QCOMPARE(l.program->waitForExit(), std::optional(0));
    }

    void obeyTheKeysOfTheMenu()
    {
        Launched l;
        QVERIFY(l.start());
        QVERIFY(l.activateAction("about"));
        QVERIFY(l.isInFront("About"));
        QVERIFY(l.hand->tap("Control_L+comma"));
        QVERIFY(l.isInFront("General"));
        QVERIFY(l.hand->tap("Control_L+q"));
        QCOMPARE(l.program->waitForExit(), std::optional(0));
    }

    void setABrokenStoreAside()
    {
        Launched l;
        l.desktop = std::make_unique<TestDesktop>();
        QVERIFY(l.desktop->start());
        l.eye = std::make_unique<Eye>(l.desktop->displayName());
        const QString folder = l.desktop->configFolder() + "/tovek";
        QVERIFY(QDir().mkpath(folder));
        QFile store(folder + "/defaults.json");
        QVERIFY(store.open(QIODevice::WriteOnly));
        store.write("{ this is no JSON");
        store.close();
        l.program = l.launch();
        QVERIFY(l.isOpen("General"));
        QVERIFY(QFile::exists(folder + "/defaults.json.broken"));
        QCOMPARE(l.program->lines().filter("set aside").size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_Settings.moc"
