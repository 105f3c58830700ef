// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/ModernStyle.h"

#include <QPainter>
#include <QStyleOption>
#include <QWidget>

#include <algorithm>

namespace tovek {

namespace {

constexpr double radius = 6;
constexpr double ringWidth = 2;
constexpr double barHeight = 6;
constexpr int tabHeight = 28;
constexpr int tabIcon = 15;
constexpr int tabPadding = 8;
constexpr double placeholderOpacity = 0.5;
constexpr int menuLineInset = 5;

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

QColor menuLineColor(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::Text), 0.22);
}

void fillRounded(QPainter &painter, const QRectF &rect, double corner, const QBrush &fill,
                 const QPen &line = Qt::NoPen)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(line);
    painter.drawRoundedRect(rect, corner, corner);
    painter.restore();
}

/// Inside the rectangle, so that nothing around has to be painted again.
void drawFocusRing(QPainter &painter, const QRectF &rect, double corner, const QPalette &palette)
{
    const double inset = ringWidth / 2;
    fillRounded(painter, rect.adjusted(inset, inset, -inset, -inset), corner, Qt::NoBrush,
                QPen(ModernStyle::focusRingColor(palette), ringWidth));
}

void drawButton(const QStyleOption &option, QPainter &painter)
{
    const QPalette &palette = option.palette;
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isEnabled = option.state & QStyle::State_Enabled;
    const bool isDefault =
        button && isEnabled && (button->features & QStyleOptionButton::DefaultButton);
    QColor fill = palette.color(QPalette::Highlight);
    if (!isDefault)
        fill = withAlpha(palette.color(QPalette::WindowText),
                         ModernStyle::isDark(palette) ? 0.16 : 0.08);
    if (option.state & QStyle::State_Sunken)
        fill = isDefault ? fill.darker(118) : withAlpha(fill, fill.alphaF() * 2);
    else if (isEnabled && option.state & QStyle::State_MouseOver)
        fill = isDefault ? fill.lighter(108) : withAlpha(fill, fill.alphaF() * 1.4);
    fillRounded(painter, option.rect, radius, fill);
    const bool showsFocus =
        option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
    if (showsFocus) {
        if (isDefault)
            fillRounded(painter, QRectF(option.rect).adjusted(2.5, 2.5, -2.5, -2.5), radius - 2,
                        Qt::NoBrush, QPen(palette.color(QPalette::HighlightedText), 1.4));
        else
            drawFocusRing(painter, option.rect, radius, palette);
    }
}

void drawField(const QStyleOption &option, QPainter &painter)
{
    const QPalette &palette = option.palette;
    const QRectF rect = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool isDark = ModernStyle::isDark(palette);
    const QColor line = withAlpha(palette.color(QPalette::WindowText), isDark ? 0.22 : 0.16);
    const QColor fill = isDark ? withAlpha(Qt::black, 0.22) : palette.color(QPalette::Base);
    fillRounded(painter, rect, radius, fill, QPen(line, 1));
    if (option.state & QStyle::State_HasFocus)
        drawFocusRing(painter, option.rect, radius, palette);
}

void drawTab(const QStyleOptionTab &tab, QPainter &painter)
{
    const QPalette &palette = tab.palette;
    const QRectF rect = QRectF(tab.rect).adjusted(2, 0, -2, 0);
    const bool isSelected = tab.state & QStyle::State_Selected;
    const bool isHovered = tab.state & QStyle::State_MouseOver;
    if (isSelected || isHovered)
        fillRounded(painter, rect, radius,
                    withAlpha(palette.color(QPalette::WindowText), isSelected ? 0.10 : 0.05));
    if (tab.state & QStyle::State_HasFocus && tab.state & QStyle::State_KeyboardFocusChange)
        drawFocusRing(painter, rect, radius, palette);
}

void drawTabLabel(const QStyleOptionTab &tab, QPainter &painter, const QFontMetrics &metrics)
{
    const bool isSelected = tab.state & QStyle::State_Selected;
    const QColor color = isSelected ? tab.palette.color(QPalette::WindowText)
                                    : ModernStyle::secondaryTextColor(tab.palette);
    const bool hasIcon = !tab.icon.isNull();
    const int gap = hasIcon ? 6 : 0;
    const int iconWidth = hasIcon ? tabIcon : 0;
    const int width = iconWidth + gap + metrics.horizontalAdvance(tab.text);
    const QRect middle(tab.rect.center().x() - width / 2, tab.rect.top(), width, tab.rect.height());
    const auto visual = [&](const QRect &part) {
        return QStyle::visualRect(tab.direction, middle, part);
    };
    if (hasIcon) {
        painter.save();
        painter.setOpacity(isSelected ? 1 : color.alphaF());
        tab.icon.paint(
            &painter, visual({middle.left(), middle.center().y() - tabIcon / 2, tabIcon, tabIcon}));
        painter.restore();
    }
    painter.setPen(color);
    painter.drawText(visual(middle.adjusted(iconWidth + gap, 0, 0, 0)),
                     Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextDontClip, tab.text);
}

