// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Screens.h"

#include <QFuture>
#include <QImage>

#include <memory>

namespace tovek {

/// One display's pixels as they were at one instant. They may live in the display server until
/// somebody asks for them, so that showing a frozen screen need not wait for their transfer.
/// Shared, because the overlay shows them, the recogniser reads them and the result is cut out of
/// them after the overlay has gone. Created and destroyed on the main thread.
class FrozenDisplay
{
public:
    virtual ~FrozenDisplay() = default;
    /// Native pixels.
    virtual QSize size() const = 0;
    /// The pixels as Format_RGB32 without the mouse cursor. The transfer starts with the first
    /// call, off the main thread, and happens once. A null image when the pixels were lost.
    virtual QFuture<QImage> pixels() = 0;
};

/// A display of which another program hands over rows of pixels, from the top, long before it says
/// that they are what was asked for. Main thread only.
class GrowingDisplay
{
public:
    virtual ~GrowingDisplay() = default;
    /// The next ones, in native pixels: Format_RGB32, as wide as the display.
    virtual void addRows(const QImage &rows) = 0;
    /// Of all rows, which are these. Null when they could not be kept.
    virtual std::shared_ptr<FrozenDisplay> finished(const QImage &pixels) = 0;
};

/// A display that the capture service can grab.
struct CaptureDisplay
{
    quint32 displayId = 0;
    QRect native; ///< native pixels, y down, global

    bool operator==(const CaptureDisplay &) const = default;
};

/// What can be captured, at the instant at which it was asked for: every capture made with one
/// content shows that same instant, where the window system allows it.
struct ShareableContent
{
    std::vector<CaptureDisplay> displays;
    std::vector<quint32> windows; ///< identifiers of the windows on the screen, bottom to top
    std::shared_ptr<void> snapshot; ///< the grabber's own; released with the content
};

/// Takes pictures of displays. Main thread unless stated otherwise.
class ScreenGrabber
{
public:
    struct Result
    {
        std::shared_ptr<FrozenDisplay> frozen; ///< null when the capture failed
        QString error; ///< a readable reason, when it failed
    };

    virtual ~ScreenGrabber() = default;
    /// Called when a capture may be near (a shortcut's key went down): gets ready what would
    /// otherwise delay it. May be called any number of times; unused preparation is dropped again.
    virtual void prepare() = 0;
    /// Freezes the desktop. Absent when nothing can be captured.
    virtual std::optional<ShareableContent> shareableContent() = 0;
    /// The same where another program takes its time for it: events are handled meanwhile.
    virtual QFuture<std::optional<ShareableContent>> freeze();
    /// One display of the content without the windows given.
    virtual QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                                    const std::vector<quint32> &excludedWindows) = 0;
    /// The older and slower way: an image of a rectangle of the live desktop (native pixels, y
    /// down, global), without the windows from the first excluded one upwards. Any thread. A null
    /// image on failure.
    virtual QImage captureFallback(QRect native, const std::vector<quint32> &excludedWindows) = 0;
    /// Why the last content was absent, for a person to read; empty where nobody knows.
    virtual QString failure() const { return {}; }
    /// A frozen display made of an image that came by the fallback.
    virtual std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) = 0;
};

} // namespace tovek
