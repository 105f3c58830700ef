// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ControllerFixture.h"
#include "fakes/LogCapture.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

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
