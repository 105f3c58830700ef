// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "foundation/SymbolSource.h"
#include "platform/Tray.h"

namespace tovek {

/// The program's symbol in the middle of its room, in the colour that the panel asks for.
TrayPicture iconPicture(const SymbolSource &symbols);

/// The capture, small and with round corners; `icon` for panels that have no room for it.
TrayPicture thumbnailPicture(const Image &image, const TrayPicture &icon);

} // namespace tovek
