// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayTextBox.h"

#include "foundation/SystemFont.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <cmath>

namespace tovek {

namespace {

constexpr int boxWidth = 200;
constexpr int boxHeight = 100;
constexpr int caretWidth = 2;

} // namespace

OverlayTextBox::OverlayTextBox(const AnnotationEditor::TextBox &content, QWidget *parent)
    : QPlainTextEdit(parent)
{
    setAccessibleName(tr("Text of the annotation"));
    setFrameShape(QFrame::NoFrame);
    // A menu would open below the overlay, which stays on top, and take every key unseen.
    setContextMenuPolicy(Qt::NoContextMenu);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFont(systemFont(content.fontSize, QFont::Medium));
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::IBeamCursor);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, content.color);
    setPalette(colors);
    // The toolkit's caret inverts what is below, which nobody sees over a middle grey.
    setCursorWidth(0);
    setPlainText(content.text);
    selectAll();
    resize(boxWidth, boxHeight);
    connect(document(), &QTextDocument::contentsChanged, this, &OverlayTextBox::grow);
    grow();
}

void OverlayTextBox::keyPressEvent(QKeyEvent *event)
{
    const bool isCommand = event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    const bool isShifted = event->modifiers() & Qt::ShiftModifier;
    if (event->key() == Qt::Key_Escape || (isCommand && event->key() == Qt::Key_S))
        event->ignore();
    // As over the annotations, whatever the desktop's own keys are. Where there is nothing to undo
    // they do not go on to the view, which would end the typing and undo something else.
    else if (isCommand && (event->key() == Qt::Key_Y || (isShifted && event->key() == Qt::Key_Z)))
        redo();
    else if (isCommand && event->key() == Qt::Key_Z)
        undo();
    else
        QPlainTextEdit::keyPressEvent(event);
}

void OverlayTextBox::paintEvent(QPaintEvent *event)
{
    QPlainTextEdit::paintEvent(event);
    const bool isBlinkedOff = getPaintContext().cursorPosition < 0;
    if (isBlinkedOff || !hasFocus())
        return;
    QPainter painter(viewport());
    const QRect caret = cursorRect();
    painter.fillRect(QRect(caret.topLeft(), QSize(caretWidth, caret.height())),
                     palette().color(QPalette::Text));
}

void OverlayTextBox::grow()
{
    // A plain text document counts its height in lines.
    const double lines = document()->size().height();
    const int wanted = int(std::ceil(lines * QFontMetricsF(font()).lineSpacing()));
    const int high = std::max(boxHeight, wanted);
    if (high == height())
        return;
    resize(width(), high);
    if (onGeometryChanged)
        onGeometryChanged();
}

} // namespace tovek
