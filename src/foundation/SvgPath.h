// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QPainterPath>
#include <QStringView>

#include <optional>

namespace tovek {

/// The path that SVG path data describes: M L H V C Q A Z, absolute and relative. Nothing when the
/// data is broken or uses another command.
std::optional<QPainterPath> pathFromSvg(QStringView data);

} // namespace tovek
