// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SettingsPlacement.h"
#include "fakes/FakeScreens.h"

#include <QTest>

using namespace tovek;

class TestSettingsPlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picksTheScreenUnderThePointer_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<quint32>("expected");
        QTest::newRow("on the first") << 10.0 << 10.0 << 1u;
        QTest::newRow("last point of the first") << 1439.9 << 10.0 << 1u;
        QTest::newRow("first point of the second") << 1440.0 << 10.0 << 2u;
        QTest::newRow("on no screen: the main one") << -5.0 << 10.0 << 1u;
    }
    void picksTheScreenUnderThePointer()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        FakeScreens screens;
        screens.screens = {FakeScreens::screen(1, {0, 0, 1440, 900}),
                           FakeScreens::screen(2, {1440, 0, 1920, 1080})};
        screens.mouse = {x, y};
        QTEST(*targetScreen(screens)->displayId, "expected");
    }

    void picksNoneWithoutScreens() { QVERIFY(!targetScreen(FakeScreens())); }

    void centresInTheVisiblePartOfTheScreen()
    {
        Screen screen = FakeScreens::screen(2, {1440, 0, 1920, 1080});
        screen.visibleFrame = {1500, 0, 1860, 1040};
        const auto origin = originOnScreen({100, 100, 450, 260}, screen);
        QVERIFY((origin == Point{1500 + 930 - 225, 520 - 130}));
    }

    void keepsAWindowThatIsThereAlready()
    {
        const Screen screen = FakeScreens::screen(1, {0, 0, 1440, 900});
        QVERIFY(!originOnScreen({0, 0, 450, 260}, screen));
        // Its larger part decides.
        QVERIFY(!originOnScreen({1440 - 226, 0, 450, 260}, screen));
        QVERIFY(originOnScreen({1440 - 225, 0, 450, 260}, screen));
    }
};

QTEST_APPLESS_MAIN(TestSettingsPlacement)
#include "tst_SettingsPlacement.moc"
