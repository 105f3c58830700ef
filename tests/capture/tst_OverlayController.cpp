// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ControllerFixture.h"
#include "fakes/LogCapture.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

/// A rectangle on the first screen, by hand.
void drawOn(ControllerFixture &f)
{
    SelectionOverlayView *view = f.controller->overlayWindows().front()->selectionView();
    const auto drag = [view](QPoint from, QPoint to) {
        QTest::mousePress(view, Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, to, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(view, &move);
        QTest::mouseRelease(view, Qt::LeftButton, {}, to);
    };
    drag({50, 60}, {250, 210});
    QTest::keyClick(view, Qt::Key_R);
    drag({80, 80}, {120, 140});
}

} // namespace

class TestOverlayController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensTheScreenUnderThePointerFirst()
    {
        ControllerFixture f;
        f.screens.mouse = {450, 10};
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events, (QStringList{"front 2", "key 2", "front 1"}));
        QCOMPARE(f.shell.mostSent, 2); // before any of them waits for the display server
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.frontmost.policy == ActivationPolicy::accessory);
    }

    void opensTheMainScreenWhenThePointerIsOnNone()
    {
        ControllerFixture f;
        f.screens.mouse = {-100, -100};
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events.first(), QStringLiteral("front 1"));
    }

    void runsOneSessionAtATime()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.controller->startCapture(CaptureMode::copyImage);
        QCOMPARE(f.controller->overlayWindows().size(), size_t(2));
        QVERIFY(f.controller->overlayWindows().front()->selectionView()->captureMode()
                == CaptureMode::normal);
    }

    void ignoresACommandWhileItStarts()
    {
        ControllerFixture f;
        f.grabber.hold(1);
        f.controller->startCapture(CaptureMode::normal);
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.controller->overlayWindows().empty());
        f.controller->startCapture(CaptureMode::normal);
        f.grabber.finish(1);
        QTRY_COMPARE(f.controller->overlayWindows().size(), size_t(2));
    }

    void opensOtherScreensAsTheyArrive()
    {
        ControllerFixture f;
        f.grabber.hold(2);
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events, (QStringList{"front 1", "key 1"}));
        f.grabber.finish(2);
        QTRY_COMPARE(f.shell.events, (QStringList{"front 1", "key 1", "front 2"}));
    }

    void dropsAScreenThatArrivesTooLate()
    {
        ControllerFixture f;
        f.grabber.hold(2);
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCancel();
        f.grabber.finish(2);
        QCoreApplication::processEvents();
        QCOMPARE(f.shell.events, (QStringList{"front 1", "key 1"}));
        QVERIFY(f.controller->overlayWindows().empty());
    }

    void skipsAScreenThatCannotBeGrabbed()
    {
        ControllerFixture f;
        f.grabber.errors[2] = QStringLiteral("gone");
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        QTRY_COMPARE(log.lines().size(), 2);
        QCOMPARE(f.shell.events, (QStringList{"front 1", "key 1"}));
        QVERIFY(f.events.isEmpty());
    }

    void endsWithoutContent()
    {
        ControllerFixture f;
        f.grabber.hasContent = false;
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(
            log.lines(),
            QStringList{"Failed to get shareable content - check screen recording permission"});
        QVERIFY(!f.controller->isCapturing());
        QVERIFY(f.events.isEmpty());
    }

    void endsWithoutTheStartingScreen()
    {
        ControllerFixture f;
        f.grabber.errors[1] = QStringLiteral("gone");
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        QTRY_VERIFY(!f.controller->isCapturing());
        QCOMPARE(log.lines().last(), QStringLiteral("Failed to capture cursor's screen"));
        QVERIFY(f.shell.events.isEmpty());
    }

    void asksForPermissionInsteadOfCapturing()
    {
        ControllerFixture f;
        f.hasPermission = false;
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.events, QStringList{"permission"});
        QVERIFY(!f.controller->isCapturing());
    }

    void cleansUpInOrder()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.shell.events.clear();
        f.overlay().onCancel();
        QVERIFY(!f.controller->isCapturing());
        QCOMPARE(f.frontmost.activated, (std::vector{RunningApplication{11, 12, 13}}));
        f.clock.advance(19ms);
        QVERIFY(f.shell.events.isEmpty());
        f.clock.advance(1ms);
        QCOMPARE(f.shell.events, (QStringList{"out 1", "out 2"}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(f.shell.surfaces.empty());
    }

    void waitsForTheOverlaysOfTheLastCapture()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCancel();
        f.shell.events.clear();
        f.controller->startCapture(CaptureMode::copyImage);
        QVERIFY(f.controller->isCapturing());
        f.controller->startCapture(CaptureMode::normal); // one at a time, also while it waits
        f.clock.advance(69ms); // 20 until they are gone, 50 for what is below to paint itself
        QCOMPARE(f.shell.events, (QStringList{"out 1", "out 2"}));
        f.clock.advance(1ms);
        QCOMPARE(f.shell.events, (QStringList{"out 1", "out 2", "front 1", "key 1", "front 2"}));
        QVERIFY(f.controller->overlayWindows().front()->selectionView()->captureMode()
                == CaptureMode::copyImage);
    }

    void startsAtOnceWhenTheOverlaysAreGone()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCancel();
        QVERIFY(!f.controller->isCapturing());
        f.clock.advance(70ms);
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.controller->overlayWindows().size(), size_t(2));
    }

    void keepsADrawingThatALockerInterrupted()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        drawOn(f);
        {
            LogCapture log;
            f.controller->giveWayToLocker();
        }
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::copyImage); // not one for drawing
        f.clock.advance(1s);
        QVERIFY(!f.controller->overlayWindows().front()->selectionView()->selectionRect());
        f.overlay().onCancel();
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::normal);
        SelectionOverlayView *view = f.controller->overlayWindows().front()->selectionView();
        QVERIFY(!view->toolbar());
        LogCapture log; // tells of the selection
        f.clock.advance(1s);
        QVERIFY(view->toolbar());
        QVERIFY(view->selectionRect() == Rect({50, 90, 200, 150}));
        QCOMPARE(view->editor().annotations().size(), size_t(1));
        QVERIFY(view->editor().currentTool() == AnnotationTool::rectangle);
        QVERIFY(!f.controller->overlayWindows().back()->selectionView()->selectionRect());
        QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(view->editor().annotations().empty());
        f.overlay().onCancel();
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::normal); // once only
        f.clock.advance(1s);
        QVERIFY(!f.controller->overlayWindows().front()->selectionView()->selectionRect());
    }

    void showsNoDrawingWithoutTheKeyboard()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        drawOn(f);
        LogCapture log;
        f.controller->giveWayToLocker();
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::normal);
        f.shell.keySurface = nullptr; // a locker has it
        f.clock.advance(1s);
        QVERIFY(!f.controller->overlayWindows().front()->selectionView()->selectionRect());
        f.overlay().onCancel();
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::normal); // it is kept until it can be shown
        f.clock.advance(1s);
        QVERIFY(f.controller->overlayWindows().front()->selectionView()->toolbar());
    }

    void keepsNoSelectionWithoutADrawing()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        drawOn(f);
        QTest::keyClick(f.controller->overlayWindows().front()->selectionView(), Qt::Key_Z,
                        Qt::ControlModifier);
        LogCapture log;
        f.controller->giveWayToLocker();
        f.clock.advance(1s);
        f.controller->startCapture(CaptureMode::normal);
        f.clock.advance(1s);
        QVERIFY(!f.controller->overlayWindows().front()->selectionView()->selectionRect());
    }

    void survivesTheEndOfTheControllerWithTheOverlaysOpen()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.controller.reset();
        QVERIFY(f.shell.surfaces.empty());
        f.clock.advance(1s);
    }

    void losesOnlyTheOverlayOfAScreenThatGoes()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.shell.surfaces.at(0)->onScreenGone();
        QVERIFY(f.controller->isCapturing());
        QCOMPARE(f.controller->overlayWindows().size(), size_t(1));
        QCOMPARE(f.shell.events.last(), QStringLiteral("key 2"));
        f.shell.surfaces.at(1)->onScreenGone();
        QVERIFY(!f.controller->isCapturing());
    }

    void waitsForADesktopThatTakesItsTime()
    {
        ControllerFixture f;
        f.grabber.freezesSlowly = true;
        f.controller->startCapture(CaptureMode::normal);
        f.controller->startCapture(CaptureMode::copyText); // one at a time
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.controller->overlayWindows().empty());
        f.grabber.finishFreeze();
        QVERIFY(QTest::qWaitFor([&] { return f.controller->overlayWindows().size() == 2; }));
    }

    void saysWhatASlowDesktopRefused()
    {
        ControllerFixture f;
        f.grabber.freezesSlowly = true;
        f.grabber.hasContent = false;
        f.grabber.whyNone = QStringLiteral("it said no");
        f.controller->startCapture(CaptureMode::normal);
        LogCapture log; // the failure is a line there too
        f.grabber.finishFreeze();
        QVERIFY(QTest::qWaitFor([&] { return !f.controller->isCapturing(); }));
        QVERIFY2(f.events.join(',').contains("toast No picture: it said no"),
                 qPrintable(f.events.join(',')));
    }

    void forgetsASlowDesktopWhenTheScreenIsLocked()
    {
        ControllerFixture f;
        f.grabber.freezesSlowly = true;
        f.controller->startCapture(CaptureMode::normal);
        LogCapture log;
        f.controller->giveWayToLocker();
        f.grabber.finishFreeze();
        QCoreApplication::processEvents();
        QVERIFY(!f.controller->isCapturing());
        QVERIFY(f.controller->overlayWindows().empty());
    }

    void endsWhenTheKeyboardIsDenied()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        QStringList lines;
        {
            LogCapture log; // what a failure says would go there too
            f.shell.surfaces.at(0)->onKeyboardDenied();
            lines = log.lines();
        }
        QVERIFY(!f.controller->isCapturing());
        QCOMPARE(lines.size(), 1);
        QVERIFY2(f.events.join(',').contains(
                     "toast Another program holds the keyboard [xmark.circle.fill] on 1"),
                 qPrintable(f.events.join(',')));
    }
};

QTEST_MAIN(TestOverlayController)
#include "tst_OverlayController.moc"
