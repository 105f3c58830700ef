// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkSegments.h"
#include "reading/LineStrip.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr int rows = 12;

/// Strokes of a column's strength each, as high as the line.
struct Stroke
{
    QRect box;
    int strength;
};

InkMap inkOf(const std::vector<Stroke> &strokes, int width)
{
    InkMap map{{width, rows}, std::vector<std::uint8_t>(std::size_t(width) * rows, 0)};
    for (const auto &[box, strength] : strokes) {
        for (int y = box.top(); y <= box.bottom(); ++y) {
            for (int x = box.left(); x <= box.right(); ++x)
                map.contrast[std::size_t(y) * width + x] = std::uint8_t(strength);
        }
    }
    return map;
}

TextRun runOf(const InkMap &map)
{
    return {QRect(QPoint(), map.size), inkPatches(map, faintestInk)};
}

LetterMetrics metricsOf(double cap)
{
    LetterMetrics metrics;
    metrics.baseline = rows;
    metrics.capHeight = cap;
    metrics.xHeight = cap * 0.7;
    return metrics;
}

} // namespace

class TestLineStrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void evensFaintColourBesideStrongOne()
    {
        // A quotation mark in a pale colour, and a black comma behind it.
        const InkMap map =
            inkOf({{{4, 1, 1, 4}, 90}, {{7, 1, 1, 4}, 90}, {{12, 9, 2, 3}, 255}}, 30);
        const TextRun run = runOf(map);
        const InkMap even = evenInk(map, run, metricsOf(10));
        QCOMPARE(even.at(4, 2), 255);
        QCOMPARE(even.at(12, 10), 255);
        QCOMPARE(inkSegments(even, run).size(), std::size_t(3));
    }
    void leavesNoiseFaint()
    {
        const InkMap map = inkOf({{{4, 1, 1, 4}, 40}, {{8, 2, 2, 10}, 255}}, 30);
        QVERIFY(evenInk(map, runOf(map), metricsOf(10)).at(4, 2) < strokeInk);
    }
    void keepsDashWholeThatIsFainterAtItsEnds()
    {
        // Evened after letters that only its ends are close to.
        const InkMap map =
            inkOf({{{4, 5, 3, 1}, 130}, {{7, 5, 5, 1}, 255}, {{12, 5, 3, 1}, 130}}, 30);
        QCOMPARE(inkSegments(map, runOf(map)), std::vector{QRect(4, 5, 11, 1)});
    }
    void cutsDashesWhoseSoftEdgesMeet()
    {
        const InkMap map =
            inkOf({{{4, 5, 5, 1}, 255}, {{9, 5, 1, 1}, 120}, {{10, 5, 5, 1}, 255}}, 30);
        QCOMPARE(inkSegments(map, runOf(map)).size(), std::size_t(2));
    }
};

QTEST_APPLESS_MAIN(TestLineStrip)
#include "tst_LineStrip.moc"
