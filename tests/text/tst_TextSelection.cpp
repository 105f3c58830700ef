// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextSelection.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Two lines over a selection of 100 by 40: "a b" above "c d", each word 10 by 10.
struct Words : TextSelection
{
    Words()
    {
        selectionBounds = {0, 0, 100, 40};
        textRegions = {{"a", {0, 0.5, 0.1, 0.25}},
                       {"b", {0.2, 0.5, 0.1, 0.25}},
                       {"c", {0, 0, 0.1, 0.25}},
                       {"d", {0.2, 0, 0.1, 0.25}}};
        onSelectionChanged = [this](const std::vector<TextRegion> &regions) {
            reports.push_back({});
            for (const TextRegion &region : regions)
                reports.back() += region.text;
        };
    }
    QString selected()
    {
        QString text;
        for (const TextRegion &region : selectedRegions())
            text += region.text;
        return text;
    }
    QStringList reports;
};

constexpr Point inA{5, 25};
constexpr Point inB{25, 25};
constexpr Point inC{5, 5};
constexpr Point inD{25, 5};
constexpr Point beside{80, 35};

} // namespace

class TestTextSelection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void mapsBoxesIntoTheBounds()
    {
        Words words;
        QVERIFY((words.rectOf(1) == Rect{20, 20, 10, 10}));
        words.selectionBounds = {10, 10, 200, 80};
        QVERIFY((words.rectOf(1) == Rect{50, 50, 20, 20}));
    }

    void aClickSelectsOneWordAndReportsOnRelease()
    {
        Words words;
        QVERIFY(words.mouseDown(inB));
        QVERIFY(words.isDragging);
        QCOMPARE(words.selectionStartIndex, std::optional(1));
        QVERIFY(words.reports.isEmpty());
        words.mouseUp();
        QVERIFY(!words.isDragging);
        QVERIFY(!words.dragStart && !words.selectionStartIndex);
        QCOMPARE(words.reports, QStringList{"b"});
    }

    void aDragSelectsInReadingOrderEitherWay_data()
    {
        QTest::addColumn<double>("fromX");
        QTest::addColumn<double>("fromY");
        QTest::addColumn<double>("toX");
        QTest::addColumn<double>("toY");
        QTest::addColumn<QString>("expected");
        QTest::newRow("along a line") << inA.x << inA.y << inB.x << inB.y << "ab";
        QTest::newRow("down") << inB.x << inB.y << inC.x << inC.y << "bc";
        QTest::newRow("back up over two lines") << inD.x << inD.y << inA.x << inA.y << "abcd";
        QTest::newRow("snaps to the nearest word") << inA.x << inA.y << 99.0 << 24.0 << "ab";
        QTest::newRow("snaps from below") << inA.x << inA.y << 26.0 << -30.0 << "abcd";
    }
    void aDragSelectsInReadingOrderEitherWay()
    {
        QFETCH(double, fromX);
        QFETCH(double, fromY);
        QFETCH(double, toX);
        QFETCH(double, toY);
        Words words;
        (void)words.mouseDown({fromX, fromY});
        QVERIFY(words.mouseDragged({toX, toY}));
        QTEST(words.selected(), "expected");
    }

    void aDragBesideTheWordsSelectsNothing()
    {
        Words words;
        (void)words.mouseDown(beside);
        QVERIFY(!words.mouseDragged(inA));
        QCOMPARE(words.selected(), QString());
    }

    void aClickBesideTheWordsEndsTheirSelection()
    {
        Words words;
        QVERIFY(!words.mouseDown(beside));
        QVERIFY(words.reports.isEmpty());
        (void)words.mouseDown(inA);
        words.mouseUp();
        words.reports.clear();
        QVERIFY(words.mouseDown(beside));
        QCOMPARE(words.reports, QStringList{""});
        QVERIFY(words.selectedIndices.empty());
    }

    void equallyNearWordsGiveTheEarlierOne()
    {
        Words words;
        QCOMPARE(words.regionNearest({15, 25}), std::optional(0));
        QCOMPARE(words.regionNearest({15.1, 25}), std::optional(1));
        words.textRegions.clear();
        QCOMPARE(words.regionNearest({15, 25}), std::optional<int>());
    }

    void overlappingWordsGiveTheFirstInTheList()
    {
        Words words;
        words.textRegions.push_back({"e", {0, 0.5, 0.1, 0.25}});
        QCOMPARE(words.regionAt(inA), std::optional(0));
    }

    void hoverFollowsThePointer()
    {
        Words words;
        QVERIFY(words.mouseMoved(inA));
        QCOMPARE(words.hoveredIndex, std::optional(0));
        QVERIFY(!words.mouseMoved({6, 26}));
        QVERIFY(words.mouseMoved(inB));
        QVERIFY(words.mouseMoved(beside));
        QVERIFY(!words.mouseMoved(beside));
        (void)words.mouseMoved(inB);
        QVERIFY(words.mouseExited());
        QVERIFY(!words.hoveredIndex);
        QVERIFY(!words.mouseExited());
    }

    void selectedRegionsAreInReadingOrder()
    {
        Words words;
        std::swap(words.textRegions[0], words.textRegions[3]);
        words.selectedIndices = {0, 1, 3};
        QCOMPARE(words.selected(), QString("abd"));
        words.selectedIndices.clear();
        QCOMPARE(words.selected(), QString());
    }

    void wordsThatComeLaterLeaveASelectionAsItIs()
    {
        Words words;
        (void)words.mouseDown(inA);
        (void)words.mouseDragged(inB);
        words.mouseUp();
        (void)words.mouseMoved(inD);
        words.add({{"x", {0.12, 0.5, 0.05, 0.25}}});
        QCOMPARE(words.selected(), QString("ab"));
        QCOMPARE(words.hoveredIndex, std::optional(3));
        (void)words.mouseDown(inA);
        (void)words.mouseDragged(inB);
        QCOMPARE(words.selected(), QString("axb"));
    }

    void aDragTakesInWordsThatComeMeanwhile()
    {
        Words words;
        (void)words.mouseDown(inA);
        words.add({{"x", {0.12, 0.5, 0.05, 0.25}}});
        QCOMPARE(words.selected(), QString("a"));
        (void)words.mouseDragged(inD);
        QCOMPARE(words.selected(), QString("axbcd"));
        words.add({{"y", {0.32, 0.5, 0.05, 0.25}}, {"z", {0.32, 0, 0.05, 0.25}}});
        QVERIFY(words.isDragging);
        QCOMPARE(words.selected(), QString("axbycd"));
        QVERIFY(words.mouseDragged({34, 5}));
        QCOMPARE(words.selected(), QString("axbycdz"));
    }

    void theFinalWordsTakeOverASelection_data()
    {
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QList<double>>("lefts"); // in the upper line, each as wide as the next
        QTest::addColumn<QString>("expected");
        QTest::newRow("the same in another order")
            << "dbca" << QList<double>{0.2, 0.2, 0, 0} << "ab";
        QTest::newRow("read otherwise") << "ABcd" << QList<double>{0, 0.2, 0, 0.2} << "AB";
        QTest::newRow("one was divided") << "aBBcd" << QList<double>{0, 0.2, 0.25, 0, 0.2} << "aBB";
    }
    void theFinalWordsTakeOverASelection()
    {
        QFETCH(QString, texts);
        QFETCH(QList<double>, lefts);
        Words words;
        (void)words.mouseDown(inA);
        (void)words.mouseDragged(inB);
        words.mouseUp();
        (void)words.mouseMoved(inC);
        std::vector<TextRegion> regions;
        for (qsizetype i = 0; i < texts.size(); ++i) {
            const double y = QStringLiteral("cd").contains(texts[i]) ? 0 : 0.5;
            const double width = texts[i] == 'B' && texts.count('B') > 1 ? 0.05 : 0.1;
            regions.push_back({texts[i], {lefts[i], y, width, 0.25}});
        }
        words.settle(regions);
        QTEST(words.selected(), "expected");
        QVERIFY(!words.hoveredIndex); // the view points again
        QVERIFY(!words.isDragging);
    }

    void theFinalWordsDoNotEndADrag_data()
    {
        QTest::addColumn<bool>("keepsTheFirst");
        QTest::addColumn<QString>("expected");
        QTest::newRow("from a word that stays") << true << "abcd";
        QTest::newRow("from a word that goes") << false << "bcd";
    }
    void theFinalWordsDoNotEndADrag()
    {
        QFETCH(bool, keepsTheFirst);
        Words words;
        (void)words.mouseDown({8, 25}); // in a, nearer to b than to c
        (void)words.mouseDragged(inC);
        QCOMPARE(words.selected(), QString("abc"));
        std::vector<TextRegion> regions(words.textRegions.rbegin(), words.textRegions.rend());
        if (!keepsTheFirst)
            regions.pop_back();
        words.settle(regions);
        QVERIFY(words.isDragging);
        QVERIFY(words.mouseDragged(inD));
        QTEST(words.selected(), "expected");
        words.mouseUp();
        QCOMPARE(words.reports.size(), 1);
    }

    void settlesWithoutASelection()
    {
        Words words;
        words.settle({{"n", {0.5, 0.5, 0.1, 0.25}}});
        QCOMPARE(words.selected(), QString());
        (void)words.mouseDown({55, 25});
        QCOMPARE(words.selected(), QString("n"));
    }

    void selectRangeIgnoresUnknownRegions()
    {
        Words words;
        (void)words.mouseDown(inA);
        words.selectRange(0, 9);
        QCOMPARE(words.selected(), QString("a"));
    }
};

QTEST_APPLESS_MAIN(TestTextSelection)
#include "tst_TextSelection.moc"
