// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ScreenshotService.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "fakes/LogCapture.h"

#include <QTest>

using namespace tovek;

class TestScreenshotService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void freezesAScreenAtItsPixelSize()
    {
        FakeScreenGrabber grabber;
        grabber.images[7] = picture({2880, 1800});
        ScreenshotService service(grabber);
        const Screen screen = FakeScreens::screen(7, {0, 0, 1440, 900}, 2);
        const auto captured = service.captureScreen(screen, {}).result();
        QVERIFY(captured);
        QCOMPARE(captured->screenshot->size(), QSize(2880, 1800));
        QVERIFY(captured->screen == screen);
        QCOMPARE(captured->display.displayId, 7u);
    }

    void isReadyAtOnceWhereTheGrabberIs()
    {
        FakeScreenGrabber grabber;
        grabber.images[7] = picture({10, 10});
        ScreenshotService service(grabber);
        QVERIFY(service.captureScreen(FakeScreens::screen(7, {0, 0, 10, 10}), {}).isFinished());
    }

    void needsADisplayIdentifier()
    {
        FakeScreenGrabber grabber;
        grabber.images[7] = picture({10, 10});
        ScreenshotService service(grabber);
        Screen screen = FakeScreens::screen(7, {0, 0, 10, 10});
        screen.displayId.reset();
        LogCapture log;
        QVERIFY(!service.captureScreen(screen, {}).result());
        QCOMPARE(log.lines(), QStringList{"Could not get display ID for screen"});
    }

    void needsADisplayOfThatIdentifier()
    {
        FakeScreenGrabber grabber;
        grabber.images[7] = picture({10, 10});
        ScreenshotService service(grabber);
        LogCapture log;
        QVERIFY(
            !service.captureScreen(FakeScreens::screen(4294967295, {0, 0, 10, 10}), {}).result());
        QCOMPARE(log.lines(), QStringList{"Could not find SCDisplay for display 4294967295"});
    }

    void fallsBackToTheRectangleOfTheScreen()
    {
        FakeScreenGrabber grabber;
        grabber.images[7] = picture({10, 10});
        grabber.images[8] = picture({20, 10});
        grabber.errors[8] = QStringLiteral("out of memory");
        grabber.fallbackImage = picture({20, 10});
        ScreenshotService service(grabber);
        // Above the first screen: native y is negative there.
        Screen screen = FakeScreens::screen(8, {0, 10, 20, 10});
        screen.native = QRect(0, -10, 20, 10);
        LogCapture log;
        auto future = service.captureScreen(screen, {});
        QTRY_VERIFY(future.isFinished());
        QVERIFY(future.result());
        QCOMPARE(future.result()->screenshot->size(), QSize(20, 10));
        QCOMPARE(grabber.fallbackRects, std::vector{QRect(0, -10, 20, 10)});
        QCOMPARE(log.lines(),
                 QStringList{"ScreenCaptureKit capture failed for screen: out of memory, "
                             "falling back"});
    }

    void givesUpAfterTheFallback()
    {
        FakeScreenGrabber grabber;
        grabber.images[8] = picture({20, 10});
        grabber.errors[8] = QStringLiteral("denied");
        ScreenshotService service(grabber);
        LogCapture log;
        auto future = service.captureScreen(FakeScreens::screen(8, {0, 0, 20, 10}), {});
        QTRY_VERIFY(future.isFinished());
        QVERIFY(!future.result());
        QCOMPARE(log.lines().last(), QStringLiteral("Failed to capture screen via fallback"));
        QCOMPARE(log.lines().size(), 2);
    }

    void yieldsNothingWithoutContent()
    {
        FakeScreenGrabber grabber;
        grabber.hasContent = false;
        ScreenshotService service(grabber);
        QVERIFY(!service.captureScreen(FakeScreens::screen(8, {0, 0, 20, 10}), {}).result());
    }

private:
    static QImage picture(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }
};

QTEST_GUILESS_MAIN(TestScreenshotService)
#include "tst_ScreenshotService.moc"
