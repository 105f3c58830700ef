// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"

#include <QPointF>
#include <QRegion>

#include <functional>
#include <memory>
#include <variant>
#include <vector>

class QWindow;

namespace tovek {

/// Everything that lies over a frozen display, in native pixels of the display, y down, in paint
/// order: the frozen picture; a black veil everywhere but in `clear`; then the items.
struct DisplayList
{
    /// A flat rectangle, blended over what lies below.
    struct Fill
    {
        QRect rect;
        QRgb color = 0; ///< premultiplied
        bool operator==(const Fill &) const = default;
    };
    /// Flat rectangles of one colour, blended one by one. The marks of thousands of words are a few
    /// of these, and cost little to keep, to compare and to draw.
    struct Fills
    {
        QRgb color = 0; ///< premultiplied
        std::shared_ptr<const std::vector<QRect>> rects; ///< never null
        bool operator==(const Fills &other) const
        {
            return color == other.color && (rects == other.rects || *rects == *other.rects);
        }
    };
    /// A small picture, blended over what lies below. Two decals with the same key hold the same
    /// pixels, so that a renderer can keep what it has uploaded.
    struct Decal
    {
        quint64 key = 0;
        QPoint at;
        QImage image; ///< Format_ARGB32_Premultiplied, device pixel ratio 1
        QRect clip; ///< nothing is painted outside; a null rectangle does not clip
        bool operator==(const Decal &other) const
        {
            return key == other.key && at == other.at && clip == other.clip;
        }
    };
    using Item = std::variant<Fill, Fills, Decal>;

    double veil = 0; ///< alpha of the black outside `clear`
    QRect clear; ///< empty: the veil lies everywhere
    std::vector<Item> items;

    bool operator==(const DisplayList &) const = default;
};

/// What an item covers, in native pixels; with many rectangles what lies between them too.
QRect boundsOf(const DisplayList::Item &item);
QRect boundsOf(const DisplayList::Decal &decal);

/// The pixels in which two lists over the same frozen display can differ; a superset, exact enough
/// that a small change of the list stays a small region whatever the size of the display.
QRegion damageBetween(const DisplayList &before, const DisplayList &after);
/// The same as a few rectangles, some of which may overlap, for a fraction of the time.
std::vector<QRect> damagedRects(const DisplayList &before, const DisplayList &after);

/// Turns one window into the overlay of one screen: above everything, without animation or shadow,
/// exactly over the screen's native pixels, showing the frozen display from its first instant on.
/// Main thread only. The window must outlive the surface.
///
/// A widget whose window this is leaves the painting to `present` and the display server. Left
/// alone, the toolkit would paint all of it once when it is shown, which takes longer than opening
/// the overlay. So the widget, and each child that covers much of it,
/// - sets Qt::WA_UpdatesDisabled before `orderFrontRegardless`, and afterwards drops its posted
///   QEvent::UpdateLater and sets the attribute back with setAttribute, not setUpdatesEnabled;
/// - resizes its backingStore() to its size() then: of another size, all of it is painted;
/// - does not hand focusInEvent and focusOutEvent on to QWidget, which would call update().
/// It still paints itself rightly wherever it is asked to: under child widgets that are not
/// opaque, and where one of them went away.
class OverlaySurface
{
public:
    virtual ~OverlaySurface() = default;
    /// Shows the window above everything, whatever is active. When this returns, the request is
    /// on its way to the display server and nothing needs to be painted first.
    virtual void orderFrontRegardless() = 0;
    /// That request alone; `orderFrontRegardless` must follow, and tells the toolkit. For several
    /// screens that are to come up together: where the display server is a guest, the toolkit waits
    /// for it while it carries out the first.
    virtual void sendToFront() { }
    virtual void orderOut() = 0;
    virtual bool isVisible() const = 0;
    /// Brings all keys to this window, without moving the input focus of the desktop where that
    /// is possible. Where another program holds the keyboard (an open menu), it is asked to let
    /// go for a moment; `onKeyboardDenied` tells when it did not.
    virtual void makeKey() = 0;
    virtual bool isKey() const = 0;
    /// Shows the list at once. False where the platform cannot draw it; the widget then paints
    /// itself. Pixels inside `setCovered` are left alone.
    virtual bool present(const DisplayList &list) = 0;
    /// The part of the window, in native pixels, that child widgets paint themselves.
    virtual void setCovered(const QRegion &region) = 0;
    /// True where all that is presented lies below the window: what no child widget paints must
    /// stay transparent.
    virtual bool liesBelow() const { return false; }
    /// While this is on, `onDragged` replaces the toolkit's mouse moves where the platform has a
    /// cheaper way for them. There are none without a button then, so this is only for times when
    /// nothing changes below the pointer. Off until the surface is visible.
    virtual void setFollowsPointer(bool isOn) = 0;

    /// The mouse is now at `at`, in logical pixels of the window, y down, which need not be
    /// whole; the left button is held.
    std::function<void(QPointF at)> onDragged;
    std::function<void()> onKeyboardDenied;
    /// The screen under the overlay went away; the surface shows nothing any more.
    std::function<void()> onScreenGone;
};

/// Makes overlay surfaces. Main thread only.
class OverlayShell
{
public:
    virtual ~OverlayShell() = default;
    /// See ScreenGrabber::prepare.
    virtual void prepare() = 0;
    /// True where surfaces present below their window (see OverlaySurface::liesBelow): the window
    /// must be one that can be transparent, from its making on.
    virtual bool presentsBelow() const { return false; }
    /// The window must not have been shown; its geometry and flags are set here.
    virtual std::unique_ptr<OverlaySurface> create(QWindow &window, const Screen &screen,
                                                   std::shared_ptr<FrozenDisplay> frozen) = 0;

    /// A screen locker came over the overlays, or waits for the keyboard that they hold.
    std::function<void()> onLocker;
    /// Another program holds the mouse: no press reaches the overlays, only keys do.
    std::function<void()> onMouseHeld;
};

} // namespace tovek
