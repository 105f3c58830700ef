// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageOutput.h"
#include "capture/OverlayController.h"
#include "capture/ScreenshotService.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFrontmostApp.h"
#include "fakes/FakeOverlayShell.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

/// Two screens side by side, the second at scale 2; the pointer on the first.
struct Fixture
{
    Fixture() : defaults(folder.filePath(QStringLiteral("defaults.json"))), screenshots(grabber)
    {
        screens.screens = {FakeScreens::screen(1, {0, 0, 400, 300}),
                           FakeScreens::screen(2, {400, 0, 300, 200}, 2)};
        screens.mouse = {10, 10};
        grabber.images[1] = numbered({400, 300});
        grabber.images[2] = numbered({600, 400});
        frontmost.front = RunningApplication{11, 12, 13};
        frontmost.policy = ActivationPolicy::regular;
        defaults.setString(QStringLiteral("saveFolderPath"), folder.path());
        feedback.toast = [this](const QString &message, const QString &symbol,
                                const std::optional<Screen> &screen) {
            events << QStringLiteral("toast %1 [%2] on %3, %4 open")
                          .arg(message, symbol)
                          .arg(screen ? int(screen->displayId.value_or(0)) : -1)
                          .arg(controller->overlayWindows().size());
        };
        feedback.playCopySound = [this] { events << QStringLiteral("sound"); };
        feedback.showPreview = [this](const Image &image, std::chrono::seconds duration) {
            events << QStringLiteral("preview %1x%2 for %3")
                          .arg(image.bitmap.width())
                          .arg(image.bitmap.height())
                          .arg(duration.count());
        };
        feedback.showSavedNotification = [this](const QString &message, const QUrl &file) {
            events << QStringLiteral("notification %1 %2").arg(message, file.fileName());
        };
        output = std::make_unique<ImageOutput>(clipboard, defaults, clock, feedback);
        OverlayController::Services services{screens, screenshots, shell,   frontmost,
                                             clock,   clipboard,   *output, defaults};
        services.feedback = feedback;
        services.hasPermission = [this] { return hasPermission; };
        services.showPermissionWindow = [this] { events << QStringLiteral("permission"); };
        services.recognizeText = [this](const Image &image) {
            recognised << image.bitmap.size();
            return readyFuture(regions);
        };
        controller = std::make_unique<OverlayController>(services);
    }

    static QImage numbered(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, qRgb(x % 256, y % 256, x / 256));
        }
        return image;
    }

    OverlayCallbacks &overlay(size_t index = 0)
    {
        return controller->overlayWindows().at(index)->callbacks;
    }

    QTemporaryDir folder;
    FakeClock clock;
    FakeScreens screens;
    FakeScreenGrabber grabber;
    FakeOverlayShell shell;
    FakeFrontmostApp frontmost;
    FakeClipboard clipboard;
    UserDefaults defaults;
    ScreenshotService screenshots;
    CaptureFeedback feedback;
    std::unique_ptr<ImageOutput> output;
    std::unique_ptr<OverlayController> controller;
    bool hasPermission = true;
    std::vector<TextRegion> regions;
    QStringList events;
    QList<QSize> recognised;
};

TextRegion word(const char *text, double y)
{
    return {QString::fromLatin1(text), {0.1, y, 0.1, 0.1}};
}

} // namespace

