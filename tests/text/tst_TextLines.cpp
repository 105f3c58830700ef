// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextLines.h"

#include <QTest>

using namespace tovek;

class TestTextLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsWordsByTheirMiddles_data()
    {
        QTest::addColumn<QList<double>>("middles");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QList<double>{} << QString();
        QTest::newRow("one word") << QList<double>{0.5} << QStringLiteral("w0");
        QTest::newRow("exactly 0.02 apart") << QList<double>{0.5, 0.48} << QStringLiteral("w0 w1");
        QTest::newRow("exactly 0.02 upwards")
            << QList<double>{0.3, 0.32} << QStringLiteral("w0 w1");
        QTest::newRow("a little more") << QList<double>{0.5, 0.4799} << QStringLiteral("w0\nw1");
        QTest::newRow("a sloping line")
            << QList<double>{0.5, 0.485, 0.47, 0.455} << QStringLiteral("w0 w1 w2 w3");
        QTest::newRow("two lines")
            << QList<double>{0.8, 0.8, 0.4, 0.41} << QStringLiteral("w0 w1\nw2 w3");
    }
    void joinsWordsByTheirMiddles()
    {
        QFETCH(QList<double>, middles);
        std::vector<TextRegion> regions;
        for (const double middle : middles)
            regions.push_back(
                {QStringLiteral("w%1").arg(regions.size()), {0.1, middle - 0.05, 0.1, 0.1}});
        QTEST(joinedLines(regions), "text");
    }
};

QTEST_APPLESS_MAIN(TestTextLines)
#include "tst_TextLines.moc"