void drawProgress(const QStyleOptionProgressBar &bar, QPainter &painter)
{
    const QRectF rect(bar.rect.left(), bar.rect.center().y() + 0.5 - barHeight / 2,
                      bar.rect.width(), barHeight);
    const double range = std::max(1, bar.maximum - bar.minimum);
    const double part = std::clamp((bar.progress - bar.minimum) / range, 0.0, 1.0);
    QRectF done = rect;
    done.setWidth(std::max(barHeight, rect.width() * part));
    fillRounded(painter, rect, barHeight / 2,
                withAlpha(bar.palette.color(QPalette::WindowText), 0.14));
    if (part > 0)
        fillRounded(painter, done, barHeight / 2, bar.palette.color(QPalette::Highlight));
}

} // namespace

ModernStyle::ModernStyle() : QProxyStyle(QStringLiteral("Fusion")) { }

void ModernStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                QPainter *painter, const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        return drawButton(*option, *painter);
    case PE_PanelLineEdit:
        return drawField(*option, *painter);
    case PE_FrameLineEdit:
    case PE_FrameTabBarBase:
    case PE_FrameTabWidget:
    case PE_FrameFocusRect: // buttons, fields and tabs show the keyboard by their ring
        return;
    default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void ModernStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option)) {
        if (element == CE_TabBarTabShape)
            return drawTab(*tab, *painter);
        if (element == CE_TabBarTabLabel)
            return drawTabLabel(*tab, *painter, tab->fontMetrics);
    }
    if (const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option)) {
        if (element == CE_ProgressBarGroove)
            return drawProgress(*bar, *painter);
        if (element == CE_ProgressBarContents || element == CE_ProgressBarLabel)
            return;
    }
    if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
        // Fusion's is darker than the menu, and cannot be told from a dark one.
        if (element == CE_MenuItem && item->menuItemType == QStyleOptionMenuItem::Separator
            && item->text.isEmpty())
            return painter->fillRect(QRect(item->rect.left() + menuLineInset,
                                           item->rect.center().y(),
                                           item->rect.width() - 2 * menuLineInset, 1),
                                     menuLineColor(item->palette));
    }
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (element == CE_PushButtonLabel && button
        && button->features & QStyleOptionButton::DefaultButton && button->state & State_Enabled) {
        QStyleOptionButton onHighlight = *button;
        onHighlight.palette.setColor(QPalette::ButtonText,
                                     button->palette.color(QPalette::HighlightedText));
        return QProxyStyle::drawControl(element, &onHighlight, painter, widget);
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

QRect ModernStyle::subElementRect(SubElement element, const QStyleOption *option,
                                  const QWidget *widget) const
{
    if (element == SE_ProgressBarGroove || element == SE_ProgressBarContents)
        return option->rect;
    return QProxyStyle::subElementRect(element, option, widget);
}

QSize ModernStyle::sizeFromContents(ContentsType type, const QStyleOption *option,
                                    const QSize &size, const QWidget *widget) const
{
    if (type == CT_TabBarTab) {
        const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option);
        const int text = tab ? tab->fontMetrics.horizontalAdvance(tab->text) : size.width();
        const int height = tab ? tab->fontMetrics.height() + tabPadding : 0;
        return {text + tabIcon + 36, std::max(tabHeight, height)};
    }
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_PushButton)
        result = result.expandedTo({0, 26});
    if (type == CT_LineEdit)
        result.setHeight(std::max(result.height(), 26));
    return result;
}

int ModernStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                             const QWidget *widget) const
{
    switch (metric) {
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarBaseOverlap:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int ModernStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                           QStyleHintReturn *returnData) const
{
    if (hint == SH_TabBar_Alignment)
        return Qt::AlignCenter;
    if (hint == SH_EtchDisabledText) // which smears light text on a dark menu
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

void ModernStyle::polish(QPalette &palette)
{
    QProxyStyle::polish(palette);
    palette.setColor(QPalette::PlaceholderText,
                     withAlpha(palette.color(QPalette::Text), placeholderOpacity));
}

bool ModernStyle::isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness()
        < palette.color(QPalette::WindowText).lightness();
}

QColor ModernStyle::cardColor(const QPalette &palette)
{
    return isDark(palette) ? withAlpha(Qt::white, 0.06) : palette.color(QPalette::Base);
}

QColor ModernStyle::separatorColor(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::WindowText), 0.10);
}

QColor ModernStyle::secondaryTextColor(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::WindowText), 0.62);
}

QColor ModernStyle::warningTextColor(const QPalette &palette)
{
    return isDark(palette) ? QColor(0xff, 0xb3, 0x40) : QColor(0xb2, 0x50, 0x00);
}

QColor ModernStyle::focusRingColor(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::Highlight), 0.75);
}

} // namespace tovek
