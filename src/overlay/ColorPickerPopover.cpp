// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ColorPickerPopover.h"

#include "foundation/SystemColors.h"
#include "overlay/ToolbarButton.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>

namespace tovek {

namespace {

constexpr int columns = 4;
constexpr int gap = 4;
constexpr int padding = 12; ///< with the material's margin
constexpr Material::Look look{};

struct NamedColor
{
    const QColor &color;
    const char *name;
};

const NamedColor colors[] = {
    {SystemColors::red, QT_TRANSLATE_NOOP("ColorPickerPopover", "Red")},
    {SystemColors::orange, QT_TRANSLATE_NOOP("ColorPickerPopover", "Orange")},
    {SystemColors::yellow, QT_TRANSLATE_NOOP("ColorPickerPopover", "Yellow")},
    {SystemColors::green, QT_TRANSLATE_NOOP("ColorPickerPopover", "Green")},
    {SystemColors::blue, QT_TRANSLATE_NOOP("ColorPickerPopover", "Blue")},
    {SystemColors::purple, QT_TRANSLATE_NOOP("ColorPickerPopover", "Purple")},
    {SystemColors::white, QT_TRANSLATE_NOOP("ColorPickerPopover", "White")},
    {SystemColors::black, QT_TRANSLATE_NOOP("ColorPickerPopover", "Black")},
};

} // namespace

ColorPickerPopover::ColorPickerPopover(const BackdropProvider &backdrop, QWidget *parent)
    : QWidget(parent)
    , m_material(*this, backdrop, look)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::ArrowCursor);
    setAccessibleName(tr("Colours"));
    for (const NamedColor &entry : colors) {
        const QString name = QCoreApplication::translate("ColorPickerPopover", entry.name);
        auto *swatch = new ToolbarButton({}, name, name, this);
        const int index = int(m_swatches.size());
        const int step = ToolbarButton::side + gap;
        swatch->move(padding + index % columns * step, padding + index / columns * step);
        swatch->setSwatch(entry.color);
        connect(swatch, &QAbstractButton::clicked, this, [this, swatch] {
            const bool isForSelected = swatch->clickModifiers() & Qt::ShiftModifier;
            if (onColorSelected) {
                onColorSelected(swatch->swatch(),
                                isForSelected ? ColorTarget::selectedAnnotation
                                              : ColorTarget::newAnnotations);
            }
        });
        m_swatches.push_back(swatch);
    }
    resize(sizeHint());
    hide();
}

QSize ColorPickerPopover::sizeHint() const
{
    const int rows = int(std::size(colors)) / columns;
    const int step = ToolbarButton::side + gap;
    return {columns * step - gap + 2 * padding, rows * step - gap + 2 * padding};
}

void ColorPickerPopover::setSelectedColor(const QColor &color)
{
    for (ToolbarButton *swatch : m_swatches)
        swatch->setActive(swatch->swatch() == color);
}

void ColorPickerPopover::backdropChanged()
{
    m_material.forget();
    update();
}

void ColorPickerPopover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_material.paint(painter);
}

void ColorPickerPopover::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape) {
        event->ignore();
        return;
    }
    if (onClose)
        onClose();
}

void ColorPickerPopover::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

} // namespace tovek
