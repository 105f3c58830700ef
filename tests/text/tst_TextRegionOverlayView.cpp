// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"
#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"
#include "foundation/UserDefaults.h"
#include "text/TextRegionOverlayView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

namespace {

/// Counts what its children pass on.
class Behind : public QWidget
{
public:
    int presses = 0;
    int moves = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void mouseMoveEvent(QMouseEvent *) override { ++moves; }
};

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
        m_behind = std::make_unique<Behind>();
        m_behind->resize(300, 200);
        m_behind->setMouseTracking(true);
        m_view = new TextRegionOverlayView(*m_defaults, m_behind.get());
        m_view->setGeometry(100, 60, 100, 40);
        m_view->setTextRegions({{"a", {0, 0.5, 0.1, 0.25}}, {"b", {0.2, 0.5, 0.1, 0.25}}});
        m_view->setSelectionBounds({0, 0, 100, 40});
        m_behind->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_behind.get()));
    }
    void cleanup() { m_behind.reset(); }

    void selectsTheWordThatIsClicked()
    {
        QStringList reported;
        m_view->onSelectionChanged = [&](const std::vector<TextRegion> &regions) {
            reported += regions.empty() ? QString() : regions.front().text;
        };
        QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(25, 15));
        QCOMPARE(reported, QStringList{"b"});
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(1));
        QCOMPARE(m_behind->presses, 0);
    }
    void dragsOverWords()
    {
        QTest::mousePress(m_view, Qt::LeftButton, {}, QPoint(5, 15));
        QMouseEvent move(QEvent::MouseMove, QPointF(60, 15), QPointF(160, 75), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_view, &move);
        QTest::mouseRelease(m_view, Qt::LeftButton, {}, QPoint(60, 15));
        QCOMPARE(m_view->selectedRegions().size(), std::size_t(2));
    }
    void passesAClickBesideTheWordsOn()
    {
        QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(70, 35));
        QCOMPARE(m_behind->presses, 1);
    }
    void passesEverythingOnWhileToldTo()
    {
        m_view->setPassMouseEventsThrough(true);
        QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(25, 15));
        QCOMPARE(m_behind->presses, 1);
        QVERIFY(m_view->selectedRegions().empty());
    }
    void showsTheBeamOverWordsOnly()
    {
        QTest::mouseMove(m_view, QPoint(25, 15));
        QCOMPARE(m_view->cursor().shape(), Qt::IBeamCursor);
        QCOMPARE(m_view->selection().hoveredIndex, std::optional(1));
        QTest::mouseMove(m_view, QPoint(70, 35));
        QCOMPARE(m_view->cursor().shape(), Qt::ArrowCursor);
    }

    void tellsTheParentWhereThePointerIs()
    {
        QTest::mouseMove(m_view, QPoint(25, 15));
        const int moves = m_behind->moves;
        QVERIFY(moves > 0);
        QTest::mouseMove(m_view, QPoint(70, 35));
        QVERIFY(m_behind->moves > moves);
    }
    void keepsADragToItself()
    {
        QTest::mousePress(m_view, Qt::LeftButton, {}, QPoint(5, 15));
        const int moves = m_behind->moves;
        QMouseEvent move(QEvent::MouseMove, QPointF(60, 15), QPointF(160, 75), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_view, &move);
        QCOMPARE(m_behind->moves, moves);
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
        QVERIFY(m_view->items(space, {}).empty());
        m_defaults->setBoolean("highlightText", true);
        QVERIFY(!m_view->items(space, {}).empty());
        m_defaults->setBoolean("highlightText", false);
        QVERIFY(m_view->items(space, {}).empty());
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
        m_view->setTextRegions({{"a", {x, 0.5, width, 0.25}}, {"b", {0.5, 0.21, 0.3, 0.3}}});
        QTest::mouseClick(m_view, Qt::LeftButton, {}, QPoint(60, 25));
        const ViewSpace space{{100, 40}, 1};
        QImage blank(m_view->size(), QImage::Format_RGB32);
        blank.fill(Qt::white);
        QImage own = blank;
        paintOutlines(own, m_view->selection(), space);
        const QImage items = painted(blank, {0, {}, m_view->items(space, {})});
        QVERIFY(differingPixels(items, blank) > 200);
        // The painter leaves the soft corners of an outline out; there are four to a box.
        QVERIFY2(differingPixels(own, items) <= 2 * 4 * 3,
                 qPrintable(QString::number(differingPixels(own, items))));
    }

    void itemsStandInTheOverlaysPixels()
    {
        m_defaults->setBoolean("highlightText", true);
        const auto items = m_view->items({{300, 200}, 2}, {100, 100});
        QRect all;
        for (const auto &item : items)
            all |= boundsOf(item);
        // Words from (100, 120) to (130, 130) in points, y up, with half a stroke of one point.
        QCOMPARE(all, QRect(199, 139, 62, 22));
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<Behind> m_behind;
    TextRegionOverlayView *m_view = nullptr;
};

QTEST_MAIN(TestTextRegionOverlayView)
#include "tst_TextRegionOverlayView.moc"
