// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/Deflater.h"
#include "capture/PngEncoder.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QtEndian>

#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <zlib.h>

using namespace tovek;

namespace {

constexpr uid_t nobody = 65534;
constexpr int notTried = 77;

enum class Picture { noise, flat, gradient, mixed };

struct Chunk
{
    QByteArray type;
    QByteArray data;
};

} // namespace

class TestPngEncoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void keepsEveryPixel_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<Picture>("kind");
        QTest::addColumn<const Deflater *>("deflater");
        const QSize sizes[] = {{1, 1},    {1, 7},     {7, 1},     {2, 2},      {3, 5},
                               {17, 13},  {101, 99},  {641, 479}, {1366, 768}, {1, 3000},
                               {3001, 1}, {90001, 3}, {87381, 4}, {2560, 34},  {2560, 35}};
        for (const Deflater *deflater : {&fastestDeflater(), &zlibDeflater()}) {
            for (const QSize &size : sizes) {
                for (const Picture kind :
                     {Picture::noise, Picture::flat, Picture::gradient, Picture::mixed}) {
                    QTest::addRow("%s %dx%d kind %d", deflater->name, size.width(), size.height(),
                                  int(kind))
                        << size << kind << deflater;
                }
            }
        }
    }
    void keepsEveryPixel()
    {
        QFETCH(QSize, size);
        QFETCH(Picture, kind);
        QFETCH(const Deflater *, deflater);
        const QImage image = picture(size, kind, QImage::Format_RGB32);
        PngOptions options;
        options.deflater = deflater;
        const QByteArray png = encodePng(image, options);
        const QImage read = QImage::fromData(png, "PNG");
        QCOMPARE(read.format(), QImage::Format_RGB32);
        QCOMPARE(read, image);
        verifyStrictly(png, size, 3);
    }

    void keepsEveryPixelOfRandomSizes()
    {
        QRandomGenerator random(4711);
        for (int i = 0; i < 150; ++i) {
            const QSize size(1 + random.bounded(900), 1 + random.bounded(700));
            const QImage image = picture(size, Picture(random.bounded(4)), QImage::Format_RGB32);
            PngOptions options;
            options.threads = 1 + random.bounded(5);
            const QByteArray png = encodePng(image, options);
            QVERIFY2(QImage::fromData(png) == image,
                     qPrintable(QString::asprintf("%dx%d", size.width(), size.height())));
            verifyStrictly(png, size, 3);
        }
    }

    void isTheSameOnAnyNumberOfCores()
    {
        const QImage image = picture({1000, 900}, Picture::mixed, QImage::Format_RGB32);
        PngOptions options;
        options.threads = 1;
        const QByteArray png = encodePng(image, options);
        for (const unsigned threads : {0u, 2u, 3u, 16u, 1000u}) {
            options.threads = threads;
            QCOMPARE(encodePng(image, options), png);
        }
    }

    void needsNoSecondThread()
    {
        PngOptions options;
        options.threads = 8;
        const QImage image = picture({1366, 768}, Picture::mixed, QImage::Format_RGB32);
        const QByteArray expected = encodePng(image, options);
        const pid_t child = fork();
        if (child == 0) {
            // The limit binds nobody who is root.
            const rlimit none{0, 0};
            if ((geteuid() == 0 && setuid(nobody) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0)
                _exit(notTried);
            try {
                std::thread([] {}).join();
                _exit(notTried);
            } catch (const std::system_error &) {
                _exit(encodePng(image, options) == expected ? 0 : 1);
            }
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        if (WEXITSTATUS(status) == notTried)
            QSKIP("threads cannot be refused here");
        QCOMPARE(WEXITSTATUS(status), 0);
    }

    void ignoresTheUnusedByteOfOpaquePixels()
    {
        QImage image(2, 1, QImage::Format_RGB32);
        auto *const pixels = reinterpret_cast<QRgb *>(image.bits());
        pixels[0] = 0x00336699;
        pixels[1] = 0xff336699;
        const QImage read = QImage::fromData(encodePng(image));
        QVERIFY(!read.hasAlphaChannel());
        QCOMPARE(read.pixel(0, 0), 0xff336699);
        QCOMPARE(read.pixel(1, 0), 0xff336699);
    }

    void keepsAlpha()
    {
        QImage image = picture({123, 77}, Picture::noise, QImage::Format_ARGB32);
        for (int x = 0; x < 123; ++x)
            image.setPixel(x, 5, qRgba(x, 2 * x, 30, 2 * x));
        const QByteArray png = encodePng(image);
        QCOMPARE(QImage::fromData(png).convertToFormat(QImage::Format_ARGB32), image);
        verifyStrictly(png, image.size(), 4);
        const QImage premultiplied = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(QImage::fromData(encodePng(premultiplied)).convertToFormat(QImage::Format_ARGB32),
                 premultiplied.convertToFormat(QImage::Format_ARGB32));
    }

    void encodesOtherFormats_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("565") << QImage::Format_RGB16;
        QTest::newRow("30 bits") << QImage::Format_RGB30;
        QTest::newRow("packed") << QImage::Format_RGB888;
        QTest::newRow("grey") << QImage::Format_Grayscale8;
    }
    void encodesOtherFormats()
    {
        QFETCH(QImage::Format, format);
        const QImage image =
            picture({50, 40}, Picture::mixed, QImage::Format_RGB32).convertToFormat(format);
        QCOMPARE(QImage::fromData(encodePng(image)), image.convertToFormat(QImage::Format_RGB32));
    }

    void encodesAViewIntoALargerImage()
    {
        const QImage image = picture({300, 200}, Picture::mixed, QImage::Format_RGB32);
        const QRect rect(11, 7, 251, 181);
        const QImage view(image.constScanLine(rect.y()) + 4 * rect.x(), rect.width(), rect.height(),
                          image.bytesPerLine(), QImage::Format_RGB32);
        QCOMPARE(QImage::fromData(encodePng(view)), image.copy(rect));
    }

    void isEmptyForANullImage() { QVERIFY(encodePng(QImage()).isEmpty()); }

    void notesTheDensityOnlyWhenAsked()
    {
        const QImage image = picture({5, 5}, Picture::flat, QImage::Format_RGB32);
        for (const Chunk &chunk : chunks(encodePng(image)))
            QVERIFY(chunk.type != "pHYs");
        PngOptions options;
        options.dotsPerInch = 144;
        QByteArray density;
        for (const Chunk &chunk : chunks(encodePng(image, options))) {
            if (chunk.type == "pHYs")
                density = chunk.data;
        }
        QCOMPARE(density.size(), 9);
        QCOMPARE(qFromBigEndian<quint32>(density.constData()), 5669u);
        QCOMPARE(qFromBigEndian<quint32>(density.constData() + 4), 5669u);
        QCOMPARE(density.at(8), char(1));
    }

    void countsDotsPerInch_data()
    {
        QTest::addColumn<int>("pixels");
        QTest::addColumn<double>("points");
        QTest::addColumn<double>("expected");
        QTest::newRow("1") << 100 << 100.0 << 72.0;
        QTest::newRow("2") << 200 << 100.0 << 144.0;
        QTest::newRow("1.25 counts as 1.2") << 125 << 100.0 << 86.4;
        QTest::newRow("1.29 counts as 1.2") << 129 << 100.0 << 86.4;
        QTest::newRow("1.5") << 150 << 100.0 << 108.0;
        QTest::newRow("1.5 by a rounding error less") << 100 << 100 / 1.5 << 108.0;
        QTest::newRow("no width") << 100 << 0.0 << 0.0;
    }
    void countsDotsPerInch()
    {
        QFETCH(int, pixels);
        QFETCH(double, points);
        QFETCH(double, expected);
        const Image image{QImage(pixels, 1, QImage::Format_RGB32), Size{points, 1}};
        QCOMPARE(dotsPerInch(image), expected);
    }

    void makesScreensMuchSmallerThanPictures()
    {
        const QSize size(1280, 800);
        const auto sizeOf = [&](Picture kind) {
            return encodePng(picture(size, kind, QImage::Format_RGB32)).size();
        };
        QVERIFY(sizeOf(Picture::flat) * 100 < sizeOf(Picture::noise));
        QVERIFY(sizeOf(Picture::gradient) * 20 < sizeOf(Picture::noise));
    }

    void joinsAdlerSums()
    {
        QRandomGenerator random(1);
        QByteArray data(200000, Qt::Uninitialized);
        for (char &byte : data)
            byte = char(random.bounded(256));
        const auto *const bytes = reinterpret_cast<const uint8_t *>(data.constData());
        const auto all = uint32_t(::adler32(1, bytes, uInt(data.size())));
        for (const Deflater *deflater : {&fastestDeflater(), &zlibDeflater()}) {
            for (const size_t split : {size_t(0), size_t(1), size_t(65521), size_t(200000)}) {
                const size_t rest = size_t(data.size()) - split;
                QCOMPARE(adler32Combine(deflater->adler32(bytes, split),
                                        deflater->adler32(bytes + split, rest), rest),
                         all);
            }
            QCOMPARE(deflater->crc32(deflater->crc32(0, bytes, 77), bytes + 77, 1000),
                     uint32_t(::crc32(0, bytes, 1077)));
        }
    }

private:
    static QImage picture(QSize size, Picture kind, QImage::Format format)
    {
        QImage image(size, format);
        QRandomGenerator random(quint32(size.width() * 31 + size.height()));
        for (int y = 0; y < size.height(); ++y) {
            auto *const line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < size.width(); ++x) {
                const bool isNoisy =
                    kind == Picture::noise || (kind == Picture::mixed && (y / 60) % 2);
                if (isNoisy)
                    line[x] = random.generate() | 0xff000000;
                else if (kind == Picture::gradient)
                    line[x] = qRgb(x & 255, y & 255, (x + y) & 255);
                else
                    line[x] = (x / 40 + y / 30) % 5 ? 0xfff0f0f4 : 0xff204080;
            }
        }
        return image;
    }

    static std::vector<Chunk> chunks(const QByteArray &png)
    {
        std::vector<Chunk> all;
        for (qsizetype at = 8; at + 12 <= png.size();) {
            const auto length = qFromBigEndian<quint32>(png.constData() + at);
            all.push_back({png.mid(at + 4, 4), png.mid(at + 8, length)});
            at += 12 + length;
        }
        return all;
    }

    /// Order and checks of the chunks, and that their data is one complete zlib stream of exactly
    /// the picture's rows.
    static void verifyStrictly(const QByteArray &png, QSize size, int pixelBytes)
    {
        QVERIFY(png.startsWith("\x89PNG\r\n\x1a\n"));
        const auto all = chunks(png);
        QVERIFY(all.size() >= 3);
        QCOMPARE(all.front().type, QByteArray("IHDR"));
        QCOMPARE(all.back().type, QByteArray("IEND"));
        QByteArray stream;
        qsizetype at = 8;
        for (const Chunk &chunk : all) {
            at += 8 + chunk.data.size();
            const QByteArray checked = chunk.type + chunk.data;
            QCOMPARE(qFromBigEndian<quint32>(png.constData() + at),
                     quint32(::crc32(0, reinterpret_cast<const Bytef *>(checked.constData()),
                                     uInt(checked.size()))));
            at += 4;
            if (chunk.type == "IDAT")
                stream += chunk.data;
        }
        QCOMPARE(at, png.size());
        const qsizetype rawSize = qsizetype(size.height()) * (1 + size.width() * pixelBytes);
        QByteArray raw(rawSize + 1, Qt::Uninitialized);
        z_stream inflater{};
        QCOMPARE(inflateInit(&inflater), Z_OK);
        inflater.next_in = reinterpret_cast<Bytef *>(stream.data());
        inflater.avail_in = uInt(stream.size());
        inflater.next_out = reinterpret_cast<Bytef *>(raw.data());
        inflater.avail_out = uInt(raw.size());
        const int result = inflate(&inflater, Z_FINISH);
        inflateEnd(&inflater);
        QCOMPARE(result, Z_STREAM_END);
        QCOMPARE(inflater.avail_in, 0u);
        QCOMPARE(qsizetype(inflater.total_out), rawSize);
    }
};

QTEST_APPLESS_MAIN(TestPngEncoder)
#include "tst_PngEncoder.moc"
