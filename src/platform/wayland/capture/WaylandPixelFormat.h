// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <cstdint>

namespace tovek {

/// The image format of pixels that a compositor delivers, by its number for wl_shm, alpha left out:
/// a screen is opaque. Format_Invalid for one that we cannot read.
QImage::Format imageFormat(uint32_t shmFormat);

/// The picture as a person sees it on the output, from the buffer's own orientation; `transform`
/// is the wl_output's.
QImage upright(const QImage &image, int32_t transform, bool isUpsideDown);

} // namespace tovek
