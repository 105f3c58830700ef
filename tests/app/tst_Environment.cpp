// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/Environment.h"
#include "fakes/LogCapture.h"

#include <QTest>

using namespace tovek;

class TestEnvironment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void knowsPossibleScales_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isPossible");
        const struct
        {
            const char *text;
            bool isPossible;
        } rows[]{{"1", true},    {"1.25", true}, {"8", true},    {"0.25", true},
                 {"0", false},   {"-1", false},  {"nan", false}, {"inf", false},
                 {"100", false}, {"", false},    {"two", false}, {"1.5x", false}};
        for (const auto &row : rows)
            QTest::newRow(row.text) << QByteArray(row.text) << row.isPossible;
    }
    void knowsPossibleScales()
    {
        QFETCH(QByteArray, text);
        QTEST(isPossibleScale(text), "isPossible");
    }

    void forgetsWhatIsImpossibleAndSaysSo_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("scale") << QByteArray("QT_SCALE_FACTOR") << QByteArray("1.5") << true;
        QTest::newRow("no scale") << QByteArray("QT_SCALE_FACTOR") << QByteArray("nan") << false;
        const QByteArray screens = "QT_SCREEN_SCALE_FACTORS";
        QTest::newRow("of screens") << screens << QByteArray("DP-1=1.5;DP-2=2") << true;
        QTest::newRow("of no screen") << screens << QByteArray("DP-1=1.5;DP-2=0") << false;
        QTest::newRow("dots per inch") << QByteArray("QT_FONT_DPI") << QByteArray("144") << true;
        QTest::newRow("no dots per inch")
            << QByteArray("QT_FONT_DPI") << QByteArray("9600") << false;
        QTest::newRow("folder") << QByteArray("XDG_STATE_HOME") << QByteArray("/tmp/x") << true;
        QTest::newRow("relative folder")
            << QByteArray("XDG_STATE_HOME") << QByteArray("tmp/x") << false;
    }
    void forgetsWhatIsImpossibleAndSaysSo()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, value);
        QFETCH(bool, isKept);
        qputenv(name.constData(), value);
        LogCapture log;
        forgetImpossibleEnvironment();
        QCOMPARE(qEnvironmentVariableIsSet(name.constData()), isKept);
        QCOMPARE(log.lines().size(), isKept ? 0 : 1);
        qunsetenv(name.constData());
    }

    void forgetsADensityThatIsImpossibleAndSaysSo_data()
    {
        QTest::addColumn<double>("dotsPerInch");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("usual") << 96.0 << true;
        QTest::newRow("most") << 768.0 << true;
        QTest::newRow("more") << 769.0 << false;
    }
    void forgetsADensityThatIsImpossibleAndSaysSo()
    {
        QFETCH(double, dotsPerInch);
        QFETCH(bool, isKept);
        qunsetenv("QT_FONT_DPI");
        LogCapture log;
        forgetImpossibleDensity(dotsPerInch);
        QCOMPARE(qgetenv("QT_FONT_DPI"), isKept ? QByteArray() : QByteArray("96"));
        QCOMPARE(log.lines().size(), isKept ? 0 : 1);
        qunsetenv("QT_FONT_DPI");
    }
};

QTEST_APPLESS_MAIN(TestEnvironment)
#include "tst_Environment.moc"
