// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeGlyphs.h"
#include "reading/fonts/FontReader.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

const QStringList lines{"total 48 in Home of Nadia", "Documents  Pictures  Music  Lists",
                        "-rw-r--r-- 1 root 4096 Apr 7 2025", "lIl1|0OoO (a) [b] {c} ; : , . ' `",
                        "make: *** [Makefile:42] Error 1"};

QImage pictureOf(const QStringList &text, int font, const FakeInk &ink = {})
{
    QImage image(300, 20 + int(text.size()) * FakeGlyphs::rowPitch, QImage::Format_RGB32);
    image.fill(ink.paper);
    for (int i = 0; i < text.size(); ++i)
        writeText(image, {9, 20 + i * FakeGlyphs::rowPitch}, text[i], font, ink);
    return image;
}

/// What is read without an engine.
QStringList linesRead(FontReader &fonts, const QImage &image)
{
    const auto reading = fonts.readingOf(pageOf(image), image);
    if (!reading)
        return {};
    reading->read([] { return true; });
    QStringList result;
    for (const auto &line : reading->lines()) {
        QStringList words;
        for (const ReadWord &word : line)
            words += word.text;
        result += words.join(' ');
    }
    return result;
}

QStringList wordsOf(const QStringList &text)
{
    return text.join(' ').split(' ', Qt::SkipEmptyParts);
}

} // namespace

class TestFontReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsToTheLetter_data()
    {
        QTest::addColumn<QColor>("paper");
        QTest::addColumn<QColor>("ink");
        QTest::newRow("dark on light") << QColor(Qt::white) << QColor(Qt::black);
        QTest::newRow("light on dark") << QColor(10, 30, 30) << QColor(220, 200, 180);
    }
    void readsToTheLetter()
    {
        QFETCH(QColor, paper);
        QFETCH(QColor, ink);
        FontReader fonts(std::make_unique<FakeGlyphs>(std::vector{2, 1, 3}));
        const QImage image = pictureOf(lines, 1, {paper, ink, FontFace::own, false});
        QCOMPARE(wordsOf(linesRead(fonts, image)), wordsOf(lines));
    }

    void leavesAFontThatIsNotInstalledToTheEngine()
    {
        FontReader fonts(std::make_unique<FakeGlyphs>(std::vector{2, 3}));
        const QImage image = pictureOf(lines, 1);
        QCOMPARE(linesRead(fonts, image), QStringList{});
        const auto reading = fonts.readingOf(pageOf(image), image);
        QVERIFY(reading);
        reading->read([] { return true; });
        for (std::size_t run = 0; run < pageOf(image).runs.size(); ++run)
            QVERIFY(!reading->hasTaken(run));
    }

    void readsTwoFontsInOnePicture()
    {
        FontReader fonts(std::make_unique<FakeGlyphs>(std::vector{1, 2}));
        QImage image(600, 110, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int i = 0; i < lines.size(); ++i) {
            writeText(image, {9, 20 + i * FakeGlyphs::rowPitch}, lines[i], 1);
            writeText(image, {310, 25 + i * FakeGlyphs::rowPitch}, lines[i], 2);
        }
        QStringList read = wordsOf(linesRead(fonts, image));
        QStringList expected = wordsOf(lines + lines);
        read.sort();
        expected.sort();
        QCOMPARE(read, expected);
    }

    void takesTheRunsThatItRead()
    {
        FontReader fonts(std::make_unique<FakeGlyphs>(std::vector{1}));
        QImage image = pictureOf(lines + QStringList{""}, 1);
        // A picture beside the text, with nothing of the font in it.
        for (int y = 30; y < 44; y += 3)
            for (int x = 270; x < 290; ++x)
                image.setPixelColor(x, y + (x % 5) / 2, Qt::black);
        const Page page = pageOf(image);
        const auto reading = fonts.readingOf(page, image);
        QVERIFY(reading);
        reading->read([] { return true; });
        for (std::size_t run = 0; run < page.runs.size(); ++run) {
            const bool isText = page.runs[run].text.box.left() < 260;
            QCOMPARE(reading->hasTaken(run), isText);
        }
    }

    void leavesWordsThatThePicturesEdgeCutsToTheEngine()
    {
        FontReader fonts(std::make_unique<FakeGlyphs>(std::vector{2, 1, 3}));
        const QImage whole = pictureOf(lines, 1);
        const QImage cut = whole.copy(11, 0, whole.width() - 11, whole.height());
        const QStringList words = wordsOf(linesRead(fonts, cut));
        QVERIFY2(words.contains("Home") && words.contains("Pictures"), qPrintable(words.join(' ')));
        QVERIFY2(!words.contains("otal") && !words.contains("ocuments"),
                 qPrintable(words.join(' ')));
    }

    void findsAFontAgainThatItMet()
    {
        auto source = std::make_unique<FakeGlyphs>(std::vector{2, 3, 4, 5, 1});
        FakeGlyphs &glyphs = *source;
        FontReader fonts(std::move(source));
        const QImage image = pictureOf(lines, 1);
        QVERIFY(!linesRead(fonts, image).isEmpty());
        const int first = std::exchange(glyphs.glyphsDrawn, 0);
        QVERIFY(!linesRead(fonts, image).isEmpty());
        QCOMPARE(glyphs.glyphsDrawn, 0);
        fonts.letGo();
        QCOMPARE(glyphs.timesLetGo, 1);
        QCOMPARE(wordsOf(linesRead(fonts, image)), wordsOf(lines));
        QVERIFY2(glyphs.glyphsDrawn > 0 && glyphs.glyphsDrawn * 2 < first,
                 qPrintable(QString::number(glyphs.glyphsDrawn)));
    }
};

QTEST_APPLESS_MAIN(TestFontReader)
#include "tst_FontReader.moc"
