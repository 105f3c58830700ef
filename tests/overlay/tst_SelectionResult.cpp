// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/WhenReady.h"
#include "overlay/SelectionResult.h"

#include <QTest>

using namespace tovek;

class TestSelectionResult : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesWhereItCanBeUsed_data()
    {
        QTest::addColumn<bool>("hasPixels");
        QTest::addColumn<bool>("isDrawnOn");
        QTest::addColumn<double>("width");
        QTest::addColumn<QString>("goesTo");
        const QString plain = QStringLiteral("plain");
        const QString drawn = QStringLiteral("drawn");
        QTest::newRow("nothing drawn") << true << false << 10.0 << plain;
        QTest::newRow("drawn") << true << true << 10.0 << drawn;
        QTest::newRow("pixels lost") << false << true << 10.0 << plain;
        QTest::newRow("pixels lost, nothing drawn") << false << false << 10.0 << plain;
        QTest::newRow("too large to draw on") << true << true << 40000.0 << plain;
    }
    void goesWhereItCanBeUsed()
    {
        QFETCH(bool, hasPixels);
        QFETCH(bool, isDrawnOn);
        QFETCH(double, width);
        QImage pixels(20, 20, QImage::Format_RGB32);
        pixels.fill(Qt::white);
        SelectionResult result{
            readyFuture(hasPixels ? pixels : QImage()), {20, 20}, {0, 0, width, 10}, {}};
        if (isDrawnOn)
            result.annotations.emplace_back(LineAnnotation());
        QStringList got;
        deliver(
            result, this, [&](const Rect &) { got << QStringLiteral("plain"); },
            [&](const Image &) { got << QStringLiteral("drawn"); });
        QCOMPARE(got.size(), 1);
        QTEST(got.front(), "goesTo");
        deliver(result, this, nullptr, nullptr);
    }
};

QTEST_GUILESS_MAIN(TestSelectionResult)
#include "tst_SelectionResult.moc"
