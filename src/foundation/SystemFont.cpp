// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemFont.h"

#include <QGuiApplication>

namespace tovek {

QFont systemFont(double size, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(1, qRound(size)));
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

} // namespace tovek
