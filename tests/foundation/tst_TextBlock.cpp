// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemFont.h"
#include "foundation/TextBlock.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

QFont font()
{
    return systemFont(16, QFont::Medium);
}

/// The columns and rows that a text inks when it is drawn at (20, 20) into 400 by 100 pixels.
QRect ink(const QString &text, QRect within = {0, 0, 400, 100})
{
    QImage image(400, 100, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    TextBlock(text, font()).draw(painter, {20, 20}, Qt::black);
    painter.end();
    QRect found;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

} // namespace

class TestTextBlock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void takesTheDesktopsFontInLogicalPixels()
    {
        QCOMPARE(font().family(), QStringLiteral("DejaVu Sans"));
        QCOMPARE(font().pixelSize(), 16);
        QCOMPARE(font().weight(), QFont::Medium);
    }

    void inksInsideItsBox()
    {
        const Size size = TextBlock(QStringLiteral("Hxg"), font()).size();
        const QRect box(20, 20, qCeil(size.width), qCeil(size.height));
        QVERIFY(box.contains(ink(QStringLiteral("Hxg"))));
        QVERIFY(ink(QStringLiteral("Hxg")).width() > size.width - 6);
    }

    void startsALeftToRightLineAtTheLeft()
    {
        const QRect second = ink(QStringLiteral("mmmmmmmm\nab"), {0, 20 + 19, 400, 40});
        QVERIFY(second.left() < 26);
    }

    void endsARightToLeftLineAtTheRight()
    {
        const double width = TextBlock(QStringLiteral("mmmmmmmm"), font()).size().width;
        const QString hebrew = QString::fromUtf8("mmmmmmmm\n\u05e9\u05dc\u05d5\u05dd");
        const QRect second = ink(hebrew, {0, 20 + 22, 400, 40});
        QVERIFY(!second.isEmpty());
        QVERIFY(second.left() > 20 + width / 2);
        QVERIFY(second.right() > 20 + width - 5 && second.right() <= 20 + width);
    }

    void putsTheFirstWordOfARightToLeftLineAtTheRight()
    {
        // The word that the line begins with stands at its right end, the bar at its left.
        const QRect line = ink(QString::fromUtf8("\u05e9\u05dc\u05d5\u05dd |"));
        const QRect bar =
            ink(QString::fromUtf8("\u05e9\u05dc\u05d5\u05dd |"), {line.left(), 0, 4, 100});
        QVERIFY2(bar.height() > line.height() - 2, "the tall bar is not at the left");
    }

    void keepsItsProportionsAtEveryScale()
    {
        // Unhinted design metrics: a text's width is linear in its size.
        const QString text = QStringLiteral("Proportions, kept");
        const double single = TextBlock(text, systemFont(16, QFont::Medium)).size().width;
        const double twice = TextBlock(text, systemFont(32, QFont::Medium)).size().width;
        QVERIFY2(std::abs(twice - 2 * single) < 0.2,
                 qPrintable(QString::number(twice - 2 * single)));
    }

    void measuresNothingWide() { QCOMPARE(TextBlock(QString(), font()).size().width, 0.0); }
};

QTEST_MAIN(TestTextBlock)
#include "tst_TextBlock.moc"
