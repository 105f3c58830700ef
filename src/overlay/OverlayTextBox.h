// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"

#include <QPlainTextEdit>

namespace tovek {

/// The box in which the text of an annotation is typed: plain text on the picture itself, without
/// frame or background, in the font, colour and place of the annotation that it becomes. As wide
/// as it is made, it grows downwards. Escape and the keys that it has no use for are its parent's.
class OverlayTextBox : public QPlainTextEdit
{
    Q_OBJECT

public:
    OverlayTextBox(const AnnotationEditor::TextBox &content, QWidget *parent);

    std::function<void()> onGeometryChanged;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void grow();
};

} // namespace tovek
