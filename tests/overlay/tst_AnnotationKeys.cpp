// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationKeys.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;
using Action = OverlayKeyAction;

class TestAnnotationKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void takesUpTools_data()
    {
        QTest::addColumn<Action>("action");
        QTest::addColumn<AnnotationTool>("tool");
        QTest::newRow("pointer") << Action::pointerTool << AnnotationTool::none;
        QTest::newRow("rectangle") << Action::rectangleTool << AnnotationTool::rectangle;
        QTest::newRow("line") << Action::lineTool << AnnotationTool::line;
        QTest::newRow("arrow") << Action::arrowTool << AnnotationTool::arrow;
        QTest::newRow("text") << Action::textTool << AnnotationTool::text;
    }
    void takesUpTools()
    {
        QFETCH(Action, action);
        QFETCH(AnnotationTool, tool);
        AnnotationEditor editor;
        editor.selectTool(tool == AnnotationTool::none ? AnnotationTool::arrow : tool);
        QVERIFY(editWithKey(editor, action, {}).isHandled);
        QCOMPARE(editor.currentTool(), tool);
    }

    void stepsTheSelectedAnnotation_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("hasShift");
        QTest::addColumn<double>("dx");
        QTest::addColumn<double>("dy");
        QTest::newRow("left") << int(KeyCode::leftArrow) << false << -1.0 << 0.0;
        QTest::newRow("right") << int(KeyCode::rightArrow) << false << 1.0 << 0.0;
        QTest::newRow("down") << int(KeyCode::downArrow) << false << 0.0 << -1.0;
        QTest::newRow("up") << int(KeyCode::upArrow) << false << 0.0 << 1.0;
        QTest::newRow("far to the left") << int(KeyCode::leftArrow) << true << -10.0 << 0.0;
        QTest::newRow("far up") << int(KeyCode::upArrow) << true << 0.0 << 10.0;
    }
    void stepsTheSelectedAnnotation()
    {
        QFETCH(int, code);
        QFETCH(bool, hasShift);
        QFETCH(double, dx);
        QFETCH(double, dy);
        AnnotationEditor editor = editorWithSelectedLine();
        const Point start = fieldsOf(editor.annotations()[0]).startPoint;
        const KeyPress key{code, hasShift ? KeyFlags(KeyFlag::shift) : KeyFlags(), {}};
        QVERIFY(editWithKey(editor, Action::nudge, key).needsRedraw);
        const Point moved = fieldsOf(editor.annotations()[0]).startPoint;
        QCOMPARE(moved.x, start.x + dx);
        QCOMPARE(moved.y, start.y + dy);
    }

    void removesUndoesAndRedoes()
    {
        AnnotationEditor editor = editorWithSelectedLine();
        QVERIFY(editWithKey(editor, Action::deleteAnnotation, {}).isHandled);
        QVERIFY(editor.annotations().empty());
        QVERIFY(editWithKey(editor, Action::undo, {}).isHandled);
        QCOMPARE(editor.annotations().size(), size_t(1));
        QVERIFY(editWithKey(editor, Action::redo, {}).isHandled);
        QVERIFY(editor.annotations().empty());
    }

    void leavesTheRestToTheView_data()
    {
        QTest::addColumn<Action>("action");
        QTest::newRow("nothing") << Action::none;
        QTest::newRow("cancel") << Action::cancel;
        QTest::newRow("save") << Action::save;
        QTest::newRow("copy") << Action::copy;
    }
    void leavesTheRestToTheView()
    {
        QFETCH(Action, action);
        AnnotationEditor editor = editorWithSelectedLine();
        const auto before = editor.annotations();
        QVERIFY(!editWithKey(editor, action, {}).isHandled);
        QVERIFY(editor.annotations() == before);
    }

private:
    static AnnotationEditor editorWithSelectedLine()
    {
        const Rect selection{0, 0, 400, 300};
        AnnotationEditor editor;
        editor.selectTool(AnnotationTool::line);
        editor.press({50, 50}, 1, selection);
        editor.moveTo({150, 50}, selection);
        editor.release();
        editor.press({100, 50}, 1, selection);
        editor.release();
        return editor;
    }
};

QTEST_APPLESS_MAIN(TestAnnotationKeys)
#include "tst_AnnotationKeys.moc"
