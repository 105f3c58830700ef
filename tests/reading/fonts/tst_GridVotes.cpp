// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeGlyphs.h"
#include "reading/PageReading.h"
#include "reading/fonts/GridVotes.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace tovek;

namespace {

const QStringList lines{"The Ground below Them moved,", "and 57 People ran from there",
                        "over Hedge and Ditch alike", "until the Evening of the Day",
                        "when All lay down to Sleep."};
constexpr int left = 9;
constexpr int top = 20;

/// A page with the lines, and an engine's readings of it, which may be made worse.
struct ReadPage
{
    explicit ReadPage(QRgb ink = qRgb(0, 0, 0))
    {
        QImage image(420, 160, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int i = 0; i < lines.size(); ++i)
            writeText(image, {left, top + i * FakeGlyphs::rowPitch}, lines[i], 1,
                      {Qt::white, QColor(ink), FontFace::own, false});
        page = pageOf(image);
        for (const PageRun &run : page.runs)
            readings.push_back({pieceOf(run)});
    }
    static int lineOf(const PageRun &run)
    {
        return (run.text.box.center().y() - top + FakeGlyphs::rowPitch) / FakeGlyphs::rowPitch;
    }
    static ReadPiece pieceOf(const PageRun &run)
    {
        ReadPiece piece{run.metrics};
        const QRect &box = run.text.box;
        const QString line = lines.value(lineOf(run));
        for (int i = 0; i < line.size(); ++i) {
            const QRect cell(left + i * FakeGlyphs::cellWidth, box.top(), FakeGlyphs::cellWidth,
                             box.height());
            if (line[i] != ' ' && box.contains(cell.center()))
                piece.symbols.push_back(
                    {line[i], cell.adjusted(1, 0, -1, 0), 95, false, 1, cell, {}});
        }
        return piece;
    }
    /// What is read in the end.
    QString read()
    {
        readByCells(page.ink, page.runs, fixedGrids(page.ink, page.runs), readings);
        QStringList words;
        for (const auto &pieces : readings) {
            for (const ReadPiece &piece : pieces) {
                for (const ReadWord &word : piece.words)
                    words += word.text;
            }
        }
        return words.join(' ');
    }
    /// The symbols of the first run.
    std::vector<InkSymbol> &symbols() { return readings.front().front().symbols; }

    Page page;
    std::vector<std::vector<ReadPiece>> readings;
};

} // namespace

class TestGridVotes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsCellsOfEqualInkEqually_data()
    {
        QTest::addColumn<QRgb>("ink");
        QTest::newRow("black") << qRgb(0, 0, 0);
        QTest::newRow("so faint that it can hardly be seen") << qRgb(222, 222, 222);
    }
    void readsCellsOfEqualInkEqually()
    {
        QFETCH(QRgb, ink);
        ReadPage page(ink);
        QCOMPARE(page.symbols()[2].text, QString("e"));
        page.symbols()[2].text = "c";
        QCOMPARE(page.read(), lines.join(' '));
    }

    void readsWhatTheEnginePassedOver()
    {
        ReadPage page;
        page.symbols().erase(page.symbols().begin() + 1, page.symbols().begin() + 3);
        QCOMPARE(page.read(), lines.join(' '));
    }

    void breaksWordsWhereCellsAreEmpty()
    {
        ReadPage page;
        for (InkSymbol &symbol : page.symbols())
            symbol.startsWord = true;
        QCOMPARE(page.read(), lines.join(' '));
    }

    void leavesLinesThatDoNotStandOnTheGrid()
    {
        ReadPage page;
        // Two letters a cell: smaller text that happens to lie on the same lines.
        std::vector<InkSymbol> twice;
        for (const InkSymbol &symbol : page.symbols())
            twice.insert(twice.end(), 2, symbol);
        page.symbols() = twice;
        const QString read = page.read();
        QVERIFY2(!read.contains("Ground") && read.contains("People"), qPrintable(read));
        QCOMPARE(page.symbols().size(), twice.size());
    }

    void leavesAPageWithoutAGrid()
    {
        ReadPage page;
        for (auto &pieces : page.readings) {
            std::vector<InkSymbol> &symbols = pieces.front().symbols;
            for (std::size_t i = 0; i < symbols.size(); ++i)
                symbols[i].box.moveLeft(left + int(std::lround(double(i) * 5.3)));
        }
        QCOMPARE(page.read(), QString());
    }

    void leavesWordsOfOtherScripts()
    {
        ReadPage page;
        const QRect box = page.page.runs.front().text.box;
        page.readings.front().front() = {page.page.runs.front().metrics, {}, {{"own", box, 90}}};
        const QString read = page.read();
        QVERIFY2(read.startsWith("own ") && read.contains("57 People"), qPrintable(read));
    }
};

QTEST_APPLESS_MAIN(TestGridVotes)
#include "tst_GridVotes.moc"
