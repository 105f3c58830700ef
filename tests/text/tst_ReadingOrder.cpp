// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/ReadingOrder.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestReadingOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsLinesFromTheTopAndWordsFromTheLeft_data()
    {
        using Rects = std::vector<Rect>;
        using Order = std::vector<int>;
        QTest::addColumn<Rects>("rects");
        QTest::addColumn<Order>("expected");
        QTest::newRow("nothing") << Rects{} << Order{};
        QTest::newRow("one word") << Rects{{5, 5, 10, 10}} << Order{0};
        QTest::newRow("backwards in one line")
            << Rects{{40, 0, 10, 10}, {20, 0, 10, 10}, {0, 0, 10, 10}} << Order{2, 1, 0};
        QTest::newRow("two lines, lower one first in the list")
            << Rects{{0, 0, 10, 10}, {20, 0, 10, 10}, {0, 20, 10, 10}, {20, 20, 10, 10}}
            << Order{2, 3, 0, 1};
        QTest::newRow("two columns are read across")
            << Rects{{0, 20, 10, 10}, {0, 0, 10, 10}, {100, 20, 10, 10}, {100, 0, 10, 10}}
            << Order{0, 2, 1, 3};
        QTest::newRow("centers apart by exactly the tolerance")
            << Rects{{20, 10, 10, 10}, {0, 5, 10, 10}} << Order{1, 0};
        QTest::newRow("centers apart by more than the tolerance")
            << Rects{{20, 10, 10, 10}, {0, 4.9, 10, 10}} << Order{0, 1};
        QTest::newRow("a sloping line is cut where it leaves its first word")
            << Rects{{0, 20, 10, 10}, {20, 17, 10, 10}, {40, 14, 10, 10}, {10, 12, 10, 10}}
            << Order{0, 1, 3, 2};
        QTest::newRow("mixed sizes: the mean height counts")
            << Rects{{50, 0, 10, 30}, {0, 14, 10, 10}} << Order{1, 0};
        QTest::newRow("equal places keep the list's order")
            << Rects{{0, 0, 10, 10}, {0, 0, 10, 10}, {0, 0, 5, 10}} << Order{0, 1, 2};
        QTest::newRow("empty boxes on one line")
            << Rects{{5, 1, 0, 0}, {0, 1, 0, 0}} << Order{1, 0};
    }
    void readsLinesFromTheTopAndWordsFromTheLeft()
    {
        QFETCH(std::vector<Rect>, rects);
        QTEST(readingOrder(rects), "expected");
    }

    void takesTheRangeInEitherDirection_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<std::set<int>>("expected");
        QTest::newRow("forwards") << 3 << 2 << std::set<int>{0, 2, 3};
        QTest::newRow("backwards") << 2 << 3 << std::set<int>{0, 2, 3};
        QTest::newRow("one word") << 1 << 1 << std::set<int>{1};
        QTest::newRow("everything") << 1 << 2 << std::set<int>{0, 1, 2, 3};
        QTest::newRow("unknown start") << 7 << 2 << std::set<int>{};
        QTest::newRow("unknown end") << 2 << -1 << std::set<int>{};
    }
    void takesTheRangeInEitherDirection()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QTEST(rangeBetween(from, to, {1, 3, 0, 2}), "expected");
    }
};

QTEST_APPLESS_MAIN(TestReadingOrder)
#include "tst_ReadingOrder.moc"
