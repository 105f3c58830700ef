// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeTray.h"
#include "platform/FirstTray.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestFirstTray : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup()
        {
            auto one = std::make_unique<FakeTray>();
            auto two = std::make_unique<FakeTray>();
            first = one.get();
            second = two.get();
            first->host = second->host = false;
            second->drags = false;
            std::vector<std::unique_ptr<Tray>> both;
            both.push_back(std::move(one));
            both.push_back(nullptr);
            both.push_back(std::move(two));
            tray = std::make_unique<FirstTray>(std::move(both));
            tray->setVisible(true);
            tray->setToolTip(QStringLiteral("Tip"));
        }
        FakeTray *first;
        FakeTray *second;
        std::unique_ptr<FirstTray> tray;
    };

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsNothingWithoutAHost()
    {
        Setup s;
        QVERIFY(!s.tray->hasHost());
        QVERIFY(!s.tray->canDrag());
        QVERIFY(s.tray->geometry().isEmpty());
        QVERIFY(s.tray->dragSource());
    }

    void prefersTheFirstHost()
    {
        Setup s;
        int changes = 0;
        s.tray->onHostChanged = [&] { ++changes; };
        s.second->setHost(true);
        QVERIFY(s.tray->hasHost());
        QVERIFY(!s.tray->canDrag());
        QCOMPARE(s.second->isVisible, std::optional(true));
        QCOMPARE(s.second->toolTip, QStringLiteral("Tip"));
        s.first->setHost(true);
        QVERIFY(s.tray->canDrag());
        QCOMPARE(s.second->isVisible, std::optional(false));
        QCOMPARE(s.first->isVisible, std::optional(true));
        s.first->setHost(false);
        QCOMPARE(s.second->isVisible, std::optional(true));
        QCOMPARE(changes, 3);
    }

    void takesALastResortOnlyWhereThereIsNothingElse()
    {
        Setup s;
        s.first->isPoor = true;
        s.second->isLooking = true;
        s.first->setHost(true);
        QVERIFY(!s.tray->hasHost()); // the other may still find one
        s.second->setHost(true);
        QCOMPARE(s.second->isVisible, std::optional(true));
        QVERIFY(s.first->isVisible != std::optional(true));
        s.second->setHost(false);
        QCOMPARE(s.first->isVisible, std::optional(true));
        QCOMPARE(s.second->isVisible, std::optional(false));
        s.second->setHost(true);
        QCOMPARE(s.second->isVisible, std::optional(true));
        QCOMPARE(s.first->isVisible, std::optional(false));
    }

    void looksForAHostUntilAllHaveLooked()
    {
        Setup s;
        s.first->isLooking = s.second->isLooking = true;
        int changes = 0;
        s.tray->onHostChanged = [&] { ++changes; };
        s.first->setHost(false);
        QVERIFY(s.tray->isLookingForHost());
        s.second->setHost(false);
        QVERIFY(!s.tray->isLookingForHost());
        QCOMPARE(changes, 2);
    }

    void reportsForTheShownItemOnly()
    {
        Setup s;
        s.first->setHost(true);
        QStringList events;
        s.tray->onPressed = [&](QPointF) { events << QStringLiteral("pressed"); };
        s.tray->onMoved = [&](QPointF) { events << QStringLiteral("moved"); };
        s.tray->onReleased = [&](QPointF) { events << QStringLiteral("released"); };
        s.tray->onMenuRequested = [&] { events << QStringLiteral("menu"); };
        for (FakeTray *tray : {s.first, s.second}) {
            tray->press({});
            tray->moveTo({});
            tray->release({});
            tray->onMenuRequested();
        }
        QCOMPARE(events, QStringList({"pressed", "moved", "released", "menu"}));
    }
};

QTEST_GUILESS_MAIN(TestFirstTray)
#include "tst_FirstTray.moc"
