// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureServices.h"
#include "capture/CapturedDisplays.h"
#include "overlay/CaptureMode.h"
#include "platform/FrontmostApp.h"

#include <QPointer>

namespace tovek {

class OverlayWindow;

/// One capture, from the frozen screens to the choice: its overlays, its pictures, its selection
/// and the words in it. It ends by being destroyed, and whatever arrives for it afterwards is
/// dropped because this object is the context that it would arrive in. Main thread.
class CaptureSession : public QObject
{
public:
    CaptureSession(const CaptureServices &services, CaptureMode mode);
    /// Takes the overlays along that nobody took, and gives up the recognition.
    ~CaptureSession() override;

    /// Opens an overlay over the starting screen, which takes the keyboard, then over the others
    /// as they are captured.
    void open(const Screen &starting, const ShareableContent &content);
    /// Called with each overlay before it is shown.
    std::function<void(OverlayWindow &)> onNewWindow;
    /// The overlays are on the screen, and their pixels are on the way.
    std::function<void()> onOpened;
    /// The starting screen could not be captured. May end the session.
    std::function<void()> onFailed;

    CaptureMode mode() const { return m_mode; }
    /// In the order in which they were opened; owned.
    const std::vector<OverlayWindow *> &windows() const { return m_windows; }
    /// Null when the screen has none.
    OverlayWindow *window(const Screen &screen) const;
    const CapturedDisplays &displays() const { return m_displays; }
    const std::optional<RunningApplication> &previousApp() const { return m_previousApp; }

    void select(const Rect &rect, const Screen &screen);
    const std::optional<Rect> &selectedRect() const { return m_selectedRect; }
    const std::optional<Screen> &selectedScreen() const { return m_selectedScreen; }

    /// The recognition of one screen's selection: those of several screens do not disturb each
    /// other.
    SelectionText &text(const Screen &screen);
    /// Gives up what is being recognised on any screen.
    void stopTexts();
    void setDetectedTextRegions(const std::vector<TextRegion> &regions);
    const std::vector<TextRegion> &detectedTextRegions() const { return m_detectedTextRegions; }

    /// Hands an overlay over whose screen went away, and the keyboard to one that is left.
    [[nodiscard]] OverlayWindow *takeWindow(OverlayWindow *window);
    /// Hands all overlays over, and what they show.
    [[nodiscard]] std::vector<OverlayWindow *> takeWindows();
    [[nodiscard]] CapturedDisplays takeDisplays();

private:
    enum class Keyboard { taken, left };
    void openOtherScreens(const Screen &starting, const ShareableContent &content);
    void openWindow(const CapturedDisplay &captured, Keyboard keyboard);
    void showWindows();
    void setCaptureCursors();
    void fetchPixels();

    const CaptureServices &m_services;
    const CaptureMode m_mode;
    std::vector<OverlayWindow *> m_windows;
    bool m_areShown = false;
    CapturedDisplays m_displays;
    std::optional<Rect> m_selectedRect;
    std::optional<Screen> m_selectedScreen;
    std::vector<TextRegion> m_detectedTextRegions;
    std::optional<RunningApplication> m_previousApp;
    std::vector<std::pair<Screen, std::unique_ptr<SelectionText>>> m_texts; ///< one a screen
};

} // namespace tovek
