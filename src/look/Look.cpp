// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/Look.h"

#include "foundation/Symbol.h"
#include "look/Accent.h"
#include "look/ModernStyle.h"

#include <QApplication>
#include <QIcon>
#include <QPalette>

#include <utility>

namespace tovek {

namespace {

constexpr int windowIconSide = 128;

/// The windows of a desktop that is dark without telling the toolkit its colours.
QPalette darkPalette()
{
    const QColor text(0xf2, 0xf2, 0xf4);
    QPalette palette(QColor(0x3a, 0x3a, 0x3d), QColor(0x26, 0x26, 0x28));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::BrightText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0xf2, 0xf2, 0xf4, 0x66));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x3d));
    palette.setColor(QPalette::Highlight, QColor(0x0a, 0x84, 0xff));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x5a, 0xb0, 0xff));
    return palette;
}

} // namespace

void useModernLook(Windows windows, const QColor &accent)
{
    static bool isUsed = false;
    static bool isOurs = false; // the palette, apart from the accent
    static QColor usedAccent;
    const bool makesDark =
        windows == Windows::dark && (isOurs || !ModernStyle::isDark(QApplication::palette()));
    if (makesDark != isOurs || accent != usedAccent) {
        // What is not set in it stays the desktop's, whatever that is by now.
        QPalette palette = makesDark ? darkPalette() : QPalette();
        if (makesDark != isOurs || !accent.isValid())
            QApplication::setPalette(palette);
        if (accent.isValid()) {
            const QColor window = QApplication::palette().color(QPalette::Window);
            palette.setColor(QPalette::Highlight, readableAccent(accent, window));
            palette.setColor(QPalette::HighlightedText, accentText);
            QApplication::setPalette(palette);
        }
        isOurs = makesDark;
        usedAccent = accent;
    }
    if (std::exchange(isUsed, true))
        return;
    QApplication::setStyle(new ModernStyle); // owned by the application
    if (const auto icon = Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg")))
        QApplication::setWindowIcon(
            QPixmap::fromImage(icon->image(windowIconSide, 1, QColor(Qt::black))));
}

} // namespace tovek
