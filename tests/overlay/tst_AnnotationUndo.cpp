// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemColors.h"
#include "overlay/AnnotationDesk.h"

#include <QFont>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestAnnotationUndo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void undoesEveryChangeInOneStep()
    {
        Desk desk;
        QVERIFY(!desk.undo().isHandled && !desk.redo().isHandled);
        std::vector<std::vector<Annotation>> states{desk.annotations()};
        const auto changed = [&] { states.push_back(desk.annotations()); };
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
            QVERIFY(desk.annotations() == states[i]);
        }
        QVERIFY(!desk.undo().isHandled);
        for (size_t i = 1; i < states.size(); ++i) {
            QVERIFY(desk.redo().needsRedraw);
            QVERIFY(desk.annotations() == states[i]);
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
        QVERIFY(desk.annotations().empty());
    }

    void forgetsWhatWasUndoneOnANewChange()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.undo();
        desk.draw(AnnotationTool::line, {200, 300}, {300, 300});
        QVERIFY(!desk.redo().isHandled);
        QCOMPARE(desk.annotations().size(), size_t(1));
    }

    void keepsTheSelectedOneSelectedThroughUndo()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        desk.draw(AnnotationTool::line, {200, 300}, {300, 300});
        desk.click({250, 200});
        desk.nudgeSelected(AnnotationEditor::ArrowKey::up, AnnotationEditor::Step::single);
        desk.undo();
        QCOMPARE(desk.selectedAnnotationIndex(), std::optional<size_t>(0));
        QVERIFY(desk.at(0).isSelected && !desk.at(1).isSelected);
        desk.undo();
        desk.undo();
        QVERIFY(!desk.selectedAnnotationIndex());
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
};

QTEST_MAIN(TestAnnotationUndo)
#include "tst_AnnotationUndo.moc"
