// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Underlines.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr int width = 60;
constexpr int height = 40;

InkMap inkOf(const std::vector<QRect> &strokes)
{
    InkMap map{{width, height}, std::vector<std::uint8_t>(std::size_t(width) * height, 0)};
    for (const QRect &stroke : strokes) {
        for (int y = stroke.top(); y <= stroke.bottom(); ++y) {
            for (int x = stroke.left(); x <= stroke.right(); ++x)
                map.contrast[std::size_t(y) * width + x] = 255;
        }
    }
    return map;
}

/// Stems two wide, which stand on row 20.
std::vector<QRect> word()
{
    std::vector<QRect> stems;
    for (int x = 10; x < 40; x += 3)
        stems.push_back({x, 10, 2, 10});
    return stems;
}

int inkIn(const InkMap &map, const QRect &box)
{
    int count = 0;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x)
            count += map.at(x, y) > 0;
    }
    return count;
}

} // namespace

class TestUnderlines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void erasesLineBelowWord()
    {
        std::vector<QRect> strokes = word();
        const QRect line(9, 22, 32, 1);
        strokes.push_back(line);
        InkMap map = inkOf(strokes);
        eraseUnderlines(map);
        QCOMPARE(inkIn(map, line), 0);
        QCOMPARE(map.contrast, inkOf(word()).contrast);
    }
    void keepsStrokesThatCrossIt()
    {
        std::vector<QRect> strokes = word();
        strokes.push_back({13, 10, 2, 16});
        InkMap expected = inkOf(strokes);
        strokes.push_back({9, 22, 32, 1});
        InkMap map = inkOf(strokes);
        eraseUnderlines(map);
        QCOMPARE(map.contrast, expected.contrast);
    }
    void keepsWhatIsNoUnderline_data()
    {
        QTest::addColumn<QRect>("line");
        QTest::addColumn<QList<QRect>>("others");
        QTest::newRow("underscores beside a word")
            << QRect(42, 21, 16, 1) << QList<QRect>{{38, 10, 2, 10}};
        QTest::newRow("the lower bar of an equals sign")
            << QRect(10, 20, 16, 3) << QList<QRect>{{10, 13, 16, 3}};
        QTest::newRow("the foot of a wide letter")
            << QRect(10, 20, 14, 2) << QList<QRect>{{10, 8, 14, 2}, {16, 10, 3, 10}};
        QTest::newRow("the feet of letters that touch")
            << QRect(10, 19, 18, 1) << QList<QRect>{{12, 10, 2, 9}, {18, 10, 2, 9}, {24, 10, 2, 9}};
        QTest::newRow("the level strokes of two syllables, which have more below")
            << QRect(10, 20, 26, 1)
            << QList<QRect>{{11, 10, 10, 8}, {24, 10, 10, 8}, {11, 23, 10, 5}, {24, 23, 10, 5}};
        QTest::newRow("a bar") << QRect(10, 22, 30, 5) << QList<QRect>{{10, 10, 28, 10}};
    }
    void keepsWhatIsNoUnderline()
    {
        QFETCH(QRect, line);
        QFETCH(QList<QRect>, others);
        std::vector<QRect> strokes(others.begin(), others.end());
        strokes.push_back(line);
        InkMap map = inkOf(strokes);
        eraseUnderlines(map);
        QCOMPARE(map.contrast, inkOf(strokes).contrast);
    }
};

QTEST_APPLESS_MAIN(TestUnderlines)
#include "tst_Underlines.moc"
