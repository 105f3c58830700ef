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
        QCOMPARE(state.isSelectionFinalized, accepted);
        QCOMPARE(state.selectionRect.has_value(), accepted);
        QVERIFY(!state.selectionStart);
        if (accepted)
            QVERIFY((*state.selectionRect == Rect::spanning({100, 100}, {100 + dx, 100 + dy})));
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
        QVERIFY((*state.selectionRect == Rect{100, 100, 100, 50}));
        QCOMPARE(state.press({150, 120}), Press::insideSelection);
        QVERIFY(!state.moveTo({300, 300}));
    }

    void resizesByAHandleAndFinalisesAgain()
    {
        SelectionState state = finalised();
        QCOMPARE(state.press({99, 120}), Press::startedResize);
        QVERIFY(state.isResizing());
        QVERIFY(state.moveTo({79, 500}));
        QVERIFY((*state.selectionRect == Rect{80, 100, 120, 50}));
        // Measured from where the drag began, not from the last position.
        QVERIFY(state.moveTo({500, 120}));
        QVERIFY((*state.selectionRect == Rect{180, 100, 20, 50}));
        QCOMPARE(state.release(), Release::finalised);
        QVERIFY(!state.isResizing());
        QVERIFY(state.isSelectionFinalized);
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
        QVERIFY(!state.hover({99, 99}));
        state.press({100, 100});
        state.moveTo({200, 150});
        QVERIFY(!state.hover({99, 99}));
        state.release();
        QVERIFY(state.hover({99, 99}));
        QVERIFY(state.hoveredHandle == ResizeHandle::bottomLeft);
        QVERIFY(!state.hover({98, 98}));
        QVERIFY(state.hover({150, 120}));
        QVERIFY(!state.hoveredHandle);
    }

private:
    static SelectionState finalised()
    {
        SelectionState state;
        state.press({100, 100});
        state.moveTo({200, 150});
        state.release();
        return state;
    }
};

QTEST_APPLESS_MAIN(TestSelectionState)
#include "tst_SelectionState.moc"
