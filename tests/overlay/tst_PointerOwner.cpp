// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/PointerOwner.h"
#include "text/TextSelection.h"

#include <QTest>

using namespace tovek;

namespace {

const Rect selection{100, 100, 200, 100};
const Point onWord{115, 145};
const Point onWordAndLine{115, 155};
const Point onLine{250, 155};
const Point onNothing{250, 110};

/// A selection with a word at its left edge and a line across its upper half.
struct Overlay
{
    Overlay()
    {
        state.press({selection.x, selection.y});
        state.moveTo({selection.maxX(), selection.maxY()});
        state.release();
        words.textRegions = {{"word", {0, 0.4, 0.2, 0.2}}};
        words.selectionBounds = {0, 0, selection.width, selection.height};
        editor.selectTool(AnnotationTool::line);
        editor.press({110, 160}, 1, selection);
        editor.moveTo({290, 160}, selection);
        editor.release();
        editor.selectTool(AnnotationTool::none);
    }
    PointerOwner at(Point place) const { return pointerOwnerAt(place, state, editor, &words); }

    SelectionState state;
    AnnotationEditor editor;
    TextSelection words;
};

} // namespace

class TestPointerOwner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesThePlaceToOne_data()
    {
        QTest::addColumn<Point>("at");
        QTest::addColumn<PointerOwner>("owner");
        QTest::newRow("word") << onWord << PointerOwner::words;
        QTest::newRow("word below a line") << onWordAndLine << PointerOwner::words;
        QTest::newRow("line") << onLine << PointerOwner::annotations;
        QTest::newRow("neither") << onNothing << PointerOwner::annotations;
        QTest::newRow("outside") << Point{400, 150} << PointerOwner::annotations;
        QTest::newRow("handle") << Point{95, 150} << PointerOwner::selection;
        // The zone of the handle ends in the innermost column, where the word begins.
        QTest::newRow("handle and word") << Point{100, 150} << PointerOwner::selection;
    }
    void givesThePlaceToOne()
    {
        QFETCH(Point, at);
        QTEST(Overlay().at(at), "owner");
    }

    void leavesASelectedAnnotationInReach()
    {
        Overlay overlay;
        overlay.editor.press(onLine, 1, selection);
        overlay.editor.release();
        QCOMPARE(overlay.at(onWordAndLine), PointerOwner::annotations);
        QCOMPARE(overlay.at(onWord), PointerOwner::words);
        overlay.editor.deselect();
        QCOMPARE(overlay.at(onWordAndLine), PointerOwner::words);
    }

    void leavesWordsToTheDrawingTools()
    {
        Overlay overlay;
        overlay.editor.selectTool(AnnotationTool::arrow);
        QCOMPARE(overlay.at(onWord), PointerOwner::annotations);
        overlay.editor.selectTool(AnnotationTool::none);
        QCOMPARE(overlay.at(onWord), PointerOwner::words);
    }

    void isTheSelectionsWhileThereIsNone()
    {
        Overlay overlay;
        overlay.state = SelectionState();
        QCOMPARE(overlay.at(onWord), PointerOwner::selection);
    }
};

QTEST_APPLESS_MAIN(TestPointerOwner)
#include "tst_PointerOwner.moc"
