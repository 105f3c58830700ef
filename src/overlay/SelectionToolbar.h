// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"
#include "overlay/Material.h"

#include <QPointer>
#include <QWidget>

namespace tovek {

class ColorPickerPopover;
class ToolbarButton;
class ToolbarTooltip;

/// The row of buttons beside a selection: pointer, four tools, colour, copy and close. The parent
/// is the overlay view; the colours and the tooltip open as further children of it, never as
/// windows of their own, which would take the keyboard away. Mouse presses on any of them never
/// reach the view.
class SelectionToolbar : public QWidget
{
    Q_OBJECT

public:
    SelectionToolbar(BackdropProvider backdrop, QWidget *parent);
    ~SelectionToolbar() override;

    QSize sizeHint() const override;
    /// Shows the button of the tool as the active one.
    void setActiveTool(AnnotationTool tool);
    void setSelectedColor(const QColor &color);
    /// Colours and tooltip open above the toolbar where there is room, to keep off a selection
    /// below it.
    void setOpensAbove(bool opensAbove) { m_opensAbove = opensAbove; }
    void closeColorPicker();
    bool isColorPickerOpen() const;
    /// The picture under the toolbar has changed.
    void backdropChanged();
    /// What the toolbar, the open colours and the tooltip cover, in the parent's coordinates.
    QRegion coveredRegion() const;
    ToolbarButton *button(int index) const { return m_buttons.at(size_t(index)); }

    std::function<void()> onCursor, onCopy, onRectangle, onLine, onArrow, onText, onClose;
    std::function<void(const QColor &, ColorTarget)> onColorSelected;
    /// The covered region is another one.
    std::function<void()> onCoverChanged;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void click(size_t index);
    void openColorPicker();
    void showTooltip(const ToolbarButton &button);
    void placeBeside(QWidget &widget, const ToolbarButton &button, double distance);
    void tellCover();

    BackdropProvider m_backdrop;
    Material m_material;
    std::vector<ToolbarButton *> m_buttons;
    QPointer<ColorPickerPopover> m_popover; ///< children of the parent, which may delete them first
    QPointer<ToolbarTooltip> m_tooltip;
    bool m_opensAbove = false;
};

} // namespace tovek
