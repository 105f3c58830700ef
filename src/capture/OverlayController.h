// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureSession.h"
#include "capture/KeptDrawings.h"
#include "capture/TextToast.h"

namespace tovek {

/// Runs one capture session at a time, from the command to the result: freezes the screens, lays
/// an overlay over each, takes the user's choice, gives the feedback, tears the session down, and
/// only then does the slow work. Main thread.
class OverlayController : public QObject
{
public:
    using Services = CaptureServices;

    explicit OverlayController(Services services);
    ~OverlayController() override;

    /// A shortcut's key went down: a capture may follow when it comes up again.
    void prepare();
    /// Does nothing while a session runs. While the overlays of the last one go, it waits until
    /// they are gone, so that they are not in the picture.
    void startCapture(CaptureMode mode);
    /// Ends what runs or waits to start, as Escape does: the screen is about to be locked. What
    /// was drawn comes back with the next capture.
    void giveWayToLocker();
    /// Another program holds the mouse: tells who wants to drag.
    void tellHeldMouse();

    /// The frozen pixels in a rectangle (native, y down, global) inside of one screen, as long as
    /// an overlay may hide it; null when none does, or when they are not at hand.
    QImage frozenPixels(QRect native) const;

    bool isCapturing() const { return m_session || m_waiting; }
    const std::vector<OverlayWindow *> &overlayWindows() const;
    const std::optional<Rect> &selectedRect() const;
    const std::vector<TextRegion> &detectedTextRegions() const;

private:
    void beginSession(CaptureMode mode);
    void openSession(const std::optional<ShareableContent> &content);
    std::optional<Screen> startingScreen() const;
    std::optional<Screen> feedbackScreen() const;
    void installCallbacks(OverlayWindow &window);

    void selectionComplete(const Rect &rect, const Screen &screen);
    void copyImage(const Rect &rect, const Screen &screen);
    void copyAnnotatedImage(const Image &image);
    void saveImage(const Rect &rect, const Screen &screen);
    void saveAnnotatedImage(const Image &image);
    void recognizeText(const Rect &rect, const Screen &screen);
    void useText(const std::vector<TextRegion> &regions, const Screen &screen);
    void copyAllText();
    void copyText(const std::vector<TextRegion> &regions, const Screen &read);
    void screenGone(OverlayWindow *window);
    void keyboardDenied(const Screen &screen);
    void cleanUp();
    void overlaysLeft();

    /// Absent, with a line in the log, when there is none.
    std::optional<CapturedDisplay> capturedDisplay(const Screen &screen) const;
    void toast(const QString &message, const char *symbol, const std::optional<Screen> &screen);
    void confirm(const QString &message, const std::optional<Screen> &screen);

    /// What is left of a session for the moment in which its overlays go.
    struct Leaving
    {
        std::vector<QPointer<OverlayWindow>> windows; ///< owned
        CapturedDisplays displays;
        bool isOnScreen = false;
    };

    const Services m_services;
    std::unique_ptr<CaptureSession> m_session; ///< null while idle
    Leaving m_leaving;
    KeptDrawings m_keptDrawings;
    TextToast m_textToast;
    std::optional<CaptureMode> m_waiting; ///< a capture that starts when the overlays are gone
};

} // namespace tovek
