// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"
#include "overlay/Material.h"

#include <QWidget>

namespace tovek {

class ToolbarButton;

/// The eight colours for annotations on a small plate over the overlay. With Shift held a choice
/// is meant for the selected annotation. While the keyboard is in it, Escape closes it.
class ColorPickerPopover : public QWidget
{
    Q_OBJECT

public:
    /// The parent is the overlay view; the provider must outlive the popover.
    ColorPickerPopover(const BackdropProvider &backdrop, QWidget *parent);

    QSize sizeHint() const override;
    void setSelectedColor(const QColor &color);
    void backdropChanged();
    const std::vector<ToolbarButton *> &swatches() const { return m_swatches; }

    std::function<void(const QColor &, ColorTarget)> onColorSelected;
    std::function<void()> onClose;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    Material m_material;
    std::vector<ToolbarButton *> m_swatches;
};

} // namespace tovek
