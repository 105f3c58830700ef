// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayTextInput.h"

namespace tovek {

void OverlayTextInput::open(const AnnotationEditor::TextBox &content, const ViewSpace &space)
{
    m_textInputView = new OverlayTextBox(content, &m_view);
    m_textInputView->move(space.widgetFromPoint(content.position).toPoint());
    m_textInputView->onGeometryChanged = [this] { onCoverChanged(); };
    QObject::connect(m_textInputView, &QPlainTextEdit::textChanged, &m_view,
                     [this] { m_editor.setTypedText(m_textInputView->toPlainText()); });
    onCoverChanged();
    m_textInputView->show();
    // A click on the toolbar would take the keyboard to the view.
    m_view.setFocusProxy(m_textInputView);
    m_view.setFocus();
}

void OverlayTextInput::close()
{
    if (!m_textInputView)
        return;
    // Deleted later: what closes it may be a key event of its own.
    m_view.setFocusProxy(nullptr);
    m_textInputView->hide();
    m_textInputView->deleteLater();
    m_textInputView = nullptr;
    onCoverChanged();
    m_view.setFocus();
}

void OverlayTextInput::raise()
{
    if (m_textInputView)
        m_textInputView->raise();
}

void OverlayTextInput::backdropChanged()
{
    if (m_textInputView)
        m_textInputView->viewport()->update();
}

QRegion OverlayTextInput::coveredRegion() const
{
    return m_textInputView ? QRegion(m_textInputView->geometry()) : QRegion();
}

} // namespace tovek
