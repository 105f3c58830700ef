// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The pointer's way through the view, the words and the toolbar: what a hand meets on the window.

#include "overlay/OverlayFixture.h"

using namespace tovek;
using namespace std::chrono_literals;

namespace {

/// A selection from (100, 50) to (300, 200) with one word, from (120, 80) to (200, 110).
struct PointerFixture : OverlayFixture
{
    [[nodiscard]] bool start()
    {
        if (!show())
            return false;
        drag({100, 50}, {300, 200});
        return showWords();
    }
    bool showWords()
    {
        view()->showTextRegions({{"word", {0.1, 0.6, 0.4, 0.2}}});
        return view()->textRegionOverlay() != nullptr;
    }
    /// As the toolkit drops a move to where the pointer was, not from there.
    void pointAt(QPoint at)
    {
        point(at + QPoint(0, 1));
        point(at);
    }
    size_t selectedWords() { return view()->textRegionOverlay()->selectedRegions().size(); }
    Qt::CursorShape shape() { return view()->cursor().shape(); }
    void click(QPoint at)
    {
        press(at);
        release(at);
    }
    /// With the button held, to the window.
    void handDrag(QPoint from, QPoint to)
    {
        press(from);
        move(to);
        release(to);
    }
    /// How the handles look once they rest.
    std::vector<quint64> handles()
    {
        clock.advance(2s);
        std::vector<quint64> pictures;
        for (const auto &item : surface().presented.back().items) {
            if (const auto *decal = std::get_if<DisplayList::Decal>(&item))
                pictures.push_back(decal->key);
        }
        return pictures;
    }
};

const QPoint onWord(150, 95);
const QPoint besideWord(250, 180);
const QPoint outside(350, 250);

} // namespace

