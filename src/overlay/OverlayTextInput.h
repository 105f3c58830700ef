// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/OverlayTextBox.h"

#include <QPointer>

namespace tovek {

/// The text box of an overlay view, which is there while a text is typed. Tells the editor every
/// change of what is typed, and has the view's keyboard until it is closed.
class OverlayTextInput
{
public:
    OverlayTextInput(QWidget &view, AnnotationEditor &editor) : m_view(view), m_editor(editor) { }

    /// An open box is the caller's to close first.
    void open(const AnnotationEditor::TextBox &content, const ViewSpace &space);
    /// Gives the keyboard back to the view; nothing when no box is open.
    void close();

    OverlayTextBox *box() const { return m_textInputView; }
    bool isOpen() const { return !m_textInputView.isNull(); }
    void raise();
    /// What lies under the box has changed.
    void backdropChanged();
    /// What it covers of the view, in widget coordinates.
    QRegion coveredRegion() const;

    std::function<void()> onCoverChanged;

private:
    QWidget &m_view;
    AnnotationEditor &m_editor;
    QPointer<OverlayTextBox> m_textInputView; ///< the view's child
};

} // namespace tovek
