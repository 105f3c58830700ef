// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"

#include <QImage>
#include <QRect>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QColor;

namespace tovek {

/// What the status item shows. The item's host decides on its size; the picture is painted for it.
struct TrayPicture
{
    Size size; ///< points, when the host gives it the room
    /// Paints it in this size and at this many native pixels per point. A template uses the tint,
    /// which suits the host's background; a picture in colours of its own ignores it.
    std::function<QImage(Size size, const QColor &tint, double scale)> paint;
    /// Shown instead where the host's room makes this one too small; null: nothing is.
    std::shared_ptr<const TrayPicture> standIn = nullptr;
};

/// A row of a menu that the host draws.
struct TrayMenuRow
{
    QString title;
    bool isSeparator = false;
    bool isEnabled = true;
    QStringList keys; ///< that do the same: "Control", "Alt", "Shift", "Super", then the key itself

    bool operator==(const TrayMenuRow &) const = default;
};

/// Whether somebody recognises a picture, sizes in points, that has to fit into this room.
bool isLegibleIn(Size picture, Size room);
/// The picture, or what stands in for it in this room.
const TrayPicture &shownIn(const TrayPicture &picture, Size room);

/// The program's item in the desktop's status area. Main thread only.
///
/// Without a host nothing is shown and nothing is reported; a host that comes later, or comes
/// again, gets the item then.
class Tray
{
public:
    virtual ~Tray() = default;
    virtual void setVisible(bool isVisible) = 0;
    virtual void setPicture(const TrayPicture &picture) = 0;
    virtual void setToolTip(const QString &text) = 0;
    /// True while the desktop has a place for the item.
    virtual bool hasHost() const = 0;
    /// True where the host shows this kind of item badly, having a better one of its own: it is
    /// taken where there is nothing else.
    virtual bool isLastResort() const { return false; }
    /// True right after the start, until the desktop has told whether it has such a place.
    virtual bool isLookingForHost() const = 0;
    /// True where the host hands us the pointer's presses and moves, so that something can be
    /// dragged out of the item. Elsewhere it only tells that the item was chosen.
    virtual bool canDrag() const = 0;
    /// The object that a drag out of the item starts from.
    virtual QObject *dragSource() = 0;

    /// True where the host draws the menu of the item, and opens it by itself.
    virtual bool drawsMenu() const { return false; }

    /// The item's place; empty where the host does not tell.
    virtual QRect geometry() const = 0;

    // Positions and places are in the toolkit's global logical pixels, y down.

    /// The main button, only where `canDrag`.
    std::function<void(QPointF at)> onPressed;
    std::function<void(QPointF at)> onMoved;
    std::function<void(QPointF at)> onReleased;
    /// The item was chosen in another way: other button, keyboard, or a host that cannot drag.
    std::function<void()> onMenuRequested;
    /// The menu's rows as they are now, only where `drawsMenu`.
    std::function<std::vector<TrayMenuRow>()> menuRows;
    std::function<void(int row)> onMenuRow;
    /// `hasHost`, `isLookingForHost` or `canDrag` may have changed.
    std::function<void()> onHostChanged;
};

} // namespace tovek