class TestOverlayPointer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void selectsTheWordThatIsClicked()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.shell.keySurface = nullptr; // another screen's overlay was clicked
        f.click(onWord);
        QVERIFY(f.window.isKey());
        QCOMPARE(f.selectedWords(), size_t(1));
        f.click(besideWord);
        QCOMPARE(f.selectedWords(), size_t(0));
    }

    void picksGoOnWhileFurtherWordsCome()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.press(onWord);
        f.view()->showTextRegions({{"below", {0.1, 0.2, 0.4, 0.2}}}, TextShare::some);
        f.point({150, 150});
        QCOMPARE(f.selectedWords(), size_t(2));
        f.view()->showTextRegions({{"beside", {0.6, 0.6, 0.1, 0.2}}}, TextShare::some);
        QCOMPARE(f.selectedWords(), size_t(3));
        f.view()->showTextRegions(
            {{"below", {0.1, 0.2, 0.4, 0.2}}, {"word", {0.1, 0.6, 0.4, 0.2}}});
        f.release({150, 150});
        QCOMPARE(f.selectedWords(), size_t(2));
        QCOMPARE(f.view()->textRegionOverlay()->selectedRegions().front().text,
                 QStringLiteral("word"));
        QVERIFY(!f.view()->textRegionOverlay()->isDragging());
    }

    void pointsAtAWordThatComesBelowThePointer()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.pointAt({150, 150});
        QVERIFY(!f.view()->textRegionOverlay()->selection().hoveredIndex);
        f.view()->showTextRegions({{"below", {0.1, 0.2, 0.4, 0.2}}}, TextShare::some);
        QCOMPARE(f.view()->textRegionOverlay()->selection().hoveredIndex, std::optional(1));
    }

    void takesNoWordsWhileTheSelectionIsResized()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.press({100, 95});
        f.view()->showTextRegions({{"late", {0.1, 0.2, 0.4, 0.2}}}, TextShare::some);
        QVERIFY(!f.view()->textRegionOverlay());
        f.release({100, 95});
    }

    void resizesByTheInnermostColumn_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QString>("report");
        QTest::newRow("left column")
            << QPoint(100, 95) << QPoint(60, 95) << QStringLiteral("complete (60, 100, 240, 150)");
        QTest::newRow("top row") << QPoint(150, 50) << QPoint(150, 20)
                                 << QStringLiteral("complete (100, 100, 200, 180)");
    }
    void resizesByTheInnermostColumn()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        PointerFixture f;
        QVERIFY(f.start());
        f.reports.clear();
        f.press(from);
        QVERIFY(!f.view()->textRegionOverlay());
        // The toolkit sends moves and release to the widget that took the press.
        QTest::mouseMove(f.window.windowHandle(), to);
        f.release(to);
        QTEST(f.reports.join(' '), "report");
        QVERIFY(f.view()->toolbar());
    }

    void selectsWordsOfALaterLayerToo()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.key(Qt::Key_L);
        f.handDrag({120, 150}, {200, 150});
        f.key(Qt::Key_V);
        f.click({150, 150});
        QVERIFY(f.view()->editor().selectedAnnotationIndex());
        f.handDrag({303, 120}, {323, 120});
        QVERIFY(f.showWords());
        f.click(onWord);
        QCOMPARE(f.selectedWords(), size_t(1));
        QVERIFY(!f.view()->editor().selectedAnnotationIndex());
    }

    void drawsOverWords()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.key(Qt::Key_R);
        f.handDrag(onWord, besideWord);
        QCOMPARE(f.view()->editor().annotations().size(), size_t(1));
        QCOMPARE(f.selectedWords(), size_t(0));
    }

    void showsTheCursorOfWhatIsThere()
    {
        PointerFixture f;
        QVERIFY(f.start());
        f.pointAt(besideWord);
        QCOMPARE(f.shape(), Qt::ArrowCursor);
        f.pointAt(onWord);
        QCOMPARE(f.shape(), Qt::IBeamCursor);
        f.pointAt({95, 120});
        QCOMPARE(f.shape(), Qt::SizeHorCursor);
        f.pointAt(outside);
        QCOMPARE(f.shape(), Qt::ArrowCursor);
        // The tool may change by a key, and nobody moves the mouse for that.
        f.pointAt(onWord);
        f.key(Qt::Key_L);
        QCOMPARE(f.shape(), Qt::BitmapCursor); // the cross
        f.pointAt(outside);
        QCOMPARE(f.shape(), Qt::ArrowCursor);
        f.pointAt(onWord);
        QCOMPARE(f.shape(), Qt::BitmapCursor);
        f.key(Qt::Key_V);
        QCOMPARE(f.shape(), Qt::IBeamCursor);
    }
    void showsTheBeamWhereWordsComeBelowThePointer()
    {
        PointerFixture f;
        QVERIFY(f.show());
        f.drag({100, 50}, {300, 200});
        f.pointAt(onWord);
        QCOMPARE(f.shape(), Qt::ArrowCursor);
        QVERIFY(f.showWords());
        QCOMPARE(f.shape(), Qt::IBeamCursor);
    }

    void dimsAHandleThatThePointerLeft_data()
    {
        QTest::addColumn<QPoint>("to");
        QTest::newRow("outside") << outside;
        QTest::newRow("inside, beside the word") << besideWord;
        QTest::newRow("word") << onWord;
        QTest::newRow("toolbar") << QPoint();
    }
    void dimsAHandleThatThePointerLeft()
    {
        QFETCH(QPoint, to);
        PointerFixture f;
        QVERIFY(f.start());
        f.key(Qt::Key_L); // words do not light up
        f.pointAt(outside);
        const auto allDim = f.handles();
        f.pointAt({305, 205});
        QVERIFY(f.handles() != allDim);
        f.pointAt(to.isNull() ? f.view()->toolbar()->geometry().center() : to);
        QVERIFY(f.handles() == allDim);
    }
};

QTEST_MAIN(TestOverlayPointer)
#include "tst_OverlayPointer.moc"
