// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Resources.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestX11Resources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void nameDotsPerInch_data()
    {
        QTest::addColumn<QByteArray>("resources");
        QTest::addColumn<double>("expected");
        QTest::newRow("none") << QByteArray() << 0.0;
        QTest::newRow("another") << QByteArray("Xft.antialias:\t1\n") << 0.0;
        QTest::newRow("usual") << QByteArray("Xft.antialias:\t1\nXft.dpi:\t144\n") << 144.0;
        QTest::newRow("a fraction, at the end") << QByteArray("Xft.dpi: 110.5") << 110.5;
        QTest::newRow("a word") << QByteArray("Xft.dpi:\tlarge\n") << 0.0;
        QTest::newRow("of something else") << QByteArray("my.Xft.dpi:\t9\nXft.dpi2:\t9\n") << 0.0;
    }
    void nameDotsPerInch()
    {
        QFETCH(QByteArray, resources);
        QFETCH(double, expected);
        QCOMPARE(dotsPerInchIn(resources).value_or(0), expected);
    }
};

QTEST_APPLESS_MAIN(TestX11Resources)
#include "tst_X11Resources.moc"
