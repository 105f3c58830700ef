// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/fonts/FontFiles.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestFontFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void takesEachFixedFontInItsLargestEncoding()
    {
        const auto fonts = coreFontsIn(
            "5\n"
            "8x13-ISO8859-1.pcf.gz -misc-fixed-medium-r-normal--13-120-75-75-c-80-iso8859-1\n"
            "8x13.pcf.gz -misc-fixed-medium-r-normal--13-120-75-75-c-80-iso10646-1\n"
            "8x13B.pcf.gz -Misc-Fixed-Bold-R-Normal--13-120-75-75-C-80-ISO10646-1\n"
            "8x13O.pcf.gz -misc-fixed-medium-o-normal--13-120-75-75-c-80-iso10646-1\n"
            "8x13-KOI8-R.pcf.gz -misc-fixed-medium-r-normal--13-120-75-75-c-80-koi8-r\n",
            "/fonts/misc");
        QCOMPARE(fonts.size(), std::size_t(2));
        QCOMPARE(fonts[0].font.advance, 8.0);
        QVERIFY(fonts[0].font.isBitmap);
        QCOMPARE(fonts[0].own, (FaceFile{"/fonts/misc/8x13.pcf.gz", 0}));
        QCOMPARE(fonts[0].bold, (FaceFile{"/fonts/misc/8x13B.pcf.gz", 0}));
        QCOMPARE(fonts[0].italic, (FaceFile{"/fonts/misc/8x13O.pcf.gz", 0}));
        QCOMPARE(fonts[1].own, (FaceFile{"/fonts/misc/8x13B.pcf.gz", 0}));
        QCOMPARE(fonts[1].bold, FaceFile{});
    }

    void leavesTheRestOut_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("proportional") << QByteArray(
            "helvR12.pcf.gz -adobe-helvetica-medium-r-normal--12-120-75-75-p-67-iso10646-1");
        QTest::newRow("scalable") << QByteArray(
            "cour.pfb -adobe-courier-medium-r-normal--0-0-0-0-m-0-iso8859-1");
        QTest::newRow("no font name") << QByteArray("cursor.pcf.gz cursor");
        QTest::newRow("short name") << QByteArray("a.pcf.gz -misc-fixed-medium");
        QTest::newRow("no blank") << QByteArray("nonsense");
        QTest::newRow("only Cyrillic")
            << QByteArray("a.pcf.gz -misc-fixed-medium-r-normal--13-120-75-75-c-80-koi8-r");
    }
    void leavesTheRestOut()
    {
        QFETCH(QByteArray, line);
        QVERIFY(coreFontsIn("1\n" + line + '\n', "/fonts").empty());
    }
};

QTEST_APPLESS_MAIN(TestFontFiles)
#include "tst_FontFiles.moc"
