// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayToolbar.h"

#include "overlay/ToolbarPlacement.h"

namespace tovek {

OverlayToolbar::OverlayToolbar(QWidget &view, AnnotationEditor &editor, BackdropProvider backdrop)
    : m_view(view)
    , m_editor(editor)
    , m_backdrop(std::move(backdrop))
{
}

void OverlayToolbar::build(const Rect &selection, const ViewSpace &space)
{
    remove();
    m_toolbar = new SelectionToolbar(m_backdrop, &m_view);
    wireTools();
    wireColors();
    m_toolbar->onCopy = [this] { onCopy(); };
    m_toolbar->onClose = [this] { onClose(); };
    m_toolbar->onCoverChanged = [this] { onCoverChanged(); };
    const QSize hint = m_toolbar->sizeHint();
    const auto placement =
        placedToolbar(selection, space.size, {double(hint.width()), double(hint.height())});
    m_isToolbarAtTop = placement.isToolbarAtTop;
    const Rect frame = snappedToPixels(placement.frame, space.size, space.scale);
    m_toolbar->setGeometry(space.widgetFromRect(frame).toRect());
    m_toolbar->setOpensAbove(m_isToolbarAtTop);
}

void OverlayToolbar::wireTools()
{
    m_toolbar->setActiveTool(m_editor.currentTool());
    const auto toggle = [this](AnnotationTool tool) {
        return [this, tool] { onEdited(m_editor.toggleTool(tool)); };
    };
    m_toolbar->onCursor = [this] { onEdited(m_editor.selectTool(AnnotationTool::none)); };
    m_toolbar->onRectangle = toggle(AnnotationTool::rectangle);
    m_toolbar->onLine = toggle(AnnotationTool::line);
    m_toolbar->onArrow = toggle(AnnotationTool::arrow);
    m_toolbar->onText = toggle(AnnotationTool::text);
}

void OverlayToolbar::wireColors()
{
    m_toolbar->setSelectedColor(m_editor.selectedAnnotationColor());
    m_toolbar->onColorSelected = [this](const QColor &color, ColorTarget target) {
        onEdited(m_editor.chooseColor(color, target));
        m_toolbar->setSelectedColor(m_editor.selectedAnnotationColor());
    };
}

void OverlayToolbar::remove()
{
    m_isToolbarAtTop = false;
    delete m_toolbar;
}

void OverlayToolbar::raise()
{
    if (m_toolbar)
        m_toolbar->raise();
}

QRegion OverlayToolbar::coveredRegion() const
{
    return m_toolbar ? m_toolbar->coveredRegion() : QRegion();
}

} // namespace tovek
