// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/UnsureLines.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// Lines of so many letters each.
Page pageOfLetters(int lines, int letters)
{
    constexpr int pitch = 14;
    QImage image(40 + letters * pitch, 20 + lines * 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int line = 0; line < lines; ++line) {
        for (int i = 0; i < letters; ++i) {
            const QRect box(20 + i * pitch, line * 40 + 10, 2, 14);
            painter.fillRect(box, Qt::black);
            painter.fillRect(box.translated(8, 0), Qt::black);
            painter.fillRect(box.x(), box.y() + 6, 10, 2, Qt::black);
        }
    }
    painter.end();
    return pageOf(image);
}

ReadPiece pieceOf(int letters, double confidence)
{
    ReadPiece piece;
    for (int i = 0; i < letters; ++i)
        piece.symbols.push_back({QStringLiteral("H"), {}, confidence});
    return piece;
}

std::vector<std::size_t> firstRuns(std::size_t count)
{
    std::vector<std::size_t> runs(count);
    for (std::size_t i = 0; i < count; ++i)
        runs[i] = i;
    return runs;
}

} // namespace

class TestUnsureLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void doubtsALineByTheMeanOfItsLetters_data()
    {
        QTest::addColumn<int>("letters");
        QTest::addColumn<double>("confidence");
        QTest::addColumn<bool>("isUnsure");
        QTest::newRow("letters that are known") << 8 << 99.0 << false;
        QTest::newRow("just sure") << 8 << 97.0 << false;
        QTest::newRow("just unsure") << 8 << 96.9 << true;
        QTest::newRow("three letters") << 3 << 90.0 << false;
        QTest::newRow("four letters") << 4 << 90.0 << true;
        QTest::newRow("nothing read") << 0 << 90.0 << false;
    }
    void doubtsALineByTheMeanOfItsLetters()
    {
        QFETCH(int, letters);
        QFETCH(double, confidence);
        const Page page = pageOfLetters(1, 8);
        QTEST(isUnsure(page.runs.front(), {pieceOf(letters, confidence)}), "isUnsure");
    }

    /// Their letters are not what was unsure.
    void passesOverInkThatWasNotRead()
    {
        ReadPiece piece = pieceOf(8, 99);
        for (int i = 0; i < 8; ++i)
            piece.symbols.push_back({QString(), {}, 0});
        QVERIFY(!isUnsure(pageOfLetters(1, 8).runs.front(), {piece}));
    }

    void passesOverIconsAndWordsInTheEnginesOwnBoxes()
    {
        QVERIFY(!isUnsure(pageOfLetters(1, 2).runs.front(), {pieceOf(8, 90)}));
        ReadPiece words;
        words.words = {{QStringLiteral("word"), {}, 90}};
        QVERIFY(!isUnsure(pageOfLetters(1, 8).runs.front(), {words}));
    }

    void asksAboutEnoughText_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("letters");
        QTest::addColumn<int>("unsure");
        QTest::addColumn<int>("asked");
        QTest::newRow("a long line") << 1 << 24 << 1 << 1;
        QTest::newRow("a word") << 1 << 8 << 1 << 0;
        QTest::newRow("several words") << 4 << 8 << 4 << 4;
        QTest::newRow("a fifth of the lines") << 10 << 24 << 2 << 2;
        QTest::newRow("less than a fifth") << 11 << 24 << 2 << 0;
        QTest::newRow("no line") << 2 << 24 << 0 << 0;
        QTest::newRow("more than is needed") << 50 << 24 << 50 << 40;
    }
    void asksAboutEnoughText()
    {
        QFETCH(int, lines);
        QFETCH(int, letters);
        QFETCH(int, unsure);
        const Page page = pageOfLetters(lines, letters);
        QCOMPARE(page.runs.size(), std::size_t(lines));
        const auto strips = stripsOf(page, firstRuns(std::size_t(unsure)));
        QTEST(int(strips.size()), "asked");
        for (const LineStrip &strip : strips)
            QVERIFY(strip.width > 0);
    }
};

QTEST_APPLESS_MAIN(TestUnsureLines)
#include "tst_UnsureLines.moc"
