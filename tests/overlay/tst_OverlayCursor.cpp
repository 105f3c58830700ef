// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayCursor.h"

#include <QPixmap>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestOverlayCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void isACrossWhileNothingIsSelected()
    {
        SelectionState state;
        QCOMPARE(overlayCursorAt({10, 10}, PointerOwner::selection, state, AnnotationTool::none),
                 Qt::CrossCursor);
        state.press({10, 10});
        state.moveTo({100, 100});
        QCOMPARE(overlayCursorAt({100, 100}, PointerOwner::selection, state, AnnotationTool::none),
                 Qt::CrossCursor);
    }

    void drawsTheCrossInNativePixels_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<int>("side");
        QTest::newRow("1") << 1.0 << 33;
        QTest::newRow("1.5") << 1.5 << 50;
        QTest::newRow("2") << 2.0 << 66;
    }
    void drawsTheCrossInNativePixels()
    {
        QFETCH(double, scale);
        QFETCH(int, side);
        const QCursor cross = overlayCursor(Qt::CrossCursor, scale);
        QCOMPARE(cross.shape(), Qt::BitmapCursor);
        QCOMPARE(cross.pixmap().size(), QSize(side, side));
        QCOMPARE(cross.pixmap().devicePixelRatio(), 1.0);
        QCOMPARE(cross.hotSpot(), QPoint(side / 2, side / 2));
        QCOMPARE(overlayCursor(Qt::CrossCursor, scale).pixmap().cacheKey(),
                 cross.pixmap().cacheKey());
    }

    void leavesOtherCursorsToTheDesktop()
    {
        QCOMPARE(overlayCursor(Qt::ArrowCursor, 2).shape(), Qt::ArrowCursor);
        QCOMPARE(overlayCursor(Qt::SizeHorCursor, 1).shape(), Qt::SizeHorCursor);
    }

    void showsWhatAPressWouldDo_data()
    {
        QTest::addColumn<Point>("at");
        QTest::addColumn<AnnotationTool>("tool");
        QTest::addColumn<Qt::CursorShape>("cursor");
        // The selection reaches from 100 to 300 and from 100 to 200.
        const auto none = AnnotationTool::none;
        const auto line = AnnotationTool::line;
        QTest::newRow("inside, pointer") << Point{200, 150} << none << Qt::ArrowCursor;
        QTest::newRow("inside, drawing") << Point{200, 150} << line << Qt::CrossCursor;
        QTest::newRow("outside, drawing") << Point{350, 150} << line << Qt::ArrowCursor;
        QTest::newRow("left edge") << Point{98, 150} << line << Qt::SizeHorCursor;
        QTest::newRow("right edge") << Point{302, 150} << none << Qt::SizeHorCursor;
        QTest::newRow("top edge") << Point{200, 202} << none << Qt::SizeVerCursor;
        QTest::newRow("bottom edge") << Point{200, 98} << none << Qt::SizeVerCursor;
        QTest::newRow("top left") << Point{95, 205} << none << Qt::SizeFDiagCursor;
        QTest::newRow("bottom right") << Point{305, 95} << none << Qt::SizeFDiagCursor;
        QTest::newRow("top right") << Point{305, 205} << none << Qt::SizeBDiagCursor;
        QTest::newRow("bottom left") << Point{95, 95} << none << Qt::SizeBDiagCursor;
    }
    void showsWhatAPressWouldDo()
    {
        QFETCH(Point, at);
        QFETCH(AnnotationTool, tool);
        QFETCH(Qt::CursorShape, cursor);
        SelectionState state;
        state.press({100, 100});
        state.moveTo({300, 200});
        state.release();
        state.hover(at);
        AnnotationEditor editor;
        editor.selectTool(tool);
        const PointerOwner owner = pointerOwnerAt(at, state, editor, nullptr);
        QCOMPARE(overlayCursorAt(at, owner, state, tool), cursor);
        QCOMPARE(overlayCursorAt(at, PointerOwner::words, state, tool), Qt::IBeamCursor);
    }
};

QTEST_MAIN(TestOverlayCursor)
#include "tst_OverlayCursor.moc"
