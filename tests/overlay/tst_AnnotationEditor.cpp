// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemColors.h"
#include "overlay/AnnotationDesk.h"

#include <QFont>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestAnnotationEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void startsWithThePointerAndRed()
    {
        const AnnotationEditor editor;
        QCOMPARE(editor.currentTool(), AnnotationTool::none);
        QCOMPARE(editor.selectedAnnotationColor(), SystemColors::red);
        QVERIFY(editor.annotations().empty() && !editor.selectedAnnotationIndex());
    }

    void drawsWithEachTool_data()
    {
        QTest::addColumn<AnnotationTool>("tool");
        QTest::addColumn<int>("kind");
        QTest::newRow("arrow") << AnnotationTool::arrow << 0;
        QTest::newRow("line") << AnnotationTool::line << 1;
        QTest::newRow("rectangle") << AnnotationTool::rectangle << 2;
    }
    void drawsWithEachTool()
    {
        QFETCH(AnnotationTool, tool);
        QFETCH(int, kind);
        Desk desk;
        desk.selectTool(tool);
        QVERIFY(desk.press({150, 150}, 1, selection).needsRedraw);
        QVERIFY(desk.currentAnnotation());
        QCOMPARE(desk.drawnAnnotations().size(), size_t(1));
        QVERIFY(desk.moveTo({300, 250}, selection).needsRedraw);
        QVERIFY(desk.release().needsRedraw);
        QVERIFY(!desk.currentAnnotation());
        QCOMPARE(desk.annotations().size(), size_t(1));
        QCOMPARE(int(desk.annotations()[0].index()), kind);
        QVERIFY((desk.at(0).startPoint == Point{150, 150}));
        QVERIFY((desk.at(0).endPoint == Point{300, 250}));
        QCOMPARE(desk.at(0).color, SystemColors::red);
        QVERIFY(!desk.selectedAnnotationIndex() && !desk.at(0).isSelected);
        QCOMPARE(desk.currentTool(), tool);
    }

    void endsADrawingAtTheSelectionsBorder_data()
    {
        QTest::addColumn<Point>("to");
        QTest::addColumn<Point>("expected");
        QTest::newRow("inside") << Point{499, 399} << Point{499, 399};
        QTest::newRow("on the corner") << Point{500, 400} << Point{500, 400};
        QTest::newRow("right of it") << Point{900, 250} << Point{500, 250};
        QTest::newRow("left below") << Point{0, 0} << Point{100, 100};
        QTest::newRow("above") << Point{200, 401} << Point{200, 400};
    }
    void endsADrawingAtTheSelectionsBorder()
    {
        QFETCH(Point, to);
        QFETCH(Point, expected);
        Desk desk;
        desk.draw(AnnotationTool::line, {300, 300}, to);
        QVERIFY(desk.at(0).endPoint == expected);
    }

    void dropsADrawingWithoutMovement()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::rectangle);
        desk.click({200, 200});
        QVERIFY(desk.annotations().empty() && !desk.currentAnnotation());
        desk.drag({200, 200}, {200, 200.5});
        QCOMPARE(desk.annotations().size(), size_t(1));
    }

    void ignoresAPressOutsideTheSelection()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::line);
        QVERIFY(!desk.press({99, 200}, 1, selection).isHandled);
        QVERIFY(!desk.currentAnnotation());
        QVERIFY(!desk.moveTo({200, 200}, selection).isHandled);
        QVERIFY(!desk.release().isHandled);
    }

    void selectsWithinTenPoints_data()
    {
        QTest::addColumn<Point>("at");
        QTest::addColumn<bool>("expected");
        QTest::newRow("on the line") << Point{250, 200} << true;
        QTest::newRow("ten beside it") << Point{250, 210} << true;
        QTest::newRow("more than ten beside it") << Point{250, 210.5} << false;
        QTest::newRow("ten behind its end") << Point{310, 200} << true;
        QTest::newRow("more than ten behind its end") << Point{310.5, 200} << false;
    }
    void selectsWithinTenPoints()
    {
        QFETCH(Point, at);
        QFETCH(bool, expected);
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.click(at);
        QCOMPARE(desk.selectedAnnotationIndex().has_value(), expected);
        QCOMPARE(desk.at(0).isSelected, expected);
        desk.click({400, 350});
        QVERIFY(!desk.selectedAnnotationIndex() && !desk.at(0).isSelected);
    }

    void selectsTheLaterOfTwo()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.draw(AnnotationTool::line, {250, 150}, {250, 250});
        desk.click({250, 200});
        QCOMPARE(desk.selectedAnnotationIndex(), std::optional<size_t>(1));
        QVERIFY(desk.at(1).isSelected && !desk.at(0).isSelected);
        desk.click({205, 200});
        QCOMPARE(desk.selectedAnnotationIndex(), std::optional<size_t>(0));
        QVERIFY(desk.at(0).isSelected && !desk.at(1).isSelected);
    }

    void selectsAlsoWithADrawingTool()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.selectTool(AnnotationTool::rectangle);
        desk.click({250, 205});
        QVERIFY(desk.selectedAnnotationIndex());
        QVERIFY(!desk.currentAnnotation());
        desk.drag({250, 300}, {300, 350});
        QVERIFY(!desk.selectedAnnotationIndex());
        QCOMPARE(desk.annotations().size(), size_t(2));
    }

    void grabsHandlesWithinTwelvePoints_data()
    {
        using Handle = std::optional<AnnotationHandle>;
        QTest::addColumn<AnnotationTool>("tool");
        QTest::addColumn<Point>("at");
        QTest::addColumn<Handle>("expected");
        // The shape runs from (200, 300) to (400, 200); a line through it has the slope -1/2.
        const auto line = AnnotationTool::line;
        const auto box = AnnotationTool::rectangle;
        QTest::newRow("start") << line << Point{200, 300} << Handle(AnnotationHandle::start);
        QTest::newRow("end") << line << Point{400, 200} << Handle(AnnotationHandle::end);
        QTest::newRow("arrow's end")
            << AnnotationTool::arrow << Point{400, 209} << Handle(AnnotationHandle::end);
        QTest::newRow("within twelve")
            << line << Point{210, 295} << Handle(AnnotationHandle::start);
        QTest::newRow("beyond twelve") << line << Point{212, 294} << Handle();
        QTest::newRow("middle") << line << Point{300, 250} << Handle();
        QTest::newRow("bottom left")
            << box << Point{200, 200} << Handle(AnnotationHandle::bottomLeft);
        QTest::newRow("bottom right")
            << box << Point{400, 200} << Handle(AnnotationHandle::bottomRight);
        QTest::newRow("top left") << box << Point{200, 300} << Handle(AnnotationHandle::topLeft);
        QTest::newRow("top right") << box << Point{400, 300} << Handle(AnnotationHandle::topRight);
        QTest::newRow("exactly twelve along the edge")
            << box << Point{212, 300} << Handle(AnnotationHandle::topLeft);
        QTest::newRow("more than twelve along the edge") << box << Point{212.5, 300} << Handle();
    }
    void grabsHandlesWithinTwelvePoints()
    {
        QFETCH(AnnotationTool, tool);
        QFETCH(Point, at);
        QFETCH(std::optional<AnnotationHandle>, expected);
        Desk desk;
        desk.draw(tool, {200, 300}, {400, 200});
        desk.press(at, 1, selection);
        QVERIFY(desk.isDraggingAnnotation());
        QVERIFY(desk.draggingHandle() == expected);
        QVERIFY(desk.annotationDragStartPoint() == at);
        desk.release();
        QVERIFY(!desk.isDraggingAnnotation() && !desk.draggingHandle()
                && !desk.annotationDragStartPoint());
    }

    void testsBottomLeftFirstOnATinyRectangle()
    {
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 200}, {204, 204});
        desk.press({203, 203}, 1, selection);
        QVERIFY(desk.draggingHandle() == AnnotationHandle::bottomLeft);
    }

    void movesAWholeAnnotationWithoutClamping()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.press({250, 200}, 1, selection);
        desk.moveTo({260, 190}, selection);
        QVERIFY((desk.at(0).startPoint == Point{210, 190}));
        desk.moveTo({950, 0}, selection);
        desk.release();
        QVERIFY((desk.at(0).startPoint == Point{900, 0}));
        QVERIFY((desk.at(0).endPoint == Point{1000, 0}));
    }

    void dragsAnEndClampedIntoTheSelection()
    {
        Desk desk;
        desk.draw(AnnotationTool::arrow, {200, 200}, {300, 200});
        desk.drag({300, 200}, {900, 250});
        QVERIFY((desk.at(0).endPoint == Point{500, 250}));
        desk.drag({200, 200}, {120, 20});
        QVERIFY((desk.at(0).startPoint == Point{120, 100}));
    }

    void dragsACornerAgainstTheOppositeOne_data()
    {
        QTest::addColumn<Point>("corner");
        QTest::addColumn<Point>("to");
        QTest::addColumn<Point>("start");
        QTest::addColumn<Point>("end");
        QTest::newRow("top left") << Point{200, 300} << Point{180, 320} << Point{180, 200}
                                  << Point{400, 320};
        QTest::newRow("top left past the right edge")
            << Point{200, 300} << Point{450, 320} << Point{450, 200} << Point{400, 320};
        QTest::newRow("top left past the bottom right")
            << Point{200, 300} << Point{450, 150} << Point{450, 200} << Point{400, 150};
        QTest::newRow("top right")
            << Point{400, 300} << Point{420, 310} << Point{200, 200} << Point{420, 310};
        QTest::newRow("bottom left")
            << Point{200, 200} << Point{190, 180} << Point{190, 180} << Point{400, 300};
        QTest::newRow("bottom right")
            << Point{400, 200} << Point{420, 180} << Point{200, 180} << Point{420, 300};
        QTest::newRow("clamped") << Point{400, 200} << Point{700, 0} << Point{200, 100}
                                 << Point{500, 300};
    }
    void dragsACornerAgainstTheOppositeOne()
    {
        QFETCH(Point, corner);
        QFETCH(Point, to);
        QFETCH(Point, start);
        QFETCH(Point, end);
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 300}, {400, 200});
        desk.drag(corner, to);
        QVERIFY(desk.at(0).startPoint == start);
        QVERIFY(desk.at(0).endPoint == end);
    }

    void keepsTheOppositeCornerThroughTheWholeDrag()
    {
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 300}, {400, 200});
        desk.press({200, 300}, 1, selection);
        for (double x : {250.0, 420.0, 450.0, 480.0})
            desk.moveTo({x, 320}, selection);
        QVERIFY((Rect::spanning(desk.at(0).startPoint, desk.at(0).endPoint)
                 == Rect{400, 200, 80, 120}));
    }

    void deletesTheSelectedOneOnly()
    {
        Desk desk;
        QVERIFY(!desk.deleteSelected().isHandled);
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.draw(AnnotationTool::line, {200, 300}, {300, 300});
        QVERIFY(!desk.deleteSelected().isHandled);
        desk.click({250, 200});
        QVERIFY(desk.deleteSelected().needsRedraw);
        QVERIFY(!desk.selectedAnnotationIndex());
        QCOMPARE(desk.annotations().size(), size_t(1));
        QCOMPARE(desk.at(0).startPoint.y, 300.0);
    }

    void togglesWithButtonsAndNotWithKeys()
    {
        Desk desk;
        desk.toggleTool(AnnotationTool::arrow);
        QCOMPARE(desk.currentTool(), AnnotationTool::arrow);
        desk.toggleTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool(), AnnotationTool::line);
        desk.selectTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool(), AnnotationTool::line);
        desk.toggleTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool(), AnnotationTool::none);
        desk.toggleTool(AnnotationTool::none);
        QCOMPARE(desk.currentTool(), AnnotationTool::none);
    }

    void clearsTheSelectionOnAToolChange()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.click({250, 200});
        QVERIFY(desk.selectTool(AnnotationTool::rectangle).needsRedraw);
        QVERIFY(!desk.selectedAnnotationIndex() && !desk.at(0).isSelected);
    }

    void coloursOnlyWhatComesAfter()
    {
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 200}, {300, 300});
        desk.click({200, 250});
        QVERIFY(!desk.chooseColor(SystemColors::blue, ColorTarget::newAnnotations).needsRedraw);
        QCOMPARE(desk.at(0).color, SystemColors::red);
        desk.draw(AnnotationTool::line, {350, 200}, {450, 200});
        QCOMPARE(desk.at(1).color, SystemColors::blue);
    }

    void recoloursTheSelectedOneOnRequest()
    {
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 200}, {300, 300});
        desk.click({200, 250});
        QVERIFY(desk.chooseColor(SystemColors::green, ColorTarget::selectedAnnotation).needsRedraw);
        QCOMPARE(desk.at(0).color, SystemColors::green);
        QCOMPARE(desk.selectedAnnotationColor(), SystemColors::red);
        desk.click({400, 350});
        desk.chooseColor(SystemColors::black, ColorTarget::selectedAnnotation);
        QCOMPARE(desk.at(0).color, SystemColors::green);
        QCOMPARE(desk.selectedAnnotationColor(), SystemColors::black);
    }

    void nudgesByOneOrTen_data()
    {
        using Key = AnnotationEditor::ArrowKey;
        using Step = AnnotationEditor::Step;
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("step");
        QTest::addColumn<Point>("expected");
        QTest::newRow("left") << int(Key::left) << int(Step::single) << Point{199, 200};
        QTest::newRow("right") << int(Key::right) << int(Step::single) << Point{201, 200};
        QTest::newRow("up") << int(Key::up) << int(Step::large) << Point{200, 210};
        QTest::newRow("down") << int(Key::down) << int(Step::large) << Point{200, 190};
    }
    void nudgesByOneOrTen()
    {
        QFETCH(int, key);
        QFETCH(int, step);
        QFETCH(Point, expected);
        const auto arrow = AnnotationEditor::ArrowKey(key);
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        QVERIFY(!desk.nudgeSelected(arrow, AnnotationEditor::Step(step)).isHandled);
        desk.click({250, 200});
        QVERIFY(desk.nudgeSelected(arrow, AnnotationEditor::Step(step)).needsRedraw);
        QVERIFY(desk.at(0).startPoint == expected);
        desk.undo();
        QVERIFY((desk.at(0).startPoint == Point{200, 200}));
    }
};

QTEST_MAIN(TestAnnotationEditor)
#include "tst_AnnotationEditor.moc"
