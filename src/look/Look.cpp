// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/Look.h"

#include "foundation/Symbol.h"
#include "look/ModernStyle.h"

#include <QApplication>
#include <QIcon>

#include <utility>

namespace tovek {

namespace {

constexpr int windowIconSide = 128;

} // namespace

void useModernLook()
{
    static bool isUsed = false;
    if (std::exchange(isUsed, true))
        return;
    QApplication::setStyle(new ModernStyle); // owned by the application
    if (const auto icon = Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg")))
        QApplication::setWindowIcon(
            QPixmap::fromImage(icon->image(windowIconSide, 1, QColor(Qt::black))));
}

} // namespace tovek
