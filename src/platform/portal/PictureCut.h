// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QRect>

#include <vector>

namespace tovek {

/// A screen, and where it lies in the desktop's layout.
struct PortalDisplay
{
    quint32 id = 0;
    QRect layout; ///< in units of the layout, whatever they are: the same for all screens
    QRect native; ///< native pixels, as whoever shows the picture counts them

    bool operator==(const PortalDisplay &) const = default;
};

/// The part of a picture of the whole desktop that shows each screen. The picture may have more
/// pixels a unit than the layout, one number for all screens; absent when that does not come out:
/// then it shows something else, or other screens than these.
std::vector<QRect> partsOfPicture(QSize picture, const std::vector<PortalDisplay> &displays);

/// One screen's pixels, of a picture of four bytes a pixel, whose memory they share. A part of
/// another size is scaled to the screen's.
QImage cutOut(const QImage &picture, QRect part, QSize native);

} // namespace tovek
