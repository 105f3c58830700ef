// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/fonts/FreeTypeGlyphs.h"
#include "reading/fonts/FontReader.h"

#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

const QStringList lines{"$ ls -la --time-style=long-iso /usr/share/doc",
                        "drwxr-xr-x  9 nadia staff    4096 2031-04-10 08:15 .",
                        "-rw-r--r--  1 nadia staff   18012 2031-04-09 21:07 CHANGES.md",
                        "lIl1|!i 0Oo8B ;:,.'` (){}[]<> -~=_+*/\\ \"quoted\" rnm vvw",
                        "for (auto it = rows.begin(); it != rows.end(); ++it) {",
                        "    std::printf(\"%d: %s\\n\", index, it->c_str());",
                        "#define MIN(a, b) ((a) < (b) ? (a) : (b))",
                        "The quick brown fox jumps over the lazy dog"};

QStringList wordsIn(const QStringList &text)
{
    return text.join(' ').split(' ', Qt::SkipEmptyParts);
}

} // namespace

/// Text that the toolkit wrote is read by the same font's glyphs.
class TestFreeTypeGlyphs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsWhatWasWritten_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        QTest::addColumn<QFont::HintingPreference>("hinting");
        QTest::addColumn<bool>("isBold");
        for (const char *family :
             {"DejaVu Sans Mono", "Hack", "Liberation Mono", "JetBrains Mono"}) {
            for (const int pixels : {12, 15, 26}) {
                QTest::addRow("%s %d, not hinted", family, pixels)
                    << family << pixels << QFont::PreferNoHinting << false;
                QTest::addRow("%s %d, hinted lightly", family, pixels)
                    << family << pixels << QFont::PreferVerticalHinting << false;
                QTest::addRow("%s %d, bold", family, pixels)
                    << family << pixels << QFont::PreferVerticalHinting << true;
            }
        }
    }
    void readsWhatWasWritten()
    {
        QFETCH(QString, family);
        QFETCH(int, pixels);
        QFETCH(QFont::HintingPreference, hinting);
        QFETCH(bool, isBold);
        if (!QFontDatabase::families().contains(family))
            QSKIP("the font is not installed");
        QFont font(family);
        font.setPixelSize(pixels);
        font.setHintingPreference(hinting);
        font.setBold(isBold);
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
        const int cell = qRound(QFontMetricsF(font).horizontalAdvance('x'));
        const int pitch = pixels + 5;
        QImage image(70 * cell, int(lines.size() + 1) * pitch, QImage::Format_RGB32);
        image.fill(QColor(30, 30, 36));
        QPainter painter(&image);
        painter.setFont(font);
        painter.setPen(QColor(220, 220, 210));
        for (int row = 0; row < lines.size(); ++row) {
            for (int i = 0; i < lines[row].size(); ++i)
                painter.drawText(11 + i * cell, (row + 1) * pitch, lines[row].mid(i, 1));
        }
        painter.end();
        FontReader fonts(std::make_unique<FreeTypeGlyphs>(), std::chrono::minutes(1));
        const auto reading = fonts.readingOf(pageOf(image), image);
        QVERIFY(reading);
        reading->read([] { return true; });
        QStringList read;
        for (const auto &line : reading->lines()) {
            for (const ReadWord &word : line)
                read += word.text;
        }
        QCOMPARE(read, wordsIn(lines));
    }

    void makesUpABoldFaceWhereThereIsNone()
    {
        FreeTypeGlyphs glyphs;
        for (std::size_t i = 0; i < glyphs.fonts().size(); ++i) {
            const GlyphStyle style =
                glyphs.fonts()[i].isBitmap ? GlyphStyle{} : GlyphStyle{14, Hinting::light, false};
            const auto own = glyphs.glyph(i, style, FontFace::own, U'l');
            const auto bold = glyphs.glyph(i, style, FontFace::bold, U'l');
            if (own && !own->isEmpty())
                QVERIFY2(bold && !bold->isEmpty(), qPrintable(glyphs.fonts()[i].name));
        }
    }

    void opensAgainWhatItLetGo()
    {
        FreeTypeGlyphs glyphs;
        if (glyphs.fonts().empty())
            QSKIP("no fixed font is installed");
        const std::vector<FixedFont> fonts = glyphs.fonts();
        glyphs.letGo();
        QCOMPARE(glyphs.fonts(), fonts);
        QVERIFY(!glyphs.glyph(fonts.size(), {}, FontFace::own, U'x'));
    }
};

QTEST_MAIN(TestFreeTypeGlyphs)
#include "tst_FreeTypeGlyphs.moc"
