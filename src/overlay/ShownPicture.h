// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/OverlayContext.h"
#include "overlay/OverlayPicture.h"

class QPaintEvent;
class QWidget;

namespace tovek {

/// What an overlay shows now: on its surface, or painted by the widget where the platform cannot
/// draw display lists.
class ShownPicture
{
public:
    struct Change
    {
        bool isOnScreen = false; ///< otherwise the widget has to paint itself
        bool touchesWatched = false;
    };

    /// The font is that of the size label.
    ShownPicture(const QFont &font, const OverlayContext &context);

    /// Null before there is one and on a platform without.
    OverlaySurface *surface() const { return m_surface; }
    void setSurface(OverlaySurface *surface) { m_surface = surface; }

    /// `watched`: a part, in native pixels with y down, whose changes somebody wants to know of.
    Change show(const OverlayPicture &picture, const QRegion &watched);
    /// Native pixels of what is shown. Waits for the frozen pixels.
    QImage part(const QRect &native) const;
    void paint(QWidget &widget, const QPaintEvent &event) const;
    /// Child widgets paint this part, in points, by themselves.
    void setCovered(const QRegion &region);

private:
    std::shared_ptr<FrozenDisplay> m_frozen;
    double m_scale;
    OverlayArtist m_artist;
    OverlaySurface *m_surface = nullptr;
    DisplayList m_list;
};

} // namespace tovek
