// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/OverlayController.h"

#include "capture/ImageOutput.h"
#include "capture/ScreenshotService.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "text/TextLines.h"

#include <QFileInfo>

#include <utility>

namespace tovek {

using namespace std::chrono_literals;

namespace {

constexpr auto checkmark = "checkmark.circle.fill";
constexpr auto xmark = "xmark.circle.fill";
constexpr auto overlayRemovalDelay = 20ms;
/// For the programs below to paint again what the overlays covered.
constexpr auto repaintDelay = 50ms;
constexpr auto textCopyDelay = 50ms;

} // namespace

OverlayController::OverlayController(Services services)
    : m_services(std::move(services))
    , m_textToast(m_services.feedback)
{
}

OverlayController::~OverlayController()
{
    m_session.reset();
    qDeleteAll(m_leaving.windows);
}

void OverlayController::prepare()
{
    if (isCapturing())
        return;
    if (m_services.willFreeze)
        m_services.willFreeze();
    m_services.screenshots.prepare();
    m_services.overlayShell.prepare();
}

void OverlayController::startCapture(CaptureMode mode)
{
    Q_ASSERT(isMainThread());
    if (isCapturing())
        return;
    if (m_services.hasPermission && !m_services.hasPermission()) {
        if (m_services.showPermissionWindow)
            m_services.showPermissionWindow();
        return;
    }
    if (m_leaving.isOnScreen)
        m_waiting = mode;
    else
        beginSession(mode);
}

void OverlayController::giveWayToLocker()
{
    Q_ASSERT(isMainThread());
    m_waiting.reset();
    if (m_session) {
        logLine(QStringLiteral("The capture ends: the screen is being locked"));
        m_keptDrawings.keep(m_session->windows());
        cleanUp();
    }
}

void OverlayController::tellHeldMouse()
{
    if (!m_session)
        return;
    logLine(QStringLiteral("Another program holds the mouse"));
    toast(QStringLiteral("Another program holds the mouse"), xmark, feedbackScreen());
}

void OverlayController::beginSession(CaptureMode mode)
{
    m_session = std::make_unique<CaptureSession>(m_services, mode);
    m_session->onNewWindow = [this](OverlayWindow &window) { installCallbacks(window); };
    m_session->onOpened = [this] { m_keptDrawings.giveBack(*m_session); };
    m_session->onFailed = [this] { m_session.reset(); };
    if (m_services.willFreeze)
        m_services.willFreeze();
    whenFinished(m_services.screenshots.freeze(), m_session.get(),
                 [this](const std::optional<ShareableContent> &content) { openSession(content); });
}

void OverlayController::openSession(const std::optional<ShareableContent> &content)
{
    const auto screen = startingScreen();
    if (content && screen) {
        m_session->open(*screen, *content);
        return;
    }
    logLine(content ? QStringLiteral("Failed to capture cursor's screen")
                    : QStringLiteral(
                        "Failed to get shareable content - check screen recording permission"));
    m_session.reset();
    if (const QString reason = m_services.screenshots.failure(); !content && !reason.isEmpty())
        toast(QStringLiteral("No picture: %1").arg(reason), xmark, mainOrFirst(m_services.screens));
}

const std::vector<OverlayWindow *> &OverlayController::overlayWindows() const
{
    static const std::vector<OverlayWindow *> none;
    return m_session ? m_session->windows() : none;
}

const std::optional<Rect> &OverlayController::selectedRect() const
{
    static const std::optional<Rect> none;
    return m_session ? m_session->selectedRect() : none;
}

const std::vector<TextRegion> &OverlayController::detectedTextRegions() const
{
    static const std::vector<TextRegion> none;
    return m_session ? m_session->detectedTextRegions() : none;
}

QImage OverlayController::frozenPixels(QRect native) const
{
    return (m_session ? m_session->displays() : m_leaving.displays).pixelsIn(native);
}

std::optional<Screen> OverlayController::startingScreen() const
{
    const Screens &screens = m_services.screens;
    if (auto screen = screenContaining(screens.all(), screens.mouseLocation()))
        return screen;
    return mainOrFirst(screens);
}

std::optional<Screen> OverlayController::feedbackScreen() const
{
    return overlayWindows().empty() ? mainOrFirst(m_services.screens)
                                    : std::optional(overlayWindows().front()->targetScreen());
}

void OverlayController::installCallbacks(OverlayWindow &window)
{
    // A window outlives its session by the moment of its removal; what it reports then is too late.
    const QPointer<CaptureSession> session(m_session.get());
    const Screen screen = window.targetScreen();
    const auto weakly = [session](auto handler) {
        return [session, handler](const auto &...argument) {
            if (session)
                handler(argument...);
        };
    };
    OverlayCallbacks &callbacks = window.callbacks();
    callbacks.onCancel = weakly([this] { cleanUp(); });
    callbacks.onSelectionComplete =
        weakly([this, screen](const Rect &rect) { selectionComplete(rect, screen); });
    callbacks.onCopyImage = weakly([this, screen](const Rect &rect) { copyImage(rect, screen); });
    callbacks.onCopyAnnotatedImage =
        weakly([this](const Image &image) { copyAnnotatedImage(image); });
    callbacks.onCopyAllText = weakly([this] { copyAllText(); });
    callbacks.onCopySelectedText = weakly(
        [this, screen](const std::vector<TextRegion> &regions) { copyText(regions, screen); });
    callbacks.onSaveImage = weakly([this, screen](const Rect &rect) { saveImage(rect, screen); });
    callbacks.onSaveAnnotatedImage =
        weakly([this](const Image &image) { saveAnnotatedImage(image); });
    window.onScreenGone = weakly([this, w = &window] { screenGone(w); });
    window.onKeyboardDenied = weakly([this, screen] { keyboardDenied(screen); });
}

void OverlayController::selectionComplete(const Rect &rect, const Screen &screen)
{
    m_session->select(rect, screen);
    if (m_session->mode() == CaptureMode::copyImage)
        copyImage(rect, screen);
    else
        recognizeText(rect, screen);
}

void OverlayController::copyImage(const Rect &rect, const Screen &screen)
{
    const std::optional<CapturedDisplay> captured = capturedDisplay(screen);
    if (!captured)
        return;
    cleanUp();
    confirm(QStringLiteral("Image copied to clipboard"), screen);
    m_services.output.copySelection(captured->screenshot->pixels(), rect, screen);
}

void OverlayController::copyAnnotatedImage(const Image &image)
{
    const auto screen = feedbackScreen();
    cleanUp();
    confirm(QStringLiteral("Image copied to clipboard"), screen);
    m_services.output.copyImage(image);
}

void OverlayController::saveImage(const Rect &rect, const Screen &screen)
{
    const std::optional<CapturedDisplay> captured = capturedDisplay(screen);
    if (!captured)
        return;
    const QString path = m_services.output.saveLocation();
    cleanUp();
    confirm(QStringLiteral("Saved to %1").arg(QFileInfo(path).fileName()), screen);
    m_services.output.saveSelection(captured->screenshot->pixels(), rect, screen, path);
}

void OverlayController::saveAnnotatedImage(const Image &image)
{
    const QString path = m_services.output.saveLocation();
    const auto screen = feedbackScreen();
    cleanUp();
    confirm(QStringLiteral("Saved to %1").arg(QFileInfo(path).fileName()), screen);
    m_services.output.saveImage(image, screen, path);
}

void OverlayController::recognizeText(const Rect &rect, const Screen &screen)
{
    const std::optional<CapturedDisplay> captured = capturedDisplay(screen);
    if (!captured)
        return;
    if (!m_session->window(screen)) {
        logLine(QStringLiteral("No overlay window found for this screen"));
        return;
    }
    // What is copied at once is the last selection, wherever it is.
    if (m_session->mode() == CaptureMode::copyText)
        m_session->stopTexts();
    // What is copied at once is copied whole.
    SelectionText::Use showPart;
    if (m_session->mode() != CaptureMode::copyText)
        showPart = [=, this](const std::vector<TextRegion> &regions) {
            if (OverlayWindow *window = m_session->window(screen))
                window->selectionView()->showTextRegions(regions, TextShare::some);
        };
    m_session->text(screen).start({
        captured->screenshot->pixels(),
        [=, this](const QImage &pixels) {
            return m_services.output.cropSelection(pixels, rect, screen);
        },
        [=, this] { toast(QStringLiteral("Failed to process image"), xmark, screen); },
        showPart,
        [=, this](const std::vector<TextRegion> &regions) { useText(regions, screen); },
    });
}

void OverlayController::useText(const std::vector<TextRegion> &regions, const Screen &screen)
{
    const bool copies = m_session->mode() == CaptureMode::copyText;
    if (regions.empty()) {
        if (!copies)
            return;
        m_textToast.noneFound(m_session->text(screen).missingModels(), screen);
        m_services.clock.after(textCopyDelay, m_session.get(), [this] { cleanUp(); });
        return;
    }
    if (screen == m_session->selectedScreen())
        m_session->setDetectedTextRegions(regions);
    if (copies)
        copyText(regions, screen);
    else if (OverlayWindow *window = m_session->window(screen))
        window->selectionView()->showTextRegions(regions);
}

void OverlayController::copyAllText()
{
    const auto screen = m_session->selectedScreen();
    if (!detectedTextRegions().empty())
        copyText(detectedTextRegions(), *screen);
    else
        m_textToast.noneFound(screen ? m_session->text(*screen).missingModels()
                                     : std::make_shared<MissingModels>(),
                              screen);
}

void OverlayController::copyText(const std::vector<TextRegion> &regions, const Screen &read)
{
    if (regions.empty())
        return;
    m_services.clipboard.setText(joinedLines(regions));
    const auto missing = m_session->text(read).missingModels();
    m_services.clock.after(textCopyDelay, m_session.get(), [this, missing] {
        const auto screen = m_session->selectedScreen();
        cleanUp();
        m_textToast.copied(missing, screen);
    });
}

void OverlayController::screenGone(OverlayWindow *window)
{
    std::erase(m_leaving.windows, nullptr);
    m_leaving.windows.emplace_back(m_session->takeWindow(window));
    window->deleteLater();
    if (m_session->windows().empty())
        cleanUp();
}

void OverlayController::keyboardDenied(const Screen &screen)
{
    logLine(QStringLiteral("Failed to get the keyboard: another program holds it"));
    cleanUp();
    toast(QStringLiteral("Another program holds the keyboard"), xmark, screen);
}

void OverlayController::cleanUp()
{
    Q_ASSERT(isMainThread());
    if (const auto &previousApp = m_session->previousApp())
        m_services.frontmostApp.activate(*previousApp);
    std::erase(m_leaving.windows, nullptr);
    for (OverlayWindow *window : m_session->takeWindows()) {
        m_leaving.windows.emplace_back(window);
        m_services.clock.after(overlayRemovalDelay, window, [window] {
            window->orderOut();
            window->deleteLater();
        });
    }
    m_leaving.displays = m_session->takeDisplays();
    m_leaving.isOnScreen = true;
    m_session.reset();
    m_services.clock.after(overlayRemovalDelay, this, [this] { overlaysLeft(); });
}

void OverlayController::overlaysLeft()
{
    m_leaving.displays = {};
    if (m_services.didClose)
        m_services.didClose();
    m_services.clock.after(repaintDelay, this, [this] {
        m_leaving.isOnScreen = false;
        if (const auto mode = std::exchange(m_waiting, {}))
            beginSession(*mode);
    });
}

std::optional<CapturedDisplay> OverlayController::capturedDisplay(const Screen &screen) const
{
    auto captured = m_session->displays().find(screen);
    if (!captured)
        logLine(QStringLiteral("No screenshot found for this screen"));
    return captured;
}

void OverlayController::toast(const QString &message, const char *symbol,
                              const std::optional<Screen> &screen)
{
    if (m_services.feedback.toast)
        m_services.feedback.toast(message, QString::fromLatin1(symbol), screen);
}

void OverlayController::confirm(const QString &message, const std::optional<Screen> &screen)
{
    toast(message, checkmark, screen);
    if (m_services.feedback.playCopySound)
        m_services.feedback.playCopySound();
}

} // namespace tovek
