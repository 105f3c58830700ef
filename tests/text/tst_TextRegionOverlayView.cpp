// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"
#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"
#include "foundation/UserDefaults.h"
#include "text/TextRegionOverlayView.h"

#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

namespace {

/// With a pen, which the program has no time for.
void paintOutlines(QImage &image, const TextSelection &selection, const ViewSpace &space)
{
    QPainter painter(&image);
    DrawingContext context(painter, space);
    for (int i = 0; i < int(selection.textRegions.size()); ++i) {
        const TextRegionLook look = lookOf(selection, i, true);
        QColor fillColor = SystemColors::blue, strokeColor = SystemColors::blue;
        fillColor.setAlphaF(float(look.fillAlpha));
        strokeColor.setAlphaF(float(look.strokeAlpha));
        context.fillRect(selection.rectOf(i), fillColor);
        context.strokeRect(selection.rectOf(i),
                           {strokeColor, look.strokeWidth, Stroke::Join::sharp});
    }
}

/// Pixels whose colours differ by more than rounding.
int differingPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            count += std::abs(p.red() - q.red()) > 12 || std::abs(p.green() - q.green()) > 12
                || std::abs(p.blue() - q.blue()) > 12;
        }
    }
    return count;
}

} // namespace

class TestTextRegionOverlayView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        m_folder = std::make_unique<QTemporaryDir>();
        m_defaults = std::make_unique<UserDefaults>(m_folder->filePath("defaults.json"));
        show({{"a", {0, 0.5, 0.1, 0.25}}, {"b", {0.2, 0.5, 0.1, 0.25}}}, {100, 100, 100, 40});
    }

    void selectsTheWordThatIsClicked()
    {
        int changes = 0;
        m_view->onNeedsDisplay = [&] { ++changes; };
        m_view->press({125, 125});
        QVERIFY(m_view->isDragging());
        m_view->release();
        QVERIFY(!m_view->isDragging());
        QCOMPARE(changes, 1);
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(1));
        QCOMPARE(m_view->selectedRegions().front().text, QStringLiteral("b"));
        m_view->pressElsewhere();
        m_view->pressElsewhere();
        QCOMPARE(changes, 2);
        QVERIFY(m_view->selectedRegions().empty());
    }
    void dragsOverWords()
    {
        m_view->press({105, 125});
        m_view->drag({160, 125});
        m_view->release();
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(2));
    }
    void takesInFurtherWords()
    {
        int changes = 0;
        m_view->onNeedsDisplay = [&] { ++changes; };
        m_view->press({105, 125});
        m_view->drag({128, 125});
        changes = 0;
        m_view->add({{"x", {0.12, 0.5, 0.05, 0.25}}});
        QCOMPARE(changes, 1);
        QVERIFY(m_view->isDragging());
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(3));
        m_view->settle({{"b", {0.2, 0.5, 0.1, 0.25}}, {"a", {0, 0.5, 0.1, 0.25}}});
        QCOMPARE(changes, 2);
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(2));
    }
    void emphasizesTheWordUnderThePointer()
    {
        m_view->hover(Point{125, 125});
        QCOMPARE(m_view->selection().hoveredIndex, std::optional(1));
        m_view->hover(std::nullopt);
        QVERIFY(!m_view->selection().hoveredIndex);
    }

    void looksByStateAndSetting_data()
    {
        QTest::addColumn<bool>("isSelected");
        QTest::addColumn<bool>("isHovered");
        QTest::addColumn<bool>("highlight");
        QTest::addColumn<double>("fill");
        QTest::addColumn<double>("stroke");
        QTest::addColumn<double>("width");
        QTest::newRow("plain") << false << false << false << 0.0 << 0.0 << 0.0;
        QTest::newRow("highlighted") << false << false << true << 0.1 << 0.5 << 1.0;
        QTest::newRow("hovered") << false << true << false << 0.15 << 0.5 << 1.0;
        QTest::newRow("hovered and highlighted") << false << true << true << 0.15 << 0.5 << 1.0;
        QTest::newRow("selected") << true << false << false << 0.3 << 1.0 << 2.0;
        QTest::newRow("selected wins") << true << true << true << 0.3 << 1.0 << 2.0;
    }
    void looksByStateAndSetting()
    {
        QFETCH(bool, isSelected);
        QFETCH(bool, isHovered);
        QFETCH(bool, highlight);
        QFETCH(double, fill);
        QFETCH(double, stroke);
        QFETCH(double, width);
        TextSelection selection;
        selection.textRegions = {{"a", {0, 0, 1, 1}}};
        if (isSelected)
            selection.selectedIndices = {0};
        if (isHovered)
            selection.hoveredIndex = 0;
        QCOMPARE(lookOf(selection, 0, highlight), (TextRegionLook{fill, stroke, width}));
    }

    void readsTheSettingAtEachDrawing()
    {
        const ViewSpace space{{300, 200}, 1};
        QVERIFY(!m_view->items(space).empty());
        m_defaults->setBoolean("highlightText", true);
        QVERIFY(!m_view->items(space).empty());
        m_defaults->setBoolean("highlightText", false);
        QVERIFY(m_view->items(space).empty());
    }

    void drawsBoxesWithOutlines_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("width");
        QTest::newRow("whole pixels") << 0.2 << 0.1;
        QTest::newRow("between pixels") << 0.203 << 0.1042;
        QTest::newRow("smaller than the stroke") << 0.2 << 0.012;
    }
    void drawsBoxesWithOutlines()
    {
        QFETCH(double, x);
        QFETCH(double, width);
        m_defaults->setBoolean("highlightText", true);
        show({{"a", {x, 0.5, width, 0.25}}, {"b", {0.5, 0.21, 0.3, 0.3}}}, {0, 0, 100, 40});
        m_view->press({60, 15});
        m_view->release();
        const ViewSpace space{{100, 40}, 1};
        QImage blank(100, 40, QImage::Format_RGB32);
        blank.fill(Qt::white);
        QImage own = blank;
        paintOutlines(own, m_view->selection(), space);
        const QImage items = painted(blank, {0, {}, m_view->items(space)});
        QVERIFY(differingPixels(items, blank) > 200);
        // The painter leaves the soft corners of an outline out; there are four to a box.
        QVERIFY2(differingPixels(own, items) <= 2 * 4 * 3,
                 qPrintable(QString::number(differingPixels(own, items))));
    }

    void itemsStandInTheOverlaysPixels()
    {
        m_defaults->setBoolean("highlightText", true);
        const auto items = m_view->items({{300, 200}, 2});
        QRect all;
        for (const auto &item : items)
            all |= boundsOf(item);
        // Words from (100, 120) to (130, 130) in points, y up, with half a stroke of one point.
        QCOMPARE(all, QRect(199, 139, 62, 22));
    }

private:
    void show(std::vector<TextRegion> regions, const Rect &frame)
    {
        m_view = std::make_unique<TextRegionOverlayView>(*m_defaults, frame);
        m_view->settle(std::move(regions));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<TextRegionOverlayView> m_view;
};

QTEST_APPLESS_MAIN(TestTextRegionOverlayView)
#include "tst_TextRegionOverlayView.moc"
