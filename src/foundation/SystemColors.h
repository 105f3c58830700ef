// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>

/// The fixed colours that annotations, borders and marks are drawn in.
namespace tovek::SystemColors {

inline const QColor red{0xff, 0x3b, 0x30};
inline const QColor orange{0xff, 0x95, 0x00};
inline const QColor yellow{0xff, 0xcc, 0x00};
inline const QColor green{0x34, 0xc7, 0x59};
inline const QColor blue{0x00, 0x7a, 0xff};
inline const QColor purple{0xaf, 0x52, 0xde};
inline const QColor white{0xff, 0xff, 0xff};
inline const QColor black{0x00, 0x00, 0x00};

} // namespace tovek::SystemColors
