// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeGlyphs.h"
#include "reading/fonts/CellReader.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr int width = FakeGlyphs::cellWidth;
constexpr int baseline = 20;

QImage sheet(QColor color = Qt::white)
{
    QImage image(40 * width, 40, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// Blank cells as ' ', what is drawn as '~', what is no character as '#'.
QString readRow(const QImage &image, int at = baseline, int font = 1)
{
    FakeGlyphs glyphs({font});
    GlyphTable table(glyphs, {}, width, FakeGlyphs::rowPitch);
    CellReader reader(image, table, glyphs);
    const auto cells = reader.row(0, at, image.width() / width);
    if (!cells)
        return QStringLiteral("outside");
    QString text;
    for (const ReadCell &cell : *cells) {
        switch (cell.kind) {
        case ReadCell::Kind::blank:
            text += ' ';
            break;
        case ReadCell::Kind::drawn:
            text += '~';
            break;
        case ReadCell::Kind::letter:
            text += QChar(char16_t(cell.character));
            break;
        case ReadCell::Kind::foreign:
            text += '#';
            break;
        }
    }
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

} // namespace

class TestCellReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsWhateverTheColours_data()
    {
        QTest::addColumn<QColor>("paper");
        QTest::addColumn<QColor>("ink");
        QTest::addColumn<FontFace>("face");
        QTest::newRow("dark on light") << QColor(Qt::white) << QColor(Qt::black) << FontFace::own;
        QTest::newRow("light on dark") << QColor(20, 20, 30) << QColor(Qt::green) << FontFace::own;
        QTest::newRow("faint") << QColor(30, 30, 30) << QColor(90, 60, 60) << FontFace::own;
        QTest::newRow("bold") << QColor(Qt::black) << QColor(Qt::white) << FontFace::bold;
    }
    void readsWhateverTheColours()
    {
        QFETCH(QColor, paper);
        QFETCH(QColor, ink);
        QFETCH(FontFace, face);
        QImage image = sheet(paper);
        const QString text = "if (Count[3] != 0x7F) { return; }";
        writeText(image, {0, baseline}, text, 1, {paper, ink, face, false});
        QCOMPARE(readRow(image), text);
    }

    void readsACellAgainstItsOwnBackground()
    {
        QImage image = sheet();
        writeText(image, {0, baseline}, "File Open", 1);
        writeText(image, {5 * width, baseline}, "O", 1,
                  {Qt::black, Qt::white, FontFace::own, false});
        writeText(image, {6 * width, baseline}, "pen", 1,
                  {Qt::blue, Qt::yellow, FontFace::own, false});
        QCOMPARE(readRow(image), QString("File Open"));
    }

    void readsThroughAnUnderline()
    {
        QImage image = sheet();
        writeText(image, {0, baseline}, "See Below Now", 1,
                  {Qt::white, Qt::black, FontFace::own, true});
        QCOMPARE(readRow(image), QString("See~Below~Now"));
    }

    void takesFramesForNoText()
    {
        QImage image = sheet();
        writeText(image, {2 * width, baseline}, "Left", 1);
        writeText(image, {9 * width, baseline}, "Right", 1);
        for (int y = 0; y < image.height(); ++y)
            image.setPixelColor(7 * width + 3, y, Qt::black);
        for (int x = 15 * width; x < 18 * width; ++x)
            image.setPixelColor(x, baseline - 4, Qt::black);
        QCOMPARE(readRow(image), QString("  Left ~ Right ~~~"));
    }

    void givesNoNameToWhatTheFontDoesNotHave()
    {
        QImage image = sheet();
        writeText(image, {0, baseline}, "Abc", 1);
        for (int y = baseline - 7; y < baseline; y += 2) {
            for (int x = 4 * width + (y % 4 ? 0 : 1); x < 5 * width; x += 2)
                image.setPixelColor(x, y, Qt::black);
        }
        QCOMPARE(readRow(image), QString("Abc #"));
    }

    void takesNoiseForNoAccent()
    {
        QImage image = sheet();
        writeText(image, {0, baseline}, "caf\u00e9 lee the tree", 1);
        // A speck above an e, fainter than an accent and a column off, and one on the line.
        const QPoint e = {6 * width + 4, baseline - 7};
        image.setPixelColor(e, QColor(120, 120, 120));
        image.setPixelColor(e + QPoint(1, 3), QColor(120, 120, 120));
        QCOMPARE(readRow(image), QString("caf\u00e9 lee the tree"));
    }

    void readsARowThatTheEdgeCuts()
    {
        QImage image = sheet();
        writeText(image, {0, 6}, "Cut Above", 1);
        QCOMPARE(readRow(image, 6), QString("Cut Above"));
        QCOMPARE(readRow(image, 2), QString("outside"));
    }

    void isFarFromAnotherFont()
    {
        QImage image = sheet();
        writeText(image, {0, baseline}, "Another Font altogether", 2);
        FakeGlyphs glyphs({1});
        GlyphTable table(glyphs, {}, width, FakeGlyphs::rowPitch);
        CellReader reader(image, table, glyphs);
        const auto cells = reader.row(0, baseline, 23);
        QVERIFY(cells);
        double distance = 0;
        for (const ReadCell &cell : *cells)
            distance += cell.distance;
        QVERIFY2(distance / 21 > 0.08, qPrintable(QString::number(distance / 21)));
    }
};

QTEST_APPLESS_MAIN(TestCellReader)
#include "tst_CellReader.moc"
