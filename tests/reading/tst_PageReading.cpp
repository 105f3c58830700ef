// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReading.h"

#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace tovek;

namespace {

constexpr int baseline = 40;

/// Capitals and small letters 5 wide, two apart; the box of their ink.
QRect drawWord(QPainter &painter, QPoint at, int letters, const QColor &color = Qt::black)
{
    QRect box;
    for (int i = 0; i < letters; ++i) {
        const int height = i == 0 ? 11 : 8;
        const QRect letter(at.x() + i * 7, at.y() - height, 5, height);
        painter.fillRect(letter, color);
        painter.fillRect(letter.adjusted(2, 2, -2, 0), QColor(Qt::white));
        box |= letter;
    }
    return box;
}

QImage whitePage()
{
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

} // namespace

class TestPageReading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void readsLabelThatSoftEdgesJoinToItsIcon()
    {
        QImage image = whitePage();
        QPainter painter(&image);
        // Fainter than a stroke, but seen.
        painter.fillRect(20, baseline - 5, 40, 2, QColor(200, 200, 200));
        painter.fillRect(10, baseline - 13, 14, 16, Qt::black);
        drawWord(painter, {30, baseline}, 6);
        painter.end();
        const Page page = pageOf(image);
        QVERIFY(std::any_of(page.runs.begin(), page.runs.end(),
                            [](const PageRun &run) { return run.text.box.right() > 60; }));
    }

    void keepsLinesOfMenuApartFromThoseBesideIt()
    {
        QImage image = whitePage();
        QPainter painter(&image);
        // Numbers of lines on the left, entries of a menu at another distance on the right.
        for (int y = 30; y < 190; y += 15)
            drawWord(painter, {30, y}, 2);
        painter.fillRect(45, 10, 220, 180, QColor(120, 120, 120));
        painter.fillRect(46, 11, 218, 178, Qt::white);
        for (int y = 40; y < 180; y += 22)
            drawWord(painter, {48, y}, 8);
        painter.end();
        const Page page = pageOf(image);
        const auto isAcross = [](const PageRun &run) {
            return run.text.box.left() < 45 && run.text.box.right() > 45;
        };
        const auto isLineHigh = [](const PageRun &run) { return run.text.box.height() <= 11; };
        QVERIFY(std::none_of(page.runs.begin(), page.runs.end(), isAcross));
        QVERIFY(std::all_of(page.runs.begin(), page.runs.end(), isLineHigh));
        QCOMPARE(page.runs.size(), std::size_t(11 + 7));
    }

    void keepsLineWholeWhereSomeOfItIsMarked()
    {
        QImage image = whitePage();
        QPainter painter(&image);
        painter.fillRect(70, baseline - 15, 60, 20, QColor(180, 210, 255));
        drawWord(painter, {30, baseline}, 5);
        drawWord(painter, {75, baseline}, 7);
        drawWord(painter, {135, baseline}, 7);
        painter.end();
        QCOMPARE(pageOf(image).runs.size(), std::size_t(1));
    }

    void takesChosenEntryForLineOfItsOwn()
    {
        QImage image = whitePage();
        QPainter painter(&image);
        painter.fillRect(0, 0, 40, 200, QColor(240, 240, 240));
        painter.fillRect(41, 0, 259, 200, QColor(250, 250, 250));
        painter.fillRect(40, 0, 1, 200, QColor(120, 120, 120));
        painter.fillRect(41, baseline - 18, 259, 26, QColor(60, 170, 230));
        drawWord(painter, {24, baseline}, 2);
        drawWord(painter, {47, baseline}, 7);
        painter.end();
        QCOMPARE(pageOf(image).runs.size(), std::size_t(2));
    }
};

QTEST_GUILESS_MAIN(TestPageReading)
#include "tst_PageReading.moc"
