// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/CaptureSession.h"

#include "capture/ScreenshotService.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"
#include "platform/Clock.h"

#include <algorithm>

namespace tovek {

using namespace std::chrono_literals;

namespace {

/// Long enough for the overlays to be on the screen, short enough for the pixels to be here before
/// anybody can have selected some.
constexpr auto pixelFetchDelay = 40ms;
constexpr std::chrono::milliseconds cursorDelays[] = {10ms, 30ms,  50ms,  70ms,
                                                      90ms, 110ms, 130ms, 150ms};

} // namespace

CaptureSession::CaptureSession(const CaptureServices &services, CaptureMode mode)
    : m_services(services)
    , m_mode(mode)
{
    Q_ASSERT(isMainThread());
}

CaptureSession::~CaptureSession()
{
    Q_ASSERT(isMainThread());
    stopTexts();
    qDeleteAll(m_windows);
}

void CaptureSession::open(const Screen &starting, const ShareableContent &content)
{
    whenReady(m_services.screenshots.captureScreen(starting, content, {}), this,
              [this, starting, content](const ScreenshotService::Captured &captured) {
                  if (!captured) {
                      logLine(QStringLiteral("Failed to capture cursor's screen"));
                      const auto failed = onFailed; // which may end this object
                      return failed();
                  }
                  const QPointer<CaptureSession> self(this);
                  openWindow(*captured, Keyboard::taken);
                  if (self)
                      openOtherScreens(starting, content);
                  if (self)
                      showWindows();
                  if (self)
                      fetchPixels();
              });
}

void CaptureSession::openOtherScreens(const Screen &starting, const ShareableContent &content)
{
    for (const Screen &screen : m_services.screens.all()) {
        if (screen == starting)
            continue;
        whenReady(m_services.screenshots.captureScreen(screen, content, {}), this,
                  [this](const ScreenshotService::Captured &captured) {
                      if (captured)
                          openWindow(*captured, Keyboard::left);
                  });
    }
}

void CaptureSession::openWindow(const CapturedDisplay &captured, Keyboard keyboard)
{
    Q_ASSERT(captured.screenshot);
    m_displays.add(captured);
    const OverlayContext context{captured.screen,  captured.screenshot, m_mode,
                                 m_services.clock, m_services.defaults, m_services.keyboardLayout};
    // Not a member by value: a window outlives the session by the moment of its removal.
    const QPointer<OverlayWindow> window(new OverlayWindow(context, m_services.overlayShell));
    m_windows.push_back(window);
    onNewWindow(*window);
    const QPointer<CaptureSession> self(this);
    if (keyboard == Keyboard::taken)
        window->makeKey();
    if (self && window && m_areShown)
        window->orderFrontRegardless();
}

/// All at once: where the display server is a guest on another desktop, every question to it waits
/// until it has carried out what was asked before, and to show a window takes it as long as a
/// frame.
void CaptureSession::showWindows()
{
    m_areShown = true;
    // With the picture: whoever sees it presses keys for it. Without keys the session ends here.
    const QPointer<CaptureSession> self(this);
    const std::vector<QPointer<OverlayWindow>> windows(m_windows.begin(), m_windows.end());
    const auto forEach = [&](void (OverlayWindow::*act)()) {
        for (const QPointer<OverlayWindow> &window : windows) {
            if (self && window)
                (window->*act)();
        }
    };
    forEach(&OverlayWindow::sendToFront);
    if (!self)
        return;
    m_previousApp = m_services.frontmostApp.frontmost();
    m_services.frontmostApp.setActivationPolicy(ActivationPolicy::accessory);
    forEach(&OverlayWindow::orderFrontRegardless);
    if (self)
        setCaptureCursors();
}

void CaptureSession::setCaptureCursors()
{
    const auto set = [this] {
        for (OverlayWindow *window : m_windows) {
            if (!window->selectionView()->isSelectionFinalized())
                window->selectionView()->setCaptureCursor();
        }
    };
    set();
    // Some window managers set a cursor of their own while windows come and go.
    for (const auto delay : cursorDelays)
        m_services.clock.after(delay, this, set);
}

void CaptureSession::fetchPixels()
{
    m_services.clock.after(pixelFetchDelay, this, [this] {
        m_displays.fetchPixels();
        if (m_services.didOpen)
            m_services.didOpen(m_mode);
        if (onOpened)
            onOpened();
    });
}

OverlayWindow *CaptureSession::window(const Screen &screen) const
{
    const auto found = std::find_if(m_windows.begin(), m_windows.end(), [&](OverlayWindow *window) {
        return window->targetScreen() == screen;
    });
    return found == m_windows.end() ? nullptr : *found;
}

void CaptureSession::select(const Rect &rect, const Screen &screen)
{
    m_selectedRect = rect;
    m_selectedScreen = screen;
    logLine(QStringLiteral("Selection complete: %1 on screen %2").arg(toString(rect), screen.name));
}

SelectionText &CaptureSession::text(const Screen &screen)
{
    const auto found = std::find_if(m_texts.begin(), m_texts.end(),
                                    [&](const auto &text) { return text.first == screen; });
    if (found != m_texts.end())
        return *found->second;
    m_texts.emplace_back(screen, std::make_unique<SelectionText>(m_services.recognizeText));
    return *m_texts.back().second;
}

void CaptureSession::stopTexts()
{
    for (const auto &[screen, text] : m_texts)
        text->stop();
}

void CaptureSession::setDetectedTextRegions(const std::vector<TextRegion> &regions)
{
    m_detectedTextRegions = regions;
}

OverlayWindow *CaptureSession::takeWindow(OverlayWindow *window)
{
    std::erase(m_windows, window);
    m_displays.remove(window->targetScreen());
    text(window->targetScreen()).stop();
    const bool isKeyboardHeld = std::any_of(m_windows.begin(), m_windows.end(),
                                            [](OverlayWindow *other) { return other->isKey(); });
    if (!m_windows.empty() && !isKeyboardHeld)
        m_windows.front()->makeKey();
    return window;
}

std::vector<OverlayWindow *> CaptureSession::takeWindows()
{
    return std::exchange(m_windows, {});
}

CapturedDisplays CaptureSession::takeDisplays()
{
    return std::exchange(m_displays, {});
}

} // namespace tovek
