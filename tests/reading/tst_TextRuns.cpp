// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/TextRuns.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace tovek;

namespace {

InkPatch patch(int x, int y, int width, int height)
{
    return {QRect(x, y, width, height), width * height, 255};
}

/// Letters 7 wide and 10 high, two apart.
std::vector<InkPatch> word(int x, int y, int letters)
{
    std::vector<InkPatch> patches;
    for (int i = 0; i < letters; ++i)
        patches.push_back(patch(x + i * 9, y, 7, 10));
    return patches;
}

std::vector<QRect> boxesOf(const std::vector<std::vector<InkPatch>> &words)
{
    std::vector<InkPatch> patches;
    for (const auto &one : words)
        patches.insert(patches.end(), one.begin(), one.end());
    std::vector<QRect> boxes;
    for (const TextRun &run : textRuns(patches))
        boxes.push_back(run.box);
    std::sort(boxes.begin(), boxes.end(), [](const QRect &a, const QRect &b) {
        return std::pair(a.y(), a.x()) < std::pair(b.y(), b.x());
    });
    return boxes;
}

} // namespace

class TestTextRuns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void keepsWordsOfALineTogether()
    {
        QCOMPARE(boxesOf({word(0, 0, 3), word(32, 0, 4)}), (std::vector{QRect(0, 0, 66, 10)}));
    }
    void cutsColumnsWithLinesOfTheirOwn()
    {
        const auto boxes =
            boxesOf({word(0, 0, 3), word(100, 4, 3), word(0, 14, 3), word(100, 18, 3)});
        QCOMPARE(boxes,
                 (std::vector{QRect(0, 0, 25, 10), QRect(100, 4, 25, 10), QRect(0, 14, 25, 10),
                              QRect(100, 18, 25, 10)}));
    }
    void leavesTheDotWithItsLetter()
    {
        const auto boxes = boxesOf({{patch(0, 0, 2, 2)}, {patch(0, 4, 2, 10)}, word(5, 4, 2)});
        QCOMPARE(boxes, (std::vector{QRect(0, 0, 21, 14)}));
    }
    void keepsALineApartFromABandOfSeveral()
    {
        // The lines of two columns overlap, so that they make one tall band. The line of the page
        // above them is no row of their dots.
        const auto boxes = boxesOf({word(0, 0, 12), word(0, 13, 4), word(0, 27, 4), word(0, 41, 4),
                                    word(45, 20, 4), word(45, 34, 4)});
        QCOMPARE(boxes.front(), QRect(0, 0, 106, 10));
    }
    void dividesLinesThatTouch()
    {
        // A descender of the first line reaches the row where the second begins.
        auto first = word(0, 0, 6);
        first.push_back(patch(54, 0, 7, 13));
        QCOMPARE(boxesOf({first, word(0, 12, 6)}).size(), std::size_t(2));
    }
    void dropsFramesAndPictures()
    {
        QVERIFY(boxesOf({{InkPatch{QRect(0, 0, 60, 40), 190, 255}}}).empty());
        QVERIFY(boxesOf({{patch(0, 0, 300, 200)}}).empty());
        QVERIFY(textRuns({}).empty());
    }

    void measuresSmallLettersAndCapitals()
    {
        TextRun run{QRect(0, 0, 60, 14),
                    {patch(0, 0, 8, 10), patch(10, 3, 6, 7), patch(18, 3, 6, 7),
                     patch(26, 3, 6, 11), patch(34, 3, 6, 7), patch(42, 3, 6, 7)}};
        const LetterMetrics metrics = letterMetrics(run);
        QCOMPARE(metrics.baseline, 10.0);
        QCOMPARE(metrics.xHeight, 7.0);
        QCOMPARE(metrics.capHeight, 10.0);
        QVERIFY(metrics.isCertain);
    }
    void takesOneHeightForCapitals()
    {
        TextRun run{QRect(0, 0, 30, 10), word(0, 0, 4)};
        const LetterMetrics metrics = letterMetrics(run);
        QCOMPARE(metrics.capHeight, 10.0);
        QVERIFY(!metrics.isCertain);
    }
    void settlesOneHeightAfterTheRestOfThePicture()
    {
        std::vector<PageRun> runs{{{}, {10, 14, 10, true}},
                                  {{}, {30, 14, 10, true}},
                                  {{}, {50, 10, 7.3, false}},
                                  {{}, {70, 14, 10.2, false}}};
        settleMetrics(runs);
        QCOMPARE(runs[2].metrics.xHeight, 10.0);
        QVERIFY(runs[2].metrics.capHeight > 13);
        QCOMPARE(runs[3].metrics.capHeight, 14.0);
    }
    void putsMarksOnTheLineBesideThem_data()
    {
        QTest::addColumn<QRect>("box");
        QTest::addColumn<bool>("isOnLine");
        QTest::newRow("asterisk") << QRect(300, 20, 5, 5) << true;
        QTest::newRow("hyphen") << QRect(300, 25, 4, 1) << true;
        QTest::newRow("slash") << QRect(300, 19, 6, 13) << true;
        QTest::newRow("capital") << QRect(300, 20, 8, 10) << true;
        QTest::newRow("digit of a smaller text") << QRect(300, 25, 4, 5) << false;
        QTest::newRow("capital of a larger text") << QRect(300, 12, 12, 18) << false;
        QTest::newRow("mark on the line below") << QRect(300, 34, 5, 5) << false;
    }
    void putsMarksOnTheLineBesideThem()
    {
        QFETCH(QRect, box);
        QFETCH(bool, isOnLine);
        const LetterMetrics line{30, 10, 7, true};
        const TextRun mark{box, {{box, box.width() * box.height(), 255}}};
        std::vector<PageRun> runs{{{QRect(0, 20, 200, 13), word(0, 20, 9)}, line},
                                  {mark, letterMetrics(mark)}};
        settleMetrics(runs);
        QCOMPARE(runs[1].metrics == line, isOnLine);
    }
};

QTEST_APPLESS_MAIN(TestTextRuns)
#include "tst_TextRuns.moc"
