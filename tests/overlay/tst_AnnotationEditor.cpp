// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemColors.h"
#include "overlay/AnnotationEditor.h"

#include <QFont>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

Q_DECLARE_METATYPE(tovek::Point)
Q_DECLARE_METATYPE(tovek::AnnotationTool)
Q_DECLARE_METATYPE(std::optional<tovek::AnnotationHandle>)

namespace {

const Rect selection{100, 100, 400, 300};

/// An editor with a person at the mouse.
struct Desk : AnnotationEditor
{
    Effect drag(Point from, Point to)
    {
        press(from, 1, selection);
        moveTo({(from.x + to.x) / 2, (from.y + to.y) / 2}, selection);
        moveTo(to, selection);
        return release();
    }
    void draw(AnnotationTool tool, Point from, Point to)
    {
        selectTool(tool);
        drag(from, to);
        selectTool(AnnotationTool::none);
    }
    Effect click(Point at, int count = 1)
    {
        const Effect effect = press(at, count, selection);
        release();
        return effect;
    }
    Effect commit(const QString &text)
    {
        setTypedText(text);
        return commitText();
    }
    void write(Point at, const QString &text)
    {
        selectTool(AnnotationTool::text);
        click(at);
        setTypedText(text);
        selectTool(AnnotationTool::none);
    }
    const AnnotationFields &at(size_t i) const { return fieldsOf(annotations.at(i)); }
    QString textAt(size_t i) const { return std::get<TextAnnotation>(annotations.at(i)).text; }
};

} // namespace

class TestAnnotationEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void startsWithThePointerAndRed()
    {
        const AnnotationEditor editor;
        QCOMPARE(editor.currentTool, AnnotationTool::none);
        QCOMPARE(editor.selectedAnnotationColor, SystemColors::red);
        QVERIFY(editor.annotations.empty() && !editor.selectedAnnotationIndex);
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
        QVERIFY(desk.currentAnnotation);
        QCOMPARE(desk.drawnAnnotations().size(), size_t(1));
        QVERIFY(desk.moveTo({300, 250}, selection).needsRedraw);
        QVERIFY(desk.release().needsRedraw);
        QVERIFY(!desk.currentAnnotation);
        QCOMPARE(desk.annotations.size(), size_t(1));
        QCOMPARE(int(desk.annotations[0].index()), kind);
        QVERIFY((desk.at(0).startPoint == Point{150, 150}));
        QVERIFY((desk.at(0).endPoint == Point{300, 250}));
        QCOMPARE(desk.at(0).color, SystemColors::red);
        QVERIFY(!desk.selectedAnnotationIndex && !desk.at(0).isSelected);
        QCOMPARE(desk.currentTool, tool);
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
        QVERIFY(desk.annotations.empty() && !desk.currentAnnotation);
        desk.drag({200, 200}, {200, 200.5});
        QCOMPARE(desk.annotations.size(), size_t(1));
    }

    void ignoresAPressOutsideTheSelection()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::line);
        QVERIFY(!desk.press({99, 200}, 1, selection).isHandled);
        QVERIFY(!desk.currentAnnotation);
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
        QCOMPARE(desk.selectedAnnotationIndex.has_value(), expected);
        QCOMPARE(desk.at(0).isSelected, expected);
        desk.click({400, 350});
        QVERIFY(!desk.selectedAnnotationIndex && !desk.at(0).isSelected);
    }

    void selectsTheLaterOfTwo()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.draw(AnnotationTool::line, {250, 150}, {250, 250});
        desk.click({250, 200});
        QCOMPARE(desk.selectedAnnotationIndex, std::optional<size_t>(1));
        QVERIFY(desk.at(1).isSelected && !desk.at(0).isSelected);
        desk.click({205, 200});
        QCOMPARE(desk.selectedAnnotationIndex, std::optional<size_t>(0));
        QVERIFY(desk.at(0).isSelected && !desk.at(1).isSelected);
    }

    void selectsAlsoWithADrawingTool()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.selectTool(AnnotationTool::rectangle);
        desk.click({250, 205});
        QVERIFY(desk.selectedAnnotationIndex);
        QVERIFY(!desk.currentAnnotation);
        desk.drag({250, 300}, {300, 350});
        QVERIFY(!desk.selectedAnnotationIndex);
        QCOMPARE(desk.annotations.size(), size_t(2));
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
        QVERIFY(desk.isDraggingAnnotation);
        QVERIFY(desk.draggingHandle == expected);
        QVERIFY(desk.annotationDragStartPoint == at);
        QVERIFY(desk.doesTextLetMouseThrough);
        desk.release();
        QVERIFY(!desk.isDraggingAnnotation && !desk.draggingHandle
                && !desk.annotationDragStartPoint);
    }

    void testsBottomLeftFirstOnATinyRectangle()
    {
        Desk desk;
        desk.draw(AnnotationTool::rectangle, {200, 200}, {204, 204});
        desk.press({203, 203}, 1, selection);
        QVERIFY(desk.draggingHandle == AnnotationHandle::bottomLeft);
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
        QVERIFY(!desk.selectedAnnotationIndex);
        QCOMPARE(desk.annotations.size(), size_t(1));
        QCOMPARE(desk.at(0).startPoint.y, 300.0);
    }

    void togglesWithButtonsAndNotWithKeys()
    {
        Desk desk;
        desk.toggleTool(AnnotationTool::arrow);
        QCOMPARE(desk.currentTool, AnnotationTool::arrow);
        QVERIFY(desk.doesTextLetMouseThrough);
        desk.toggleTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool, AnnotationTool::line);
        desk.selectTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool, AnnotationTool::line);
        desk.toggleTool(AnnotationTool::line);
        QCOMPARE(desk.currentTool, AnnotationTool::none);
        QVERIFY(!desk.doesTextLetMouseThrough);
        desk.toggleTool(AnnotationTool::none);
        QCOMPARE(desk.currentTool, AnnotationTool::none);
    }

    void clearsTheSelectionOnAToolChange()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.click({250, 200});
        QVERIFY(desk.selectTool(AnnotationTool::rectangle).needsRedraw);
        QVERIFY(!desk.selectedAnnotationIndex && !desk.at(0).isSelected);
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
        QCOMPARE(desk.selectedAnnotationColor, SystemColors::red);
        desk.click({400, 350});
        desk.chooseColor(SystemColors::black, ColorTarget::selectedAnnotation);
        QCOMPARE(desk.at(0).color, SystemColors::green);
        QCOMPARE(desk.selectedAnnotationColor, SystemColors::black);
    }

    void opensATextBoxAtTheClick()
    {
        Desk desk;
        desk.chooseColor(SystemColors::purple, ColorTarget::newAnnotations);
        desk.selectTool(AnnotationTool::text);
        const auto effect = desk.click({200, 300});
        QVERIFY(effect.opensTextBox && !effect.closesTextBox);
        QVERIFY((effect.opensTextBox->position == Point{200, 300}));
        QCOMPARE(effect.opensTextBox->color, SystemColors::purple);
        QCOMPARE(effect.opensTextBox->text, QString());
        QVERIFY(desk.isTextBoxOpen());
        QVERIFY(desk.commit(QStringLiteral("hello")).closesTextBox);
        QVERIFY(!desk.isTextBoxOpen());
        QCOMPARE(desk.textAt(0), QStringLiteral("hello"));
        QVERIFY(
            (desk.at(0).startPoint == Point{200, 300} && desk.at(0).endPoint == Point{200, 300}));
        QCOMPARE(desk.at(0).color, SystemColors::purple);
        QCOMPARE(std::get<TextAnnotation>(desk.annotations[0]).fontSize, 16.0);
        QVERIFY(!desk.commitText().isHandled);
    }

    void trimsWhatIsCommitted_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("nothing") << QString() << QStringList();
        QTest::newRow("blanks") << QStringLiteral(" \t\n \n") << QStringList();
        QTest::newRow("around") << QStringLiteral("\n a\n  b \n")
                                << QStringList{QStringLiteral("a\n  b")};
        QTest::newRow("no-break space")
            << QString::fromUtf8("\u00a0x\u00a0") << QStringList{QStringLiteral("x")};
    }
    void trimsWhatIsCommitted()
    {
        QFETCH(QString, typed);
        Desk desk;
        desk.write({200, 300}, typed);
        QStringList texts;
        for (size_t i = 0; i < desk.annotations.size(); ++i)
            texts << desk.textAt(i);
        QTEST(texts, "expected");
    }

    void commitsOnAnyToolChangeButToText()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::text);
        desk.click({200, 300});
        desk.setTypedText(QStringLiteral("kept"));
        QVERIFY(!desk.selectTool(AnnotationTool::text).closesTextBox);
        QVERIFY(desk.isTextBoxOpen());
        QVERIFY(desk.toggleTool(AnnotationTool::text).closesTextBox);
        QCOMPARE(desk.textAt(0), QStringLiteral("kept"));
    }

    void commitsBeforeOpeningAnother()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::text);
        desk.click({200, 300});
        desk.setTypedText(QStringLiteral("one"));
        const auto effect = desk.click({200, 200});
        QVERIFY(effect.closesTextBox && effect.opensTextBox);
        QCOMPARE(desk.annotations.size(), size_t(1));
        desk.commit(QStringLiteral("two"));
        QCOMPARE(desk.textAt(1), QStringLiteral("two"));
    }

    void editsATextAgainOnADoubleClick()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("before"));
        const QUuid id = desk.at(0).id;
        desk.chooseColor(SystemColors::blue, ColorTarget::newAnnotations);
        QVERIFY(!desk.click({210, 290}).opensTextBox);
        const auto effect = desk.press({210, 290}, 2, selection);
        QVERIFY(effect.opensTextBox && !desk.isDraggingAnnotation);
        QVERIFY((effect.opensTextBox->position == Point{200, 300}));
        QCOMPARE(effect.opensTextBox->color, SystemColors::red);
        QCOMPARE(effect.opensTextBox->text, QStringLiteral("before"));
        desk.commit(QStringLiteral(" after "));
        QCOMPARE(desk.annotations.size(), size_t(1));
        QCOMPARE(desk.textAt(0), QStringLiteral("after"));
        QCOMPARE(desk.at(0).color, SystemColors::red);
        QCOMPARE(desk.at(0).id, id);
    }

    void dragsATextOnATripleClick()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("text"));
        QVERIFY(!desk.press({210, 290}, 3, selection).opensTextBox);
        QVERIFY(desk.isDraggingAnnotation && !desk.draggingHandle);
    }

    void doesNotEditAShapeOnADoubleClick()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        QVERIFY(!desk.press({250, 200}, 2, selection).opensTextBox);
        QVERIFY(desk.isDraggingAnnotation);
    }

    void deletesATextThatIsClearedWhenEditedAgain()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("first"));
        desk.draw(AnnotationTool::line, {350, 200}, {450, 200});
        desk.click({210, 290});
        desk.press({210, 290}, 2, selection);
        QVERIFY(desk.commit(QStringLiteral(" \n")).closesTextBox);
        QCOMPARE(desk.annotations.size(), size_t(1));
        QVERIFY(std::holds_alternative<LineAnnotation>(desk.annotations[0]));
        QVERIFY(!desk.selectedAnnotationIndex && !desk.editingTextAnnotationIndex);
    }

    void editsAnotherTextAfterClearingAnEarlierOne()
    {
        Desk desk;
        desk.write({150, 350}, QStringLiteral("first"));
        desk.write({300, 200}, QStringLiteral("second"));
        desk.press({155, 345}, 2, selection);
        desk.setTypedText(QString());
        const auto effect = desk.press({305, 195}, 2, selection);
        QVERIFY(effect.opensTextBox);
        QCOMPARE(effect.opensTextBox->text, QStringLiteral("second"));
        QCOMPARE(desk.editingTextAnnotationIndex, std::optional<size_t>(0));
        desk.commit(QStringLiteral("changed"));
        QCOMPARE(desk.annotations.size(), size_t(1));
        QCOMPARE(desk.textAt(0), QStringLiteral("changed"));
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

    void undoesEveryChangeInOneStep()
    {
        Desk desk;
        QVERIFY(!desk.undo().isHandled && !desk.redo().isHandled);
        std::vector<std::vector<Annotation>> states{desk.annotations};
        const auto changed = [&] { states.push_back(desk.annotations); };
        desk.draw(AnnotationTool::rectangle, {200, 200}, {300, 300});
        changed();
        desk.drag({200, 250}, {250, 270});
        desk.click({450, 120});
        changed();
        desk.write({400, 300}, QStringLiteral("note"));
        changed();
        desk.press({405, 295}, 2, selection);
        desk.commit(QStringLiteral("another"));
        changed();
        desk.click({250, 250});
        desk.chooseColor(SystemColors::green, ColorTarget::selectedAnnotation);
        desk.click({450, 120});
        changed();
        desk.click({250, 250});
        desk.deleteSelected();
        changed();
        QCOMPARE(states.size(), size_t(7));
        for (size_t i = states.size() - 1; i-- > 0;) {
            QVERIFY(desk.undo().needsRedraw);
            QVERIFY(desk.annotations == states[i]);
        }
        QVERIFY(!desk.undo().isHandled);
        for (size_t i = 1; i < states.size(); ++i) {
            QVERIFY(desk.redo().needsRedraw);
            QVERIFY(desk.annotations == states[i]);
        }
        QVERIFY(!desk.redo().isHandled);
    }

    void countsOnlyChangesAsSteps()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.click({250, 200});
        desk.press({205, 200}, 2, selection);
        desk.release();
        desk.selectTool(AnnotationTool::rectangle);
        desk.click({400, 300});
        desk.undo();
        QVERIFY(desk.annotations.empty());
    }

    void forgetsWhatWasUndoneOnANewChange()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.undo();
        desk.draw(AnnotationTool::line, {200, 300}, {300, 300});
        QVERIFY(!desk.redo().isHandled);
        QCOMPARE(desk.annotations.size(), size_t(1));
    }

    void keepsTheSelectedOneSelectedThroughUndo()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.draw(AnnotationTool::line, {200, 300}, {300, 300});
        desk.click({250, 200});
        desk.nudgeSelected(AnnotationEditor::ArrowKey::up, AnnotationEditor::Step::single);
        desk.undo();
        QCOMPARE(desk.selectedAnnotationIndex, std::optional<size_t>(0));
        QVERIFY(desk.at(0).isSelected && !desk.at(1).isSelected);
        desk.undo();
        desk.undo();
        QVERIFY(!desk.selectedAnnotationIndex);
    }

    void doesNotUndoInTheMiddleOfADragOrAText()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.press({250, 200}, 1, selection);
        QVERIFY(!desk.undo().isHandled);
        desk.release();
        desk.selectTool(AnnotationTool::text);
        desk.click({300, 350});
        QVERIFY(!desk.undo().isHandled);
        desk.commitText();
        QVERIFY(desk.undo().isHandled);
    }

    void closesTheBoxOfATextThatIsDeleted()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("gone"));
        desk.click({210, 290});
        desk.press({210, 290}, 2, selection);
        QVERIFY(desk.deleteSelected().closesTextBox);
        QVERIFY(!desk.isTextBoxOpen() && desk.annotations.empty());
    }
};

QTEST_MAIN(TestAnnotationEditor)
#include "tst_AnnotationEditor.moc"
