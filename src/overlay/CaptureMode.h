// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

namespace tovek {

/// What finishing a selection does.
enum class CaptureMode : quint8 {
    normal, ///< the overlays stay open for drawing, copying and saving
    copyImage, ///< the picture is copied at once
    copyText, ///< the recognised text is copied at once
};

} // namespace tovek
