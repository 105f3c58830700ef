// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SvgPath.h"
#include "foundation/Symbol.h"

#include <QBuffer>
#include <QDir>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

std::optional<Symbol> parsed(const QByteArray &body)
{
    QByteArray svg =
        "<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10'>" + body + "</svg>";
    QBuffer buffer(&svg);
    buffer.open(QIODevice::ReadOnly);
    return Symbol::read(buffer);
}

QImage painted(const Symbol &symbol, QSize size, const QColor &color = Qt::red)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    symbol.paint(painter, image.rect(), color);
    return image;
}

} // namespace

class TestSymbol : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void readsEveryPathCommand_data()
    {
        QTest::addColumn<QString>("data");
        QTest::addColumn<QRectF>("bounds");
        QTest::addColumn<QPointF>("end");
        QTest::newRow("lines") << "M1 2L5 2L5 8" << QRectF(1, 2, 4, 6) << QPointF(5, 8);
        QTest::newRow("relative lines") << "m1 2l4 0l0,6" << QRectF(1, 2, 4, 6) << QPointF(5, 8);
        QTest::newRow("implied lines") << "M1 2 5 2 5 8" << QRectF(1, 2, 4, 6) << QPointF(5, 8);
        QTest::newRow("across and down") << "M1 2H5V8" << QRectF(1, 2, 4, 6) << QPointF(5, 8);
        QTest::newRow("relative across and down")
            << "M1 2h4v6" << QRectF(1, 2, 4, 6) << QPointF(5, 8);
        QTest::newRow("signs and points run together")
            << "M1.5.5l-1-.5" << QRectF(.5, 0, 1, .5) << QPointF(.5, 0);
        QTest::newRow("cubic") << "M0 0C0 4 8 4 8 0" << QRectF(0, 0, 8, 3) << QPointF(8, 0);
        QTest::newRow("relative cubic")
            << "M1 1c0 4 8 4 8 0" << QRectF(1, 1, 8, 3) << QPointF(9, 1);
        QTest::newRow("quadratic") << "M0 0Q4 8 8 0" << QRectF(0, 0, 8, 4) << QPointF(8, 0);
        QTest::newRow("relative quadratic")
            << "M1 1q4 8 8 0" << QRectF(1, 1, 8, 4) << QPointF(9, 1);
        QTest::newRow("half circle over the top")
            << "M0 5A5 5 0 0 1 10 5" << QRectF(0, 0, 10, 5) << QPointF(10, 5);
        QTest::newRow("half circle under it")
            << "M0 5A5 5 0 0 0 10 5" << QRectF(0, 5, 10, 5) << QPointF(10, 5);
        QTest::newRow("quarter circle")
            << "M0 5a5 5 0 0 1 5-5" << QRectF(0, 0, 5, 5) << QPointF(5, 0);
        QTest::newRow("three quarters")
            << "M5 0A5 5 0 1 1 0 5" << QRectF(0, 0, 10, 10) << QPointF(0, 5);
        QTest::newRow("flags run together")
            << "M5 0A5 5 0 110 5" << QRectF(0, 0, 10, 10) << QPointF(0, 5);
        QTest::newRow("radius too small")
            << "M0 5A1 1 0 0 1 10 5" << QRectF(0, 0, 10, 5) << QPointF(10, 5);
        QTest::newRow("closed") << "M1 1H5V5Z" << QRectF(1, 1, 4, 4) << QPointF(1, 1);
        QTest::newRow("moves after closing")
            << "M1 1H5V5ZM8 8h1" << QRectF(1, 1, 8, 7) << QPointF(9, 8);
    }
    void readsEveryPathCommand()
    {
        QFETCH(QString, data);
        QFETCH(QRectF, bounds);
        QFETCH(QPointF, end);
        const std::optional<QPainterPath> path = pathFromSvg(data);
        QVERIFY(path);
        const QRectF found = path->boundingRect();
        const auto near = [](double a, double b) { return std::abs(a - b) < 0.02; };
        QVERIFY2(near(found.x(), bounds.x()) && near(found.y(), bounds.y())
                     && near(found.right(), bounds.right())
                     && near(found.bottom(), bounds.bottom()),
                 qPrintable(QStringLiteral("%1 %2 %3 %4")
                                .arg(found.x())
                                .arg(found.y())
                                .arg(found.width())
                                .arg(found.height())));
        QVERIFY((path->currentPosition() - end).manhattanLength() < 0.01);
    }

    void refusesBrokenPaths_data()
    {
        QTest::addColumn<QString>("data");
        QTest::newRow("no move first") << "L1 2";
        QTest::newRow("number missing") << "M1";
        QTest::newRow("no number") << "M1 x";
        QTest::newRow("smooth curve") << "M0 0S1 1 2 2";
        QTest::newRow("rotated arc") << "M0 0A5 5 30 0 1 4 4";
        QTest::newRow("flag that is none") << "M0 0A5 5 0 2 1 4 4";
        QTest::newRow("numbers after closing") << "M0 0H5Z3";
    }
    void refusesBrokenPaths()
    {
        QFETCH(QString, data);
        QVERIFY(!pathFromSvg(data));
    }

    void paintsShapesInTheirColours_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<QColor>("expected");
        const QColor red(Qt::red);
        const QColor white(Qt::white);
        QTest::newRow("filled with the current colour")
            << QByteArray("<rect x='2' y='2' width='6' height='6'/>") << QPoint(4, 4) << red;
        QTest::newRow("a colour of its own")
            << QByteArray("<rect x='2' y='2' width='6' height='6' fill='#0000ff'/>") << QPoint(4, 4)
            << QColor(Qt::blue);
        QTest::newRow("round corner")
            << QByteArray("<rect x='0' y='0' width='10' height='10' rx='5'/>") << QPoint(0, 0)
            << white;
        QTest::newRow("circle") << QByteArray("<circle cx='5' cy='5' r='4'/>") << QPoint(5, 5)
                                << red;
        QTest::newRow("stroked only, inside")
            << QByteArray("<circle cx='5' cy='5' r='4' fill='none' stroke='currentColor'/>")
            << QPoint(5, 5) << white;
        QTest::newRow("stroked line") << QByteArray(
            "<line x1='0' y1='5' x2='20' y2='5' stroke='currentColor' stroke-width='4'/>")
                                      << QPoint(10, 5) << red;
        QTest::newRow("inherited from a group") << QByteArray(
            "<g fill='none' stroke='#00ff00' stroke-width='4'><polyline points='0,5 20,5'/></g>")
                                                << QPoint(10, 4) << QColor(Qt::green);
        QTest::newRow("hole of an even-odd path")
            << QByteArray("<path fill-rule='evenodd' d='M0 0H20V10H0ZM4 2H16V8H4Z'/>")
            << QPoint(10, 5) << white;
        QTest::newRow("no hole otherwise")
            << QByteArray("<path d='M0 0H20V10H0ZM4 2H16V8H4Z'/>") << QPoint(10, 5) << red;
        QTest::newRow("half opaque")
            << QByteArray("<rect width='20' height='10' fill='#000000' fill-opacity='0.5'/>")
            << QPoint(9, 5) << QColor(127, 127, 127);
    }
    void paintsShapesInTheirColours()
    {
        QFETCH(QByteArray, body);
        QFETCH(QPoint, at);
        QFETCH(QColor, expected);
        const std::optional<Symbol> symbol = parsed(body);
        QVERIFY(symbol);
        QCOMPARE(painted(*symbol, {20, 10}).pixelColor(at), expected);
    }

    void fitsCentredAndInProportion()
    {
        const std::optional<Symbol> symbol = parsed("<rect width='20' height='10'/>");
        QVERIFY(symbol);
        QCOMPARE(symbol->size(), QSizeF(20, 10));
        const QImage image = painted(*symbol, {40, 40});
        QCOMPARE(image.pixelColor(20, 9), QColor(Qt::white));
        QCOMPARE(image.pixelColor(0, 10), QColor(Qt::red));
        QCOMPARE(image.pixelColor(39, 29), QColor(Qt::red));
        QCOMPARE(image.pixelColor(20, 30), QColor(Qt::white));
    }

    void refusesWhatItCannotPaint()
    {
        QVERIFY(!parsed("<ellipse rx='4' ry='2'/>"));
        QVERIFY(!parsed("<path d='bad'/>"));
        QVERIFY(!parsed("<rect>"));
    }

    void holdsEverySymbol_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"arrow.triangle.2.circlepath",
                                 "arrow.up.right",
                                 "camera.viewfinder",
                                 "character.textbox",
                                 "checkmark.circle.fill",
                                 "command",
                                 "doc.on.doc",
                                 "doc.text",
                                 "document.viewfinder.fill",
                                 "folder",
                                 "gearshape",
                                 "info.circle",
                                 "line.diagonal",
                                 "menubar.rectangle",
                                 "photo",
                                 "pointer.arrow.ipad",
                                 "rectangle",
                                 "rectangle.dashed.badge.record",
                                 "sun.horizon",
                                 "text.viewfinder",
                                 "xmark",
                                 "xmark.circle.fill"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void holdsEverySymbol()
    {
        QFETCH(QString, name);
        const std::optional<Symbol> symbol = Symbol::named(name);
        QVERIFY(symbol);
        QCOMPARE(symbol->size(), QSizeF(24, 24));
        const QImage image = symbol->image(24, 2, Qt::black);
        QCOMPARE(image.size(), QSize(48, 48));
        QCOMPARE(image.devicePixelRatio(), 2.0);
        int inked = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x)
                inked += qAlpha(image.pixel(x, y)) > 128;
            // Nothing is cut off at the sides.
            QCOMPARE(qAlpha(image.pixel(0, y)), 0);
            QCOMPARE(qAlpha(image.pixel(47, y)), 0);
        }
        QVERIFY(inked > 80 && inked < 1700);
    }

    void centresTheCrossCursor()
    {
        const std::optional<Symbol> cursor = Symbol::fromFile(QStringLiteral(":/cross-cursor.svg"));
        QVERIFY(cursor);
        const QImage image = cursor->image(33, 1, Qt::black);
        QCOMPARE(image.size(), QSize(33, 33));
        for (int y = 0; y < 33; ++y) {
            for (int x = 0; x < 33; ++x) {
                const int apart =
                    image.pixelColor(x, y).alpha() - image.pixelColor(32 - x, 32 - y).alpha();
                QVERIFY(std::abs(apart) < 16);
            }
        }
        QCOMPARE(image.pixelColor(16, 8), QColor(Qt::black));
        QVERIFY(image.pixelColor(15, 8).alpha() > 200 && image.pixelColor(15, 8).red() > 200);
        QCOMPARE(image.pixelColor(16, 16), QColor(Qt::black));
    }

    void hasAnApplicationIcon()
    {
        QVERIFY(Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg")));
    }

    void saysWhenASymbolIsMissing() { QVERIFY(!Symbol::named(QStringLiteral("no.such.symbol"))); }
};

QTEST_APPLESS_MAIN(TestSymbol)
#include "tst_Symbol.moc"
