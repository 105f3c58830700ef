// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayFixture.h"
#include "overlay/ToolbarButton.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

class EventCounter : public QObject
{
public:
    explicit EventCounter(QEvent::Type type) : m_type(type) { }
    int count = 0;

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == m_type;
        return false;
    }

    QEvent::Type m_type;
};

using Fixture = OverlayFixture;

} // namespace

class TestOverlayWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void reportsASelectionWithYUp()
    {
        Fixture f;
        f.drag({100, 50}, {200, 80});
        QCOMPARE(f.reports, QStringList{"complete (100, 220, 100, 30)"});
        QVERIFY(f.view()->isSelectionFinalized());
    }

    void showsNothingOfItsOwnBeforeThePress()
    {
        Fixture f;
        QVERIFY(f.surface().presented.empty());
    }

    void takesKeysThatComeByWayOfAnotherScreensWindow()
    {
        Fixture f;
        QVERIFY(!f.surface().isKey());
        QTest::keyClick(f.window.windowHandle(), Qt::Key_Escape);
        QCOMPARE(f.reports, QStringList{"cancel"});
    }

    void showsEachStepOfADragInPixels()
    {
        Fixture f;
        QTest::mousePress(f.view(), Qt::LeftButton, {}, QPoint(100, 50));
        f.move({150, 90});
        QCOMPARE(f.surface().presented.back().clear, QRect(200, 100, 100, 80));
        f.clock.advance(200ms);
        QCOMPARE(f.surface().presented.back().veil, 0.5);
        const size_t shown = f.surface().presented.size();
        f.move({150, 90});
        QCOMPARE(f.surface().presented.size(), shown);
    }

    void followsThePointerUntilThereIsAToolbar()
    {
        Fixture f;
        QVERIFY(f.surface().followsPointer);
        QVERIFY(f.surface().covered.isEmpty());
        QTest::mousePress(f.view(), Qt::LeftButton, {}, QPoint(100, 50));
        f.surface().onDragged({150.5, 90});
        QCOMPARE(f.surface().presented.back().clear, QRect(200, 100, 101, 80));
        QVERIFY(f.surface().followsPointer);
        QTest::mouseRelease(f.view(), Qt::LeftButton, {}, QPoint(150, 90));
        QVERIFY(!f.surface().followsPointer);
        // A frame that the platform shows later must not come to lie over the toolbar.
        QVERIFY(f.surface().covered.boundingRect().width() > 400);
    }

    void forgetsATooSmallSelection()
    {
        Fixture f;
        f.drag({100, 50}, {110, 90});
        QVERIFY(f.reports.isEmpty());
        QVERIFY(!f.view()->selectionRect());
        f.key(Qt::Key_Return);
        QVERIFY(f.reports.isEmpty());
    }

    void actsOnItsKeys_data()
    {
        QTest::addColumn<Qt::Key>("code");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("report");
        const QString copied = QStringLiteral("copy (100, 220, 100, 30)");
        const QString saved = QStringLiteral("save (100, 220, 100, 30)");
        const auto row = [](const char *name, Qt::Key code, Qt::KeyboardModifiers modifiers,
                            const QString &report) {
            QTest::newRow(name) << code << modifiers << report;
        };
        row("Return", Qt::Key_Return, {}, copied);
        row("Enter of the keypad", Qt::Key_Enter, Qt::KeypadModifier, copied);
        row("Space", Qt::Key_Space, {}, copied);
        row("Ctrl C", Qt::Key_C, Qt::ControlModifier, copied);
        row("Super C", Qt::Key_C, Qt::MetaModifier, copied);
        row("Ctrl S", Qt::Key_S, Qt::ControlModifier, saved);
        row("Ctrl Shift S", Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier, {});
        row("Escape", Qt::Key_Escape, {}, QStringLiteral("cancel"));
        row("s", Qt::Key_S, {}, {});
        row("Delete", Qt::Key_Delete, {}, {});
    }
    void actsOnItsKeys()
    {
        QFETCH(Qt::Key, code);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(QString, report);
        Fixture f;
        f.drag({100, 50}, {200, 80});
        f.reports.clear();
        f.key(code, modifiers);
        QCOMPARE(f.reports, report.isEmpty() ? QStringList() : QStringList{report});
    }

    void tellsOfDrawingsAndWhereTheirPixelsAreLost_data()
    {
        QTest::addColumn<QImage>("frozen");
        QTest::addColumn<QStringList>("reports");
        const QString copied = QStringLiteral("copy (100, 120, 200, 130)");
        const QString saved = QStringLiteral("save (100, 120, 200, 130)");
        QTest::newRow("pixels at hand")
            << plain({800, 600}) << QStringList{"copy drawn", "save drawn"};
        QTest::newRow("pixels lost") << QImage() << QStringList{copied, saved};
    }
    void tellsOfDrawingsAndWhereTheirPixelsAreLost()
    {
        QFETCH(QImage, frozen);
        Fixture f(CaptureMode::normal, frozen);
        f.drag({100, 50}, {300, 180});
        QTest::keyClick(f.view(), Qt::Key_R);
        f.drag({150, 80}, {250, 150});
        f.reports.clear();
        f.key(Qt::Key_Return);
        f.key(Qt::Key_S, Qt::ControlModifier);
        QTEST(f.reports, "reports");
    }

    void tellsScreenReadersOfTheSelection()
    {
        Fixture f;
        QCOMPARE(f.view()->accessibleDescription(), QString());
        f.drag({100, 50}, {300, 180});
        QCOMPARE(f.view()->accessibleDescription(),
                 QStringLiteral("Selection of 400 by 260 pixels at 200, 100"));
        f.drag({305, 100}, {325, 100});
        QCOMPARE(f.view()->accessibleDescription(),
                 QStringLiteral("Selection of 440 by 260 pixels at 200, 100"));
    }

    void closesTheOpenColoursFirst()
    {
        Fixture f;
        QVERIFY(f.show());
        f.drag({100, 50}, {300, 180});
        f.reports.clear();
        f.view()->toolbar()->button(5)->click();
        QVERIFY(f.view()->toolbar()->isColorPickerOpen());
        f.key(Qt::Key_Escape); // the keyboard is the view's, as after a click
        QVERIFY(!f.view()->toolbar()->isColorPickerOpen());
        QVERIFY(f.reports.isEmpty());
        f.key(Qt::Key_Escape);
        QCOMPARE(f.reports, QStringList{"cancel"});
    }

    void cancelsBeforeAnySelection()
    {
        Fixture f;
        f.key(Qt::Key_Escape);
        QCOMPARE(f.reports, QStringList{"cancel"});
    }

    void resizesAndReportsAgain()
    {
        Fixture f;
        f.drag({100, 50}, {200, 80});
        f.reports.clear();
        f.drag({205, 60}, {245, 60});
        QCOMPARE(f.reports, QStringList{"complete (100, 220, 140, 30)"});
    }

    void reportsThePartOnItsScreen()
    {
        Fixture f;
        f.drag({300, 200}, {500, 350}); // on to the next screen
        QCOMPARE(f.surface().presented.back().clear, QRect(600, 400, 200, 200));
        f.key(Qt::Key_Return);
        f.key(Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(f.reports,
                 (QStringList{"complete (300, 0, 100, 100)", "copy (300, 0, 100, 100)",
                              "save (300, 0, 100, 100)"}));
    }

    void ignoresAPressBesideAFinalisedSelection()
    {
        Fixture f;
        f.drag({100, 50}, {200, 80});
        f.reports.clear();
        f.drag({300, 200}, {380, 280});
        QVERIFY(f.reports.isEmpty());
        QVERIFY((f.view()->selectionRect() == Rect{100, 220, 100, 30}));
    }

    void showsTheCursorOfThePlace_data()
    {
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<Qt::CursorShape>("shape");
        QTest::newRow("left edge") << QPoint(96, 65) << Qt::SizeHorCursor;
        QTest::newRow("right edge") << QPoint(204, 65) << Qt::SizeHorCursor;
        QTest::newRow("top edge") << QPoint(150, 46) << Qt::SizeVerCursor;
        QTest::newRow("bottom edge") << QPoint(150, 84) << Qt::SizeVerCursor;
        QTest::newRow("top left") << QPoint(95, 45) << Qt::SizeFDiagCursor;
        QTest::newRow("bottom right") << QPoint(205, 85) << Qt::SizeFDiagCursor;
        QTest::newRow("top right") << QPoint(205, 45) << Qt::SizeBDiagCursor;
        QTest::newRow("bottom left") << QPoint(95, 85) << Qt::SizeBDiagCursor;
        QTest::newRow("inside") << QPoint(150, 65) << Qt::ArrowCursor;
        QTest::newRow("outside") << QPoint(300, 200) << Qt::ArrowCursor;
    }
    void showsTheCursorOfThePlace()
    {
        QFETCH(QPoint, at);
        Fixture f;
        QCOMPARE(f.view()->cursor().shape(), Qt::BitmapCursor); // the cross
        f.drag({100, 50}, {200, 80});
        QMouseEvent event(QEvent::MouseMove, at, at, Qt::NoButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(f.view(), &event);
        QTEST(f.view()->cursor().shape(), "shape");
    }

    void setsTheCaptureCursorEachTimeItIsTold()
    {
        Fixture f;
        EventCounter counter(QEvent::CursorChange);
        f.view()->installEventFilter(&counter);
        f.view()->setCaptureCursor();
        f.view()->setCaptureCursor();
        QCOMPARE(counter.count, 2);
        QMouseEvent event(QEvent::MouseMove, {50, 50}, {50, 50}, Qt::NoButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(f.view(), &event); // needs none
        QCOMPARE(counter.count, 2);
    }

    void drawsHandlesInNormalModeOnly()
    {
        Fixture normal;
        normal.drag({100, 50}, {200, 80});
        Fixture copies(CaptureMode::copyImage);
        copies.drag({100, 50}, {200, 80});
        QCOMPARE(normal.surface().presented.back().items.size(),
                 copies.surface().presented.back().items.size() + 4);
    }

    void takesTheKeyboardWithAPress()
    {
        Fixture f;
        QVERIFY(!f.window.isKey());
        QTest::mousePress(f.view(), Qt::LeftButton, {}, QPoint(10, 10));
        QVERIFY(f.window.isKey());
    }

    void takesTheKeyboardWithAPressOnTheToolbar()
    {
        Fixture f;
        QVERIFY(f.show());
        f.drag({100, 50}, {200, 180});
        f.shell.keySurface = nullptr; // another screen's overlay was clicked
        f.press(f.view()->toolbar()->button(0)->mapTo(&f.window, QPoint(5, 5)));
        QVERIFY(f.window.isKey());
    }

    void takesTheKeyboardBackAfterAChangeOfDesktop()
    {
        Fixture f;
        f.window.activeSpaceDidChange();
        QVERIFY(f.window.isKey());
        f.window.orderOut();
        f.shell.keySurface = nullptr;
        f.window.activeSpaceDidChange();
        QVERIFY(!f.window.isKey());
    }

    void paintsItselfWhereThePlatformCannotDraw()
    {
        Fixture f;
        f.shell.draws = false;
        f.drag({100, 50}, {200, 80});
        f.clock.advance(200ms);
        const QImage shown = f.view()->grab().toImage();
        QCOMPARE(shown.pixelColor(shown.width() * 150 / 400, shown.height() * 65 / 300),
                 QColor(Qt::darkGreen));
        QCOMPARE(shown.pixelColor(shown.width() * 300 / 400, shown.height() * 200 / 300).green(),
                 64);
    }
};

QTEST_MAIN(TestOverlayWindow)
#include "tst_OverlayWindow.moc"
