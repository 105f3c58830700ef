// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QProxyStyle>

namespace tovek {

/// How the controls of our windows look: flat, rounded, in the colours of the desktop's palette,
/// light or dark. Everything not drawn here is Fusion's.
class ModernStyle : public QProxyStyle
{
public:
    ModernStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;

    using QProxyStyle::polish;
    /// Not every desktop gives a colour for placeholders, and black is none on a dark field.
    void polish(QPalette &palette) override;

    /// True for a palette with light text on dark windows.
    static bool isDark(const QPalette &palette);
    /// What groups of controls lie on.
    static QColor cardColor(const QPalette &palette);
    static QColor separatorColor(const QPalette &palette);
    /// For text that explains.
    static QColor secondaryTextColor(const QPalette &palette);
    /// For text that warns; readable on windows and cards.
    static QColor warningTextColor(const QPalette &palette);
    static QColor focusRingColor(const QPalette &palette);
};

} // namespace tovek
