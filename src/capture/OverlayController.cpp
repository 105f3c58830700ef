// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/OverlayController.h"

#include "capture/ImageOutput.h"
#include "capture/ScreenshotService.h"
#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "text/TextLines.h"

#include <QFileInfo>

#include <algorithm>

namespace tovek {

using namespace std::chrono_literals;

namespace {

constexpr auto checkmark = "checkmark.circle.fill";
constexpr auto xmark = "xmark.circle.fill";
constexpr auto document = "doc.text";
constexpr auto overlayRemovalDelay = 20ms;
constexpr auto textCopyDelay = 50ms;
/// Long enough for the overlays to be on the screen, short enough for the pixels to be here before
/// anybody can have selected some.
constexpr auto pixelFetchDelay = 40ms;
constexpr std::chrono::milliseconds cursorDelays[] = {10ms, 30ms,  50ms,  70ms,
                                                      90ms, 110ms, 130ms, 150ms};

} // namespace

OverlayController::OverlayController(Services services)
    : m_services(std::move(services))
    , m_text(m_services.recognizeText)
{
}

OverlayController::~OverlayController()
{
    qDeleteAll(m_overlayWindows);
    qDeleteAll(m_leavingWindows);
}

void OverlayController::prepare()
{
    if (m_isCapturing || !m_overlayWindows.empty())
        return;
    if (m_services.willFreeze)
        m_services.willFreeze();
    m_services.screenshots.prepare();
    m_services.overlayShell.prepare();
}

void OverlayController::startCapture(CaptureMode mode)
{
    if (m_isCapturing || !m_overlayWindows.empty())
        return;
    if (m_services.hasPermission && !m_services.hasPermission()) {
        if (m_services.showPermissionWindow)
            m_services.showPermissionWindow();
        return;
    }
    m_isCapturing = true;
    m_captureMode = mode;
    m_captured.forgetLeaving();
    ++m_session;
    if (m_services.willFreeze)
        m_services.willFreeze();
    const auto screen = startingScreen();
    const auto content = m_services.screenshots.shareableContent();
    if (!content) {
        logLine(
            QStringLiteral("Failed to get shareable content - check screen recording permission"));
        m_isCapturing = false;
        return;
    }
    if (screen) {
        captureStartingScreen(*screen, *content);
        return;
    }
    logLine(QStringLiteral("Failed to capture cursor's screen"));
    m_isCapturing = false;
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
    return m_overlayWindows.empty() ? mainOrFirst(m_services.screens)
                                    : std::optional(m_overlayWindows.front()->targetScreen());
}

void OverlayController::captureStartingScreen(const Screen &screen, const ShareableContent &content)
{
    const quint64 session = m_session;
    whenReady(m_services.screenshots.captureScreen(screen, content, {}), this,
              [this, session, screen, content](const ScreenshotService::Captured &captured) {
                  if (session != m_session || !m_isCapturing)
                      return;
                  if (!captured) {
                      logLine(QStringLiteral("Failed to capture cursor's screen"));
                      m_isCapturing = false;
                      return;
                  }
                  openOverlay(*captured, Keyboard::taken);
                  m_previousApp = m_services.frontmostApp.frontmost();
                  m_services.frontmostApp.setActivationPolicy(ActivationPolicy::accessory);
                  setCaptureCursors();
                  captureOtherScreens(screen, content);
                  fetchPixels();
              });
}

void OverlayController::captureOtherScreens(const Screen &starting, const ShareableContent &content)
{
    const quint64 session = m_session;
    for (const Screen &screen : m_services.screens.all()) {
        if (screen == starting)
            continue;
        whenReady(m_services.screenshots.captureScreen(screen, content, {}), this,
                  [this, session](const ScreenshotService::Captured &captured) {
                      if (captured && session == m_session && m_isCapturing)
                          openOverlay(*captured, Keyboard::left);
                  });
    }
}

void OverlayController::openOverlay(const CapturedDisplay &captured, Keyboard keyboard)
{
    m_captured.add(captured);
    const OverlayContext context{captured.screen,  captured.screenshot, m_captureMode,
                                 m_services.clock, m_services.defaults, m_services.keyboardLayout};
    // Not a member by value: a window outlives the session by the moment of its removal.
    auto *window = new OverlayWindow(context, m_services.overlayShell);
    installCallbacks(*window);
    // With the picture: whoever sees it presses keys for it.
    if (keyboard == Keyboard::taken)
        window->makeKey();
    window->orderFrontRegardless();
    m_overlayWindows.push_back(window);
}

void OverlayController::installCallbacks(OverlayWindow &window)
{
    // A window outlives its session by the moment of its removal; what it reports then is too late.
    const QPointer<OverlayController> self(this);
    const Screen screen = window.targetScreen();
    const auto weakly = [self, session = m_session](auto handler) {
        return [self, session, handler](const auto &...argument) {
            if (self && self->m_session == session)
                handler(argument...);
        };
    };
    OverlayCallbacks &callbacks = window.callbacks;
    callbacks.onCancel = weakly([this] { cleanUp(); });
    callbacks.onSelectionComplete =
        weakly([this, screen](const Rect &rect) { selectionComplete(rect, screen); });
    callbacks.onCopyImage = weakly([this, screen](const Rect &rect) { copyImage(rect, screen); });
    callbacks.onCopyAnnotatedImage =
        weakly([this](const Image &image) { copyAnnotatedImage(image); });
    callbacks.onCopyAllText = weakly([this] { copyAllText(); });
    callbacks.onCopySelectedText =
        weakly([this](const std::vector<TextRegion> &regions) { copyText(regions); });
    callbacks.onSaveImage = weakly([this, screen](const Rect &rect) { saveImage(rect, screen); });
    callbacks.onSaveAnnotatedImage =
        weakly([this](const Image &image) { saveAnnotatedImage(image); });
    window.onScreenGone = weakly([this, w = &window] { screenGone(w); });
    window.onKeyboardDenied = weakly([this, screen] {
        logLine(QStringLiteral("Failed to get the keyboard: another program holds it"));
        cleanUp();
        toast(QStringLiteral("Another program holds the keyboard"), xmark, screen);
    });
}

void OverlayController::setCaptureCursors()
{
    const quint64 session = m_session;
    const auto set = [this, session] {
        if (session != m_session)
            return;
        for (OverlayWindow *window : m_overlayWindows) {
            if (!window->selectionView()->isSelectionFinalized())
                window->selectionView()->setCaptureCursor();
        }
    };
    set();
    // Some window managers set a cursor of their own while windows come and go.
    for (const auto delay : cursorDelays)
        m_services.clock.after(delay, this, set);
}

void OverlayController::fetchPixels()
{
    m_services.clock.after(pixelFetchDelay, this, [this, session = m_session] {
        if (session != m_session)
            return;
        m_captured.fetchPixels();
        if (m_services.didOpen)
            m_services.didOpen();
    });
}

void OverlayController::selectionComplete(const Rect &rect, const Screen &screen)
{
    m_selectedRect = rect;
    m_selectedScreen = screen;
    logLine(QStringLiteral("Selection complete: %1 on screen %2").arg(toString(rect), screen.name));
    if (m_captureMode == CaptureMode::copyImage)
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
    if (!overlayWindow(screen)) {
        logLine(QStringLiteral("No overlay window found for this screen"));
        return;
    }
    m_text.start({
        captured->screenshot->pixels(),
        [=, this](const QImage &pixels) {
            return m_services.output.cropSelection(pixels, rect, screen);
        },
        [=, this] { toast(QStringLiteral("Failed to process image"), xmark, screen); },
        [=, this](const std::vector<TextRegion> &regions) { useText(regions, screen); },
    });
}

void OverlayController::useText(const std::vector<TextRegion> &regions, const Screen &screen)
{
    const bool copies = m_captureMode == CaptureMode::copyText;
    if (regions.empty()) {
        if (!copies)
            return;
        toast(QStringLiteral("No text detected"), xmark, screen);
        m_services.clock.after(textCopyDelay, this, [this, session = m_session] {
            if (session == m_session)
                cleanUp();
        });
        return;
    }
    m_detectedTextRegions = regions;
    if (copies)
        copyText(regions);
    else if (OverlayWindow *window = overlayWindow(screen))
        window->selectionView()->showTextRegions(regions);
}

void OverlayController::copyAllText()
{
    if (m_detectedTextRegions.empty())
        toast(QStringLiteral("No text detected"), xmark, m_selectedScreen);
    else
        copyText(m_detectedTextRegions);
}

void OverlayController::copyText(const std::vector<TextRegion> &regions)
{
    if (regions.empty())
        return;
    m_services.clipboard.setText(joinedLines(regions));
    m_services.clock.after(textCopyDelay, this, [this, session = m_session] {
        if (session != m_session)
            return;
        const auto screen = m_selectedScreen;
        cleanUp();
        toast(QStringLiteral("Text copied to clipboard"), document, screen);
    });
}

void OverlayController::screenGone(OverlayWindow *window)
{
    const Screen screen = window->targetScreen();
    std::erase(m_overlayWindows, window);
    m_leavingWindows.emplace_back(window);
    m_captured.remove(screen);
    window->deleteLater();
    if (m_overlayWindows.empty())
        cleanUp();
    else if (std::none_of(m_overlayWindows.begin(), m_overlayWindows.end(),
                          [](OverlayWindow *other) { return other->isKey(); }))
        m_overlayWindows.front()->makeKey();
}

void OverlayController::cleanUp()
{
    m_text.stop();
    if (m_previousApp)
        m_services.frontmostApp.activate(*m_previousApp);
    m_previousApp.reset();
    std::erase(m_leavingWindows, nullptr);
    for (OverlayWindow *window : m_overlayWindows) {
        m_leavingWindows.emplace_back(window);
        m_services.clock.after(overlayRemovalDelay, window, [window] {
            window->orderOut();
            window->deleteLater();
        });
    }
    m_overlayWindows.clear();
    m_captured.leave();
    m_services.clock.after(overlayRemovalDelay, this, [this, session = m_session + 1] {
        if (session != m_session)
            return;
        m_captured.forgetLeaving();
        if (m_services.didClose)
            m_services.didClose();
    });
    m_selectedRect.reset();
    m_selectedScreen.reset();
    m_isCapturing = false;
    m_detectedTextRegions.clear();
    m_captureMode = CaptureMode::normal;
    ++m_session;
}

std::optional<CapturedDisplay> OverlayController::capturedDisplay(const Screen &screen) const
{
    auto captured = m_captured.find(screen);
    if (!captured)
        logLine(QStringLiteral("No screenshot found for this screen"));
    return captured;
}

OverlayWindow *OverlayController::overlayWindow(const Screen &screen) const
{
    const auto found =
        std::find_if(m_overlayWindows.begin(), m_overlayWindows.end(),
                     [&](OverlayWindow *window) { return window->targetScreen() == screen; });
    return found == m_overlayWindows.end() ? nullptr : *found;
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
