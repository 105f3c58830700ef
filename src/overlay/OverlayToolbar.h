// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/SelectionToolbar.h"

#include <QPointer>

namespace tovek {

/// The toolbar of an overlay view, which comes and goes with the selections: puts it beside one,
/// and does to the editor what its buttons ask for. Points are the view's, with y up.
class OverlayToolbar
{
public:
    OverlayToolbar(QWidget &view, AnnotationEditor &editor, BackdropProvider backdrop);

    /// A new toolbar instead of the one before; not shown yet, so that the view can draw what will
    /// lie under it.
    void build(const Rect &selection, const ViewSpace &space);
    /// Without a toolbar, nothing.
    void remove();

    SelectionToolbar *widget() const { return m_toolbar; }
    /// Above the selection; the size label makes way.
    bool isAtTop() const { return m_isToolbarAtTop; }
    /// Above all other children of the view.
    void raise();
    /// What it covers of the view, in widget coordinates.
    QRegion coveredRegion() const;

    /// A button has changed the annotations or the tool.
    std::function<void(const AnnotationEditor::Effect &)> onEdited;
    std::function<void()> onCopy, onClose, onCoverChanged;

private:
    void wireTools();
    void wireColors();

    QWidget &m_view;
    AnnotationEditor &m_editor;
    BackdropProvider m_backdrop;
    QPointer<SelectionToolbar> m_toolbar; ///< the view's child
    bool m_isToolbarAtTop = false;
};

} // namespace tovek
