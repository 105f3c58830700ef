// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PngPieces.h"
#include "platform/portal/PngReader.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>

using namespace tovek;
using State = PngReader::State;

namespace {

constexpr qint64 enoughMemory = qint64(1) << 26;

QImage noise(QSize size, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, format);
    QRandomGenerator random(uint(size.width()));
    for (int y = 0; y < size.height(); ++y)
        random.fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), image.bytesPerLine() / 4);
    return image;
}

/// Areas of one colour with sharp edges, and slopes.
QImage windows(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           x / 40 % 3 == 0       ? 0xfff0f0f0
                               : y / 30 % 2 == 0 ? qRgb(x % 256, y % 256, (x + y) % 256)
                               : x * y % 7 == 0  ? 0xff202020
                                                 : 0xffffffff);
    }
    return image;
}

QByteArray savedByTheToolkit(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG") ? bytes : QByteArray();
}

State read(PngReader &reader, const QByteArray &png, qsizetype atOnce = 65536)
{
    for (qsizetype i = 0; i < png.size(); i += atOnce) {
        const QByteArray part = png.mid(i, atOnce);
        reader.add({reinterpret_cast<const uint8_t *>(part.constData()), size_t(part.size())});
    }
    return reader.state();
}

State read(const QByteArray &png)
{
    PngReader reader(enoughMemory);
    return read(reader, png);
}

} // namespace

class TestPngReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsThePixelsOfTheToolkitsReader_data()
    {
        QTest::addColumn<QByteArray>("png");
        for (int filter = 0; filter < 5; ++filter) {
            for (const size_t bytes : {3, 4})
                QTest::addRow("filter %d, %d bytes a pixel", filter, int(bytes))
                    << pngOf(noise({33, 20}), bytes, filter);
        }
        for (const int width : {1, 2, 3, 4, 5, 640}) {
            for (const size_t bytes : {3, 4})
                QTest::addRow("%d wide, %d bytes a pixel", width, int(bytes))
                    << pngOf(noise({width, 11}), bytes);
        }
        QTest::newRow("a row longer than what is read at once")
            << pngOf(noise({70000, 6}), 4, -1, 1 << 20);
        QTest::newRow("chunks of seven bytes") << pngOf(windows({300, 200}), 4, -1, 7);
        QTest::newRow("noise as the toolkit writes it") << savedByTheToolkit(noise({500, 300}));
        QTest::newRow("windows as it writes them") << savedByTheToolkit(windows({900, 700}));
        QTest::newRow("opacity as it writes it")
            << savedByTheToolkit(noise({90, 70}, QImage::Format_ARGB32));
    }
    void readsThePixelsOfTheToolkitsReader()
    {
        QFETCH(QByteArray, png);
        const QImage expected = QImage::fromData(png, "PNG").convertToFormat(QImage::Format_RGB32);
        QVERIFY(!expected.isNull());
        for (const qsizetype atOnce : {qsizetype(1), qsizetype(13), qsizetype(4096), png.size()}) {
            PngReader reader(enoughMemory);
            QCOMPARE(read(reader, png, atOnce), State::whole);
            QCOMPARE(reader.image(), expected);
        }
    }
    void passesOverWhatSaysNothingOfThePixels()
    {
        const QByteArray png = pngOf(noise({20, 10}), 4);
        const QByteArray told = png.first(33) + pngChunk("tEXt", "Software\0a desktop")
            + pngChunk("pHYs", QByteArray(9, 1)) + pngChunk("PLTE", QByteArray(6, 1)) + png.mid(33);
        QCOMPARE(read(told), State::whole);
        QCOMPARE(read(png.chopped(12) + pngChunk("tIME", QByteArray(7, 1)) + png.last(12)),
                 State::whole);
    }

    void isNotDoneBeforeTheLastByte()
    {
        const QByteArray png = pngOf(windows({40, 30}), 3);
        for (qsizetype size = 0; size < png.size(); ++size)
            QCOMPARE(read(png.first(size)), State::reading);
    }
    void tellsWhichRowsAreThere()
    {
        const QImage expected = noise({300, 200}).convertToFormat(QImage::Format_RGB32);
        const QByteArray png = pngOf(expected, 4);
        PngReader reader(enoughMemory);
        QCOMPARE(read(reader, png.first(png.size() / 2)), State::reading);
        const int rows = reader.rows();
        QVERIFY(rows > 50 && rows < 150);
        const QImage copy = reader.image();
        QCOMPARE(copy.copy(0, 0, 300, rows), expected.copy(0, 0, 300, rows));
        QCOMPARE(read(reader, png.mid(png.size() / 2)), State::whole);
        QCOMPARE(reader.rows(), 200);
        QCOMPARE(copy, expected);
    }
    void believesNoDamagedByte()
    {
        const QByteArray png = pngOf(windows({40, 30}), 4, -1, 100);
        for (qsizetype i = 0; i < png.size(); ++i) {
            for (const int bit : {0, 5, 7}) {
                QByteArray damaged = png;
                damaged[i] = char(damaged[i] ^ (1 << bit));
                QVERIFY2(read(damaged) != State::whole, qPrintable(QString::number(i)));
            }
        }
    }

    void leavesOtherKindsToOthers_data()
    {
        QTest::addColumn<QByteArray>("png");
        const QImage image = noise({12, 9});
        const auto saved = [&](QImage::Format format) {
            return savedByTheToolkit(image.convertToFormat(format));
        };
        QTest::newRow("nothing like it") << QByteArray("GIF89a, and so on, and on");
        QTest::newRow("colours from a table") << saved(QImage::Format_Indexed8);
        QTest::newRow("grey") << saved(QImage::Format_Grayscale8);
        QTest::newRow("two bytes a colour") << saved(QImage::Format_RGBA64);
        const auto kind = [&](PngKind changed) {
            changed.width = 12;
            changed.height = 9;
            return pngSignature() + pngHeader(changed)
                + pngChunk("IDAT", deflated(pngRows(image, 4))) + pngChunk("IEND", {});
        };
        QTest::newRow("interlaced") << kind({.interlacing = 1});
        QTest::newRow("packed in another way") << kind({.packing = 1});
        QTest::newRow("filtered in another way") << kind({.filters = 1});
        QTest::newRow("four bits") << kind({.bits = 4});
    }
    void leavesOtherKindsToOthers()
    {
        QFETCH(QByteArray, png);
        QCOMPARE(read(png), State::refused);
    }

    void refusesSizesThatAreNone_data()
    {
        QTest::addColumn<uint>("width");
        QTest::addColumn<uint>("height");
        QTest::addColumn<bool>("isPicture");
        QTest::newRow("no width") << 0u << 9u << false;
        QTest::newRow("no height") << 9u << 0u << false;
        QTest::newRow("more than there is memory") << 4096u << 4097u << false;
        QTest::newRow("all that there is memory for") << 4096u << 4096u << true;
        QTest::newRow("the widest of all") << 0xffffffffu << 1u << false;
        QTest::newRow("a product that is none") << 0x80000001u << 0x80000000u << false;
    }
    void refusesSizesThatAreNone()
    {
        QFETCH(uint, width);
        QFETCH(uint, height);
        const QByteArray begun = pngSignature() + pngHeader({width, height});
        QTEST(read(begun) == State::reading, "isPicture");
    }

    void refusesWhatDoesNotFit_data()
    {
        QTest::addColumn<QByteArray>("png");
        const QImage image = noise({12, 9});
        const QByteArray begin = pngSignature() + pngHeader({12, 9});
        const QByteArray rows = pngRows(image, 4);
        const QByteArray pixels = pngChunk("IDAT", deflated(rows));
        const QByteArray end = pngChunk("IEND", {});
        QByteArray unknown = rows;
        unknown[0] = 5;
        const auto with = [&](const QByteArray &changed) {
            return begin + pngChunk("IDAT", deflated(changed)) + end;
        };
        QTest::newRow("a row too many") << with(rows + rows.first(49));
        QTest::newRow("a byte too many") << with(rows + 'x');
        QTest::newRow("a byte too few") << with(rows.chopped(1));
        QTest::newRow("a filter that is none") << with(unknown);
        QTest::newRow("no pixels") << begin + end;
        QTest::newRow("something behind the pixels' end")
            << begin + pngChunk("IDAT", deflated(rows) + "more") + end;
        QTest::newRow("something behind the end") << begin + pixels + end + 'x';
        QTest::newRow("pixels in two places") << begin + pngChunk("IDAT", deflated(rows).first(40))
                + pngChunk("tEXt", "x") + pngChunk("IDAT", deflated(rows).mid(40)) + end;
        QTest::newRow("a second header") << begin + pngHeader({12, 9}) + pixels + end;
        QTest::newRow("no header first") << pngSignature() + pixels + end;
        QTest::newRow("a long header")
            << pngSignature() + pngChunk("IHDR", QByteArray(14, 1)) + pixels + end;
        QTest::newRow("a chunk that one has to know")
            << begin + pngChunk("ABCD", "x") + pixels + end;
        QTest::newRow("an end with a body") << begin + pixels + pngChunk("IEND", "x");
        QTest::newRow("a chunk longer than any")
            << begin + QByteArray("\x80\0\0\0tEXtxxxxxxxx", 16);
    }
    void refusesWhatDoesNotFit()
    {
        QFETCH(QByteArray, png);
        QCOMPARE(read(png), State::refused);
    }
};

QTEST_APPLESS_MAIN(TestPngReader)
#include "tst_PngReader.moc"
