// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Icons.h"
#include "reading/PageReading.h"

#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// In the height of a 14 pixel font, whose baseline is at 30: 16 pixels between the lines.
void drawIcon(QPainter &painter, const QString &kind, int x)
{
    painter.setPen(QPen(Qt::black, 2));
    const QRect box(x, 17, 15, 15);
    if (kind == "disc")
        painter.drawEllipse(box);
    else if (kind == "sheet")
        painter.drawRect(box.adjusted(1, 0, -1, 0));
    else if (kind == "two pieces") {
        painter.drawRect(box.adjusted(0, 0, 0, -9));
        painter.drawRect(box.adjusted(0, 9, 0, 0));
    } else
        painter.drawText(QPoint(x, 30), kind);
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void tellsIconsFromWords_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("isIcon");
        QTest::newRow("disc") << "disc" << true;
        QTest::newRow("sheet") << "sheet" << true;
        QTest::newRow("two pieces") << "two pieces" << true;
        for (const char *word :
             {"by", "gh", "Q", "W", "()", "[]", "{", "/*", "$5", "My", "jot", "I"})
            QTest::newRow(word) << word << false;
    }
    void tellsIconsFromWords()
    {
        QFETCH(QString, kind);
        QFETCH(bool, isIcon);
        QFont font("DejaVu Sans");
        if (QFontInfo(font).family() != "DejaVu Sans")
            QSKIP("the font is not installed");
        font.setPixelSize(14);
        QImage image(300, 50, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(font);
        drawIcon(painter, kind, 12);
        const int label = 12 + (isIcon ? 21 : QFontMetrics(font).horizontalAdvance(kind + ' '));
        painter.setPen(Qt::black);
        painter.drawText(QPoint(label, 30), "Properties of label");
        painter.end();
        const Page page = pageOf(image);
        QCOMPARE(page.runs.size(), std::size_t(1));
        const int left = page.runs.front().text.box.left();
        QVERIFY2(isIcon ? std::abs(left - label) <= 3 : left < label - 3,
                 qPrintable(QString::number(left)));
    }

    void dividesBetweenPatches()
    {
        TextRun run{QRect(10, 10, 40, 12),
                    {{QRect(10, 10, 12, 12), 90, 255}, {QRect(30, 12, 20, 9), 80, 255}}};
        const auto [icon, label] = dividedAt(run, 26);
        QCOMPARE(icon.box, QRect(10, 10, 12, 12));
        QCOMPARE(label.box, QRect(30, 12, 20, 9));
    }
};

QTEST_MAIN(TestIcons)
#include "tst_Icons.moc"
