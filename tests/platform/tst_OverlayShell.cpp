// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "platform/OverlayDesks.h"

#include <QWindow>

#include <array>

using namespace tovek;

namespace {

constexpr int deadline = 20000;

} // namespace

/// What every implementation of the overlays' windows keeps to.
class TestOverlayShell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
#ifdef TOVEK_WITH_WAYLAND
        if (compositor)
            return addImplementations(std::vector<RealImplementation>{{"layer shell", {}}});
#endif
        addImplementations(std::vector<RealImplementation>{
            {"x11", desktop ? QString() : QStringLiteral("Xvfb or xrandr is missing")}});
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QFETCH_GLOBAL(QString, implementation);
        m_desk = makeDesk(implementation);
        m_screens = m_desk->screens();
        QCOMPARE(m_screens.size(), size_t(2));
        for (size_t index = 0; index < 2; ++index) {
            m_desk->paintBelow(m_screens[index], before);
            m_windows[index] = std::make_unique<QWindow>();
            m_surfaces[index] = m_desk->shell().create(*m_windows[index], m_screens[index],
                                                       m_desk->freeze(m_screens[index]));
        }
    }
    void cleanup()
    {
        for (size_t index = 0; index < 2; ++index) {
            m_surfaces[index].reset();
            m_windows[index].reset();
        }
        m_desk.reset();
    }

    void showsNothingBeforeItIsOrderedFront()
    {
        QVERIFY(!first().isVisible());
        QVERIFY(!first().isKey());
        m_desk->paintBelow(m_screens[0], after);
        QCOMPARE(m_desk->pixel(m_screens[0], {5, 5}), after);
    }

    void showsTheFrozenDisplayAtOnce()
    {
        m_desk->paintBelow(m_screens[0], after);
        first().orderFrontRegardless();
        QVERIFY(first().isVisible());
        QVERIFY(!first().isKey());
        QVERIFY(!second().isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        first().orderFrontRegardless();
        QVERIFY(first().isVisible());
    }

    void showsAllThatWereSentTogether()
    {
        for (const Screen &screen : m_screens)
            m_desk->paintBelow(screen, after);
        first().sendToFront();
        second().sendToFront();
        first().orderFrontRegardless();
        second().orderFrontRegardless();
        for (size_t index = 0; index < 2; ++index) {
            QVERIFY(m_surfaces[index]->isVisible());
            QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[index], {5, 5}), before, deadline);
        }
    }

    void goesWhenItIsOrderedOut()
    {
        first().orderOut(); // was not there
        QVERIFY(!first().isVisible());
        first().orderFrontRegardless();
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        first().makeKey();
        for (int count = 0; count < 2; ++count) {
            first().orderOut();
            QVERIFY(!first().isVisible());
            QVERIFY(!first().isKey());
        }
        m_desk->paintBelow(m_screens[0], after);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), after, deadline);
    }

    void goesWithItsObject()
    {
        first().orderFrontRegardless();
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        m_surfaces[0].reset();
        m_desk->paintBelow(m_screens[0], after);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), after, deadline);
    }

    void bringsTheKeysToOneSurfaceAtATime()
    {
        first().orderFrontRegardless();
        second().orderFrontRegardless();
        first().makeKey();
        QTRY_VERIFY_WITH_TIMEOUT(first().isKey(), deadline);
        QVERIFY(!second().isKey());
        second().makeKey();
        QTRY_VERIFY_WITH_TIMEOUT(second().isKey(), deadline);
        QVERIFY(!first().isKey());
        first().orderOut(); // has none to let go of
        QVERIFY(second().isKey());
    }

    void takesTheKeysAsSoonAsItShows()
    {
        first().makeKey();
        QVERIFY(!first().isKey());
        first().orderFrontRegardless();
        QTRY_VERIFY_WITH_TIMEOUT(first().isKey(), deadline);
    }

    void presentsListsOverTheFrozenDisplay()
    {
        first().orderFrontRegardless();
        DisplayList list;
        list.items = {DisplayList::Fill{QRect(4, 4, 10, 10), 0xff00ff00},
                      DisplayList::Fill{QRect(8, 8, 10, 10), 0xff0000ff}};
        QVERIFY(first().present(list));
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), 0xff00ff00, deadline);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {9, 9}), 0xff0000ff, deadline);
        QCOMPARE(m_desk->pixel(m_screens[0], {3, 4}), before);
        QVERIFY(first().present({}));
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {9, 9}), before, deadline);
    }

    void leavesWithItsScreenAndSaysSo()
    {
        int farewells = 0;
        for (size_t index = 0; index < 2; ++index) {
            m_surfaces[index]->onScreenGone = [&farewells, index] { farewells += index ? 1 : 100; };
            m_surfaces[index]->orderFrontRegardless();
        }
        second().makeKey();
        QVERIFY(m_desk->removeSecondMonitor());
        QTRY_COMPARE_WITH_TIMEOUT(farewells, 1, deadline);
        QVERIFY(!second().isVisible());
        QVERIFY(!second().isKey());
        QVERIFY(first().isVisible());
        QVERIFY(m_desk->addSecondMonitor());
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->screens().size(), size_t(2), deadline);
        QCOMPARE(farewells, 1);
    }

private:
    static constexpr QRgb before = 0xff336699;
    static constexpr QRgb after = 0xffee1122;

    OverlaySurface &first()
    {
        return *m_surfaces[0];
    }
    OverlaySurface &second()
    {
        return *m_surfaces[1];
    }

    std::unique_ptr<Desk> m_desk;
    std::vector<Screen> m_screens;
    std::array<std::unique_ptr<QWindow>, 2> m_windows;
    std::array<std::unique_ptr<OverlaySurface>, 2> m_surfaces;
};

int main(int argc, char **argv)
{
#ifdef TOVEK_WITH_WAYLAND
    if (qEnvironmentVariableIsSet("TOVEK_TEST_WAYLAND"))
        return runOnCompositor<QGuiApplication, TestOverlayShell>(
            argc, argv,
            {{outputOf("Left", {640, 768}, {}), outputOf("Right", {726, 600}, {640, 0})}},
            compositor);
#endif
    return runOnTwoMonitors<TestOverlayShell>(argc, argv, desktop, {"*Left", "640/200x768/200+0+0"},
                                              {"Right", "726/200x600/200+640+100"});
}

#include "tst_OverlayShell.moc"