class TestOverlayController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensTheScreenUnderThePointerFirst()
    {
        Fixture f;
        f.screens.mouse = {450, 10};
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events, (QStringList{"front 2", "key 2", "front 1"}));
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.frontmost.policy == ActivationPolicy::accessory);
    }

    void opensTheMainScreenWhenThePointerIsOnNone()
    {
        Fixture f;
        f.screens.mouse = {-100, -100};
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events.first(), QStringLiteral("front 1"));
    }

    void runsOneSessionAtATime()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.controller->startCapture(CaptureMode::copyImage);
        QCOMPARE(f.controller->overlayWindows().size(), size_t(2));
        QVERIFY(f.controller->overlayWindows().front()->selectionView()->captureMode()
                == CaptureMode::normal);
    }

    void ignoresACommandWhileItStarts()
    {
        Fixture f;
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
        Fixture f;
        f.grabber.hold(2);
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.shell.events, (QStringList{"front 1", "key 1"}));
        f.grabber.finish(2);
        QTRY_COMPARE(f.shell.events, (QStringList{"front 1", "key 1", "front 2"}));
    }

    void dropsAScreenThatArrivesTooLate()
    {
        Fixture f;
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
        Fixture f;
        f.grabber.errors[2] = QStringLiteral("gone");
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        QTRY_COMPARE(log.lines().size(), 2);
        QCOMPARE(f.shell.events, (QStringList{"front 1", "key 1"}));
        QVERIFY(f.events.isEmpty());
    }

    void endsWithoutContent()
    {
        Fixture f;
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
        Fixture f;
        f.grabber.errors[1] = QStringLiteral("gone");
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        QTRY_VERIFY(!f.controller->isCapturing());
        QCOMPARE(log.lines().last(), QStringLiteral("Failed to capture cursor's screen"));
        QVERIFY(f.shell.events.isEmpty());
    }

    void asksForPermissionInsteadOfCapturing()
    {
        Fixture f;
        f.hasPermission = false;
        f.controller->startCapture(CaptureMode::normal);
        QCOMPARE(f.events, QStringList{"permission"});
        QVERIFY(!f.controller->isCapturing());
    }

    void cleansUpInOrder()
    {
        Fixture f;
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

    void canStartAgainBeforeTheOldOverlaysAreGone()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCancel();
        f.controller->startCapture(CaptureMode::normal);
        f.clock.advance(1s);
        QCOMPARE(f.controller->overlayWindows().size(), size_t(2));
    }

    void confirmsACopyBeforeTheWork()
    {
        Fixture f;
        f.screens.mouse = {450, 10};
        f.controller->startCapture(CaptureMode::normal);
        // 100 x 50 points at the top left corner of the screen at scale 2.
        f.overlay().onCopyImage({0, 150, 100, 50});
        QCOMPARE(
            f.events.mid(0, 2),
            (QStringList{"toast Image copied to clipboard [checkmark.circle.fill] on 2, 0 open",
                         "sound"}));
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(), QStringLiteral("preview 200x100 for 20"));
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        const QImage copied = QImage::fromData(f.clipboard.lastPng());
        QCOMPARE(copied.convertToFormat(QImage::Format_RGB32),
                 Fixture::numbered({600, 400}).copy(0, 0, 200, 100));
        QCOMPARE(copied.dotsPerMeterX(), qRound(144 / 0.0254));
    }

    void copiesAtOnceInCopyImageMode()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::copyImage);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QVERIFY(!f.controller->isCapturing());
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        QCOMPARE(QImage::fromData(f.clipboard.lastPng()).size(), QSize(30, 40));
        QVERIFY(f.recognised.isEmpty());
    }

    void logsTheSelection()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        LogCapture log;
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(log.lines(),
                 QStringList{"Selection complete: (10, 20, 30, 40) on screen Screen 1"});
    }

    void savesUnderTheNameOfTheToast()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveImage({10, 20, 30, 40});
        const QString name = QStringLiteral("Tovek 2025-03-07 at 14.05.09.png");
        QCOMPARE(
            f.events.first(),
            QStringLiteral("toast Saved to %1 [checkmark.circle.fill] on 1, 0 open").arg(name));
        QTRY_COMPARE(f.events.size(), 4);
        QCOMPARE(f.events.mid(1),
                 (QStringList{"sound", "preview 30x40 for 20",
                              QStringLiteral("notification %1 %1").arg(name)}));
        const QImage saved(f.folder.filePath(name));
        QCOMPARE(saved.convertToFormat(QImage::Format_RGB32),
                 Fixture::numbered({400, 300}).copy(10, 240, 30, 40));
    }

    void tellsOfAFailedSaveAfterTheSuccess()
    {
        Fixture f;
        f.defaults.setString(QStringLiteral("saveFolderPath"),
                             f.folder.filePath(QStringLiteral("missing")));
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveImage({10, 20, 30, 40});
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(),
                 QStringLiteral("toast Failed to save image [xmark.circle.fill] on 1, 0 open"));
        QVERIFY(log.lines().last().startsWith(QStringLiteral("Failed to save image: ")));
    }

    void failsToCopyASelectionBesideTheScreen()
    {
        Fixture f;
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCopyImage({500, 20, 30, 40});
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(),
                 QStringLiteral("toast Failed to copy image [xmark.circle.fill] on 1, 0 open"));
        QCOMPARE(log.lines().last(), QStringLiteral("Failed to crop image"));
        QVERIFY(f.clipboard.lastPng().isEmpty());
    }

    void copiesAnAnnotatedImageAsItIs()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay(1).onCopyAnnotatedImage({Fixture::numbered({20, 10}), {20, 10}});
        QCOMPARE(
            f.events.first(),
            QStringLiteral("toast Image copied to clipboard [checkmark.circle.fill] on 1, 0 open"));
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        QCOMPARE(QImage::fromData(f.clipboard.lastPng()).size(), QSize(20, 10));
    }

    void savesAnAnnotatedImageAsItIs()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveAnnotatedImage({Fixture::numbered({20, 10}), {20, 10}});
        QTRY_COMPARE(f.events.size(), 4);
        QCOMPARE(
            QImage(f.folder.filePath(QStringLiteral("Tovek 2025-03-07 at 14.05.09.png"))).size(),
            QSize(20, 10));
    }

    void staysOpenWithoutTextInNormalMode()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.recognised, QList{QSize(30, 40)});
        f.clock.advance(1s);
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.events.isEmpty());
    }

    void endsWithoutTextInCopyTextMode()
    {
        Fixture f;
        f.controller->startCapture(CaptureMode::copyText);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.events, QStringList{"toast No text detected [xmark.circle.fill] on 1, 2 open"});
        f.clock.advance(49ms);
        QVERIFY(f.controller->isCapturing());
        f.clock.advance(1ms);
        QVERIFY(!f.controller->isCapturing());
    }

    void copiesAllTextInCopyTextMode()
    {
        Fixture f;
        f.regions = {word("to", 0.8), word("be", 0.79), word("or", 0.5)};
        f.controller->startCapture(CaptureMode::copyText);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.clipboard.lastText(), QStringLiteral("to be\nor"));
        QVERIFY(f.events.isEmpty());
        f.clock.advance(50ms);
        QCOMPARE(f.events, QStringList{"toast Text copied to clipboard [doc.text] on 1, 0 open"});
        QVERIFY(!f.controller->isCapturing());
    }

    void keepsTheTextForLaterInNormalMode()
    {
        Fixture f;
        f.regions = {word("to", 0.8)};
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCopyAllText();
        QCOMPARE(f.events.size(), 1);
        QVERIFY(f.events.last().startsWith(QStringLiteral("toast No text detected")));
        QVERIFY(f.controller->isCapturing());
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QVERIFY(f.clipboard.lastText().isEmpty());
        f.overlay().onCopyAllText();
        QCOMPARE(f.clipboard.lastText(), QStringLiteral("to"));
    }

    void losesOnlyTheOverlayOfAScreenThatGoes()
    {
        Fixture f;
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
        Fixture f;
        f.controller->startCapture(CaptureMode::normal);
        LogCapture log;
        f.shell.surfaces.at(0)->onKeyboardDenied();
        QVERIFY(!f.controller->isCapturing());
        QCOMPARE(log.lines().size(), 1);
    }
};

QTEST_MAIN(TestOverlayController)
#include "tst_OverlayController.moc"
