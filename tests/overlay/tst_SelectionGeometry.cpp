// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionGeometry.h"

#include <QTest>

using namespace tovek;

using OptionalHandle = std::optional<ResizeHandle>;

class TestSelectionGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheHandleOutsideTheSelection_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<OptionalHandle>("handle");
        // The selection spans 100 to 200 by 100 to 150.
        const auto row = [](const char *name, double x, double y, OptionalHandle handle) {
            QTest::newRow(name) << x << y << handle;
        };
        row("one point inside a corner", 101, 101, {});
        row("one point outside a corner", 99, 99, ResizeHandle::bottomLeft);
        row("on the corner itself", 100, 100, ResizeHandle::bottomLeft);
        row("far end of the bottom left zone", 90, 90, ResizeHandle::bottomLeft);
        row("just past it", 89.9, 90, {});
        row("bottom right, far end", 210, 90, ResizeHandle::bottomRight);
        row("past bottom right", 210.1, 90, {});
        row("top left, far end", 90, 160, ResizeHandle::topLeft);
        row("past top left", 90, 160.1, {});
        row("top right, far end", 210, 160, ResizeHandle::topRight);
        row("past top right", 210.1, 160.1, {});
        row("top right corner itself", 200, 150, ResizeHandle::topRight);
        row("on the top edge", 150, 150, ResizeHandle::top);
        row("end of the top band", 150, 156, ResizeHandle::top);
        row("past the top band", 150, 156.1, {});
        row("on the bottom edge", 150, 100, ResizeHandle::bottom);
        row("end of the bottom band", 150, 94, ResizeHandle::bottom);
        row("past the bottom band", 150, 93.9, {});
        row("on the left edge", 100, 120, ResizeHandle::left);
        row("end of the left band", 94, 120, ResizeHandle::left);
        row("past the left band", 93.9, 120, {});
        row("on the right edge", 200, 120, ResizeHandle::right);
        row("end of the right band", 206, 120, ResizeHandle::right);
        row("past the right band", 206.1, 120, {});
        row("in the middle", 150, 125, {});
    }
    void findsTheHandleOutsideTheSelection()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(OptionalHandle, handle);
        QVERIFY((handleAt({x, y}, {100, 100, 100, 50}) == handle));
    }

    void prefersTheBottomLeftCornerOfATinySelection()
    {
        QVERIFY((handleAt({100, 100}, {100, 100, 0, 0}) == ResizeHandle::bottomLeft));
    }

    void movesTheEdgesOfTheHandle_data()
    {
        QTest::addColumn<ResizeHandle>("handle");
        QTest::addColumn<double>("dx");
        QTest::addColumn<double>("dy");
        QTest::addColumn<Rect>("expected");
        const auto row = [](const char *name, ResizeHandle handle, double dx, double dy,
                            const Rect &expected) {
            QTest::newRow(name) << handle << dx << dy << expected;
        };
        // From (100, 100, 100, 50).
        row("top left", ResizeHandle::topLeft, 5, 7, {105, 100, 95, 57});
        row("top", ResizeHandle::top, 5, 7, {100, 100, 100, 57});
        row("top right", ResizeHandle::topRight, 5, 7, {100, 100, 105, 57});
        row("left", ResizeHandle::left, 5, 7, {105, 100, 95, 50});
        row("right", ResizeHandle::right, 5, 7, {100, 100, 105, 50});
        row("bottom left", ResizeHandle::bottomLeft, 5, 7, {105, 107, 95, 43});
        row("bottom", ResizeHandle::bottom, 5, 7, {100, 107, 100, 43});
        row("bottom right", ResizeHandle::bottomRight, 5, 7, {100, 107, 105, 43});
        row("left to exactly 20", ResizeHandle::left, 80, 0, {180, 100, 20, 50});
        row("left past the right edge", ResizeHandle::left, 300, 0, {180, 100, 20, 50});
        row("left to 20.5", ResizeHandle::left, 79.5, 0, {179.5, 100, 20.5, 50});
        row("right past the left edge", ResizeHandle::right, -300, 0, {100, 100, 20, 50});
        row("bottom past the top", ResizeHandle::bottom, 0, 300, {100, 130, 100, 20});
        row("top past the bottom", ResizeHandle::top, 0, -300, {100, 100, 100, 20});
        row("top left past both", ResizeHandle::topLeft, 300, -300, {180, 100, 20, 20});
        row("bottom right past both", ResizeHandle::bottomRight, -300, 300, {100, 130, 20, 20});
        row("off the screen", ResizeHandle::bottomLeft, -500, -500, {-400, -400, 600, 550});
    }
    void movesTheEdgesOfTheHandle()
    {
        QFETCH(ResizeHandle, handle);
        QFETCH(double, dx);
        QFETCH(double, dy);
        QFETCH(Rect, expected);
        QVERIFY((resized({100, 100, 100, 50}, handle, dx, dy) == expected));
    }

    void knowsTheCorners()
    {
        QVERIFY(isCorner(ResizeHandle::topLeft) && isCorner(ResizeHandle::bottomRight));
        QVERIFY(isCorner(ResizeHandle::topRight) && isCorner(ResizeHandle::bottomLeft));
        QVERIFY(!isCorner(ResizeHandle::top) && !isCorner(ResizeHandle::bottom));
        QVERIFY(!isCorner(ResizeHandle::left) && !isCorner(ResizeHandle::right));
    }
};

QTEST_APPLESS_MAIN(TestSelectionGeometry)
#include "tst_SelectionGeometry.moc"
