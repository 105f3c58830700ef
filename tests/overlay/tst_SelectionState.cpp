// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionState.h"

#include <QTest>

using namespace tovek;
using Press = SelectionState::Press;
using Release = SelectionState::Release;

class TestSelectionState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void acceptsOnlyMoreThanTenPoints_data()
    {
        QTest::addColumn<double>("dx");
        QTest::addColumn<double>("dy");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("a mere click") << 0.0 << 0.0 << false;
        QTest::newRow("exactly ten") << 10.0 << 10.0 << false;
        QTest::newRow("ten wide") << 10.0 << 11.0 << false;
        QTest::newRow("ten high") << 11.0 << 10.0 << false;
        QTest::newRow("10.5 by 11") << 10.5 << 11.0 << true;
        QTest::newRow("left and down") << -10.5 << -11.0 << true;
        QTest::newRow("left and up") << -10.5 << 11.0 << true;
        QTest::newRow("right and down") << 10.5 << -11.0 << true;
    }
    void acceptsOnlyMoreThanTenPoints()
    {
        QFETCH(double, dx);
        QFETCH(double, dy);
        QFETCH(bool, accepted);
        SelectionState state;
        QCOMPARE(state.press({100, 100}), Press::startedSelection);
        state.moveTo({100 + dx, 100 + dy});
        QCOMPARE(state.release(), accepted ? Release::finalised : Release::discarded);
        QCOMPARE(state.isSelectionFinalized(), accepted);
        QCOMPARE(state.selectionRect().has_value(), accepted);
        QVERIFY(!state.selectionStart());
        if (accepted)
            QVERIFY((*state.selectionRect() == Rect::spanning({100, 100}, {100 + dx, 100 + dy})));
    }

    void letsTheUserDragAgainAfterAClick()
    {
        SelectionState state;
        state.press({5, 5});
        state.release();
        QCOMPARE(state.press({10, 10}), Press::startedSelection);
        QVERIFY(state.moveTo({50, 60}));
        QCOMPARE(state.release(), Release::finalised);
    }

    void keepsAFinalisedSelection()
    {
        SelectionState state = finalised();
        QCOMPARE(state.press({50, 50}), Press::outsideSelection);
        QVERIFY(!state.moveTo({300, 300}));
        QCOMPARE(state.release(), Release::nothing);
        QVERIFY((*state.selectionRect() == Rect{100, 100, 100, 50}));
        QCOMPARE(state.press({150, 120}), Press::insideSelection);
        QVERIFY(!state.moveTo({300, 300}));
    }

    void resizesByAHandleAndFinalisesAgain()
    {
        SelectionState state = finalised();
        QCOMPARE(state.press({99, 120}), Press::startedResize);
        QVERIFY(state.isResizing());
        QVERIFY(state.moveTo({79, 500}));
        QVERIFY((*state.selectionRect() == Rect{80, 100, 120, 50}));
        // Measured from where the drag began, not from the last position.
        QVERIFY(state.moveTo({500, 120}));
        QVERIFY((*state.selectionRect() == Rect{180, 100, 20, 50}));
        QCOMPARE(state.release(), Release::finalised);
        QVERIFY(!state.isResizing());
        QVERIFY(state.isSelectionFinalized());
    }

    void reportsOnlyRealChanges()
    {
        SelectionState state;
        QVERIFY(!state.moveTo({1, 1}));
        state.press({10, 10});
        QVERIFY(state.moveTo({20, 20}));
        QVERIFY(!state.moveTo({20, 20}));
    }

    void hasHandlesOnlyWhenFinalised()
    {
        SelectionState state;
        QVERIFY(!state.hover(Point{99, 99}));
        state.press({100, 100});
        state.moveTo({200, 150});
        QVERIFY(!state.hover(Point{99, 99}));
        state.release();
        QVERIFY(state.hover(Point{99, 99}));
        QVERIFY(state.hoveredHandle() == ResizeHandle::bottomLeft);
        QVERIFY(!state.hover(Point{98, 98}));
        QVERIFY(state.hover(Point{150, 120}));
        QVERIFY(!state.hoveredHandle());
    }

    void reachesTheScreensEdges_data()
    {
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("scale %.2f", scale) << scale;
    }
    void reachesTheScreensEdges()
    {
        QFETCH(double, scale);
        const ViewSpace screen{{1920 / scale, 1080 / scale}, scale};
        const auto pixel = [&](int x, int y) {
            return screen.pointFromWidget(QPointF(x, y) / scale);
        };
        const Rect all{0, 0, screen.size.width, screen.size.height};
        for (const auto &[from, to] :
             {std::pair(pixel(0, 0), pixel(1919, 1079)), std::pair(pixel(1919, 1079), pixel(0, 0)),
              std::pair(pixel(1919, 0), pixel(0, 1079))}) {
            SelectionState state(screen);
            state.press(from);
            state.moveTo(to);
            QCOMPARE(state.release(), Release::finalised);
            QVERIFY((*state.selectionRect() == all));
        }
        // One pixel before the last is itself.
        SelectionState state(screen);
        state.press(pixel(0, 0));
        state.moveTo(pixel(1918, 1078));
        QCOMPARE(screen.pixelsFromRect(*state.selectionRect()).toRect(), QRect(0, 0, 1918, 1078));
    }

    void resizesToTheScreensEdges()
    {
        SelectionState state = finalised(ViewSpace{{300, 200}, 1});
        // Taken four points beside the corner, and pushed into that of the screen.
        state.press({204, 96});
        QVERIFY(state.isResizing());
        state.moveTo({299, 1});
        QVERIFY((*state.selectionRect() == Rect{100, 0, 200, 150}));
        QCOMPARE(state.release(), Release::finalised);
        // The edge is taken by the pixels next to it.
        QVERIFY(state.hover(Point{299, 60}));
        QVERIFY(state.hoveredHandle() == ResizeHandle::right);
        QCOMPARE(state.press({299, 60}), Press::startedResize);
        state.moveTo({249, 60});
        QVERIFY((*state.selectionRect() == Rect{100, 0, 149, 150}));
    }
    void resizesToTheNearEdgesToo()
    {
        SelectionState state = finalised(ViewSpace{{300, 200}, 1});
        state.press({97, 154});
        state.moveTo({0, 200});
        QVERIFY((*state.selectionRect() == Rect{0, 100, 200, 100}));
        // Away from an edge the offset counts, as ever.
        state.moveTo({1, 199});
        QVERIFY((*state.selectionRect() == Rect{4, 100, 196, 95}));
    }

    void keepsWhatIsOnItsScreen()
    {
        SelectionState state(ViewSpace{{300, 200}, 1});
        state.press({250, 150});
        state.moveTo({450, -20});
        QVERIFY((*state.selectionRect() == Rect{250, -20, 200, 170}));
        QVERIFY((*state.selectionOnScreen() == Rect{250, 0, 50, 150}));
        QCOMPARE(state.release(), Release::finalised);
        QVERIFY((*state.selectionRect() == Rect{250, 0, 50, 150}));
    }
    void acceptsBySizeOnItsScreen()
    {
        SelectionState state(ViewSpace{{300, 200}, 1});
        state.press({290, 150});
        state.moveTo({450, 20}); // ten points of it are here
        QCOMPARE(state.release(), Release::discarded);
        state.press({299, 150}); // the edge itself: nothing of it is here
        state.moveTo({450, 20});
        QVERIFY((*state.selectionOnScreen() == Rect{300, 20, 0, 130}));
        QCOMPARE(state.release(), Release::discarded);
    }
    void reachesBeyondItsScreenWhileResized()
    {
        SelectionState state = finalised(ViewSpace{{300, 200}, 1});
        state.press({202, 120});
        state.moveTo({402, 120});
        QVERIFY((*state.selectionRect() == Rect{100, 100, 300, 50}));
        QVERIFY((*state.selectionOnScreen() == Rect{100, 100, 200, 50}));
        QCOMPARE(state.release(), Release::finalised);
        QVERIFY((*state.selectionRect() == Rect{100, 100, 200, 50}));
    }

private:
    static SelectionState finalised(const std::optional<ViewSpace> &screen = {})
    {
        SelectionState state(screen);
        state.press({100, 100});
        state.moveTo({200, 150});
        state.release();
        return state;
    }
};

QTEST_APPLESS_MAIN(TestSelectionState)
#include "tst_SelectionState.moc"
