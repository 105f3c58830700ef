// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeGlyphs.h"
#include "reading/PageReading.h"
#include "reading/fonts/FixedGrid.h"

#include <QRegularExpression>
#include <QTest>

#include <random>

using namespace tovek;

namespace {

const QStringList lines{"The Ground below Them moved,", "and 57 People ran from It",
                        "over Hedge and Ditch alike", "until the Evening of the Day",
                        "when All lay down to Sleep."};

QImage paper()
{
    QImage image(420, 160, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

std::vector<FixedGrid> gridsOf(const QImage &image)
{
    const Page page = pageOf(image);
    return fixedGrids(page.ink, page.runs);
}

} // namespace

class TestFixedGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void findsCellsAndLines()
    {
        QImage image = paper();
        for (int i = 0; i < lines.size(); ++i)
            writeText(image, {9, 20 + i * FakeGlyphs::rowPitch}, lines[i], 1);
        const auto grids = gridsOf(image);
        QCOMPARE(grids.size(), std::size_t(1));
        QCOMPARE(grids[0].cellWidth, FakeGlyphs::cellWidth);
        QCOMPARE(grids[0].rowPitch, FakeGlyphs::rowPitch);
        QVERIFY(grids[0].runs.size() >= 4);
    }

    void tellsTwoPanesApart()
    {
        QImage image = paper();
        for (int i = 0; i < lines.size(); ++i) {
            writeText(image, {9, 20 + i * FakeGlyphs::rowPitch}, lines[i], 1);
            // Three columns off the cells of the first.
            writeText(image, {9 + 29 * 7 + 3, 20 + i * FakeGlyphs::rowPitch}, lines[i], 1);
        }
        const auto grids = gridsOf(image);
        QCOMPARE(grids.size(), std::size_t(2));
        QCOMPARE(grids[1].cellWidth, FakeGlyphs::cellWidth);
    }

    void tellsTwoWindowsApartWhoseLinesAreNotLevel()
    {
        QImage image = paper();
        for (int i = 0; i < lines.size(); ++i) {
            writeText(image, {9, 20 + i * FakeGlyphs::rowPitch}, lines[i], 1);
            writeText(image, {9 + 29 * 7, 25 + i * FakeGlyphs::rowPitch}, lines[i], 1);
        }
        const auto grids = gridsOf(image);
        QCOMPARE(grids.size(), std::size_t(2));
        QCOMPARE(grids[0].rowPitch, FakeGlyphs::rowPitch);
        QCOMPARE(grids[1].rowPitch, FakeGlyphs::rowPitch);
    }

    void leavesProportionalTextAlone()
    {
        QImage image = paper();
        std::mt19937 random(1);
        for (int i = 0; i < lines.size(); ++i) {
            int x = 9;
            for (const QChar letter : lines[i]) {
                writeText(image, {x, 20 + i * FakeGlyphs::rowPitch}, QString(letter), 1);
                x += letter == ' ' ? 4 : 6 + int(random() % 5);
            }
        }
        QVERIFY(gridsOf(image).empty());
    }

    void leavesTooLittleTextAlone()
    {
        QImage image = paper();
        writeText(image, {9, 20}, "Eleven let.", 1);
        QVERIFY(gridsOf(image).empty());
    }
};

QTEST_APPLESS_MAIN(TestFixedGrid)
#include "tst_FixedGrid.moc"
