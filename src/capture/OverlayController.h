// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "capture/CapturedDisplays.h"
#include "capture/SelectionText.h"
#include "overlay/CaptureMode.h"
#include "platform/FrontmostApp.h"

#include <QObject>
#include <QPointer>

namespace tovek {

class Clipboard;
class Clock;
class FrontmostApp;
class ImageOutput;
class KeyboardLayout;
class OverlayShell;
class OverlayWindow;
class ScreenshotService;
class UserDefaults;

/// Runs one capture session at a time, from the command to the result: freezes the screens, lays
/// an overlay over each, takes the user's choice, gives the feedback, tears the session down, and
/// only then does the slow work. Main thread.
class OverlayController : public QObject
{
public:
    /// What a session uses. Functions are called only if set.
    struct Services
    {
        const Screens &screens;
        ScreenshotService &screenshots;
        OverlayShell &overlayShell;
        FrontmostApp &frontmostApp;
        Clock &clock;
        Clipboard &clipboard;
        ImageOutput &output;
        const UserDefaults &defaults;
        const KeyboardLayout *keyboardLayout = nullptr;
        CaptureFeedback feedback = {};
        std::function<bool()> hasPermission = {}; ///< unset: there is
        std::function<void()> showPermissionWindow = {};
        std::function<void()> willFreeze = {}; ///< what must not be in the picture goes now
        std::function<void()> didOpen = {}; ///< the overlays are up; nobody waits
        std::function<void()> didClose = {}; ///< the overlays are gone; results may still be made
        SelectionText::Recognize recognizeText = {};
    };

    explicit OverlayController(Services services);
    ~OverlayController() override;

    /// A shortcut's key went down: a capture may follow when it comes up again.
    void prepare();
    /// Does nothing while a session runs.
    void startCapture(CaptureMode mode);

    /// See CapturedDisplays::pixelsIn.
    QImage frozenPixels(QRect native) const { return m_captured.pixelsIn(native); }

    bool isCapturing() const { return m_isCapturing; }
    const std::vector<OverlayWindow *> &overlayWindows() const { return m_overlayWindows; }
    const std::optional<Rect> &selectedRect() const { return m_selectedRect; }
    const std::vector<TextRegion> &detectedTextRegions() const { return m_detectedTextRegions; }

private:
    std::optional<Screen> startingScreen() const;
    std::optional<Screen> feedbackScreen() const;
    void captureStartingScreen(const Screen &screen, const ShareableContent &content);
    void captureOtherScreens(const Screen &starting, const ShareableContent &content);
    enum class Keyboard { taken, left };
    void openOverlay(const CapturedDisplay &captured, Keyboard keyboard);
    void installCallbacks(OverlayWindow &window);
    void setCaptureCursors();
    void fetchPixels();

    void selectionComplete(const Rect &rect, const Screen &screen);
    void copyImage(const Rect &rect, const Screen &screen);
    void copyAnnotatedImage(const Image &image);
    void saveImage(const Rect &rect, const Screen &screen);
    void saveAnnotatedImage(const Image &image);
    void recognizeText(const Rect &rect, const Screen &screen);
    void useText(const std::vector<TextRegion> &regions, const Screen &screen);
    void copyAllText();
    void copyText(const std::vector<TextRegion> &regions);
    void screenGone(OverlayWindow *window);
    void cleanUp();

    /// Absent, with a line in the log, when there is none.
    std::optional<CapturedDisplay> capturedDisplay(const Screen &screen) const;
    OverlayWindow *overlayWindow(const Screen &screen) const;
    void toast(const QString &message, const char *symbol, const std::optional<Screen> &screen);
    void confirm(const QString &message, const std::optional<Screen> &screen);

    Services m_services;
    std::vector<OverlayWindow *> m_overlayWindows; ///< owned
    std::vector<QPointer<OverlayWindow>> m_leavingWindows; ///< owned; gone once ordered out
    CapturedDisplays m_captured;
    std::optional<Rect> m_selectedRect;
    std::optional<Screen> m_selectedScreen;
    bool m_isCapturing = false;
    std::vector<TextRegion> m_detectedTextRegions;
    CaptureMode m_captureMode = CaptureMode::normal;
    std::optional<RunningApplication> m_previousApp;
    quint64 m_session = 0; ///< grows with each; results of an earlier one are dropped
    SelectionText m_text;
};

} // namespace tovek
