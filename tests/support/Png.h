// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <optional>

namespace tovek {

/// The content of the first chunk of this type in a PNG; absent when it has none.
std::optional<QByteArray> pngChunk(const QByteArray &png, const QByteArray &type);

} // namespace tovek
