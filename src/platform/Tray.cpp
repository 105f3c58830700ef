// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/Tray.h"

#include <algorithm>

namespace tovek {

namespace {

/// Points. Below both, nobody recognises a picture.
constexpr Size least{32, 16};

} // namespace

bool isLegibleIn(Size picture, Size room)
{
    const double shrink = std::min({1.0, room.width / picture.width, room.height / picture.height});
    return picture.width * shrink >= least.width || picture.height * shrink >= least.height;
}

const TrayPicture &shownIn(const TrayPicture &picture, Size room)
{
    return picture.standIn && !isLegibleIn(picture.size, room) ? *picture.standIn : picture;
}

} // namespace tovek
