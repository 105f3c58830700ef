// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/RecorderField.h"

#include "KeyboardShortcuts/ClearButton.h"
#include "KeyboardShortcuts/Localization.h"
#include "KeyboardShortcuts/WarningIcon.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace KeyboardShortcuts {

namespace {

constexpr int buttonSide = 16;
constexpr int buttonInset = 5;
constexpr int markSide = 14;
constexpr int textPadding = 4;

} // namespace

RecorderField::RecorderField(QWidget *parent)
    : QLineEdit(parent)
    , m_cancelButton(new ClearButton(this))
{
    setReadOnly(true);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignCenter);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    setCursor(Qt::ArrowCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_cancelButton->setAccessibleName(localized(QStringLiteral("clear_shortcut")));
    m_cancelButton->setToolTip(m_cancelButton->accessibleName());
    showRecording(false);
}

QSize RecorderField::sizeHint() const
{
    int width = std::max(int(minimumWidth), widthOf(text()) + 2 * (buttonSide + buttonInset));
    for (const char *key : {"record_shortcut", "press_shortcut"})
        width = std::max(width, widthOf(localized(QLatin1String(key))));
    return {width, QLineEdit::sizeHint().height()};
}

void RecorderField::showContent(const Content &content)
{
    m_words = content.words;
    m_isRefused = content.isRefused;
    setText(content.text);
    deselect();
    m_cancelButton->setVisible(!content.text.isEmpty());
    // On both sides, so that the text stays in the middle.
    const int room = content.text.isEmpty() ? 0 : buttonSide + buttonInset;
    setTextMargins(room, 0, room, 0);
    updateGeometry();
    update();
    describe();
}

void RecorderField::showRecording(bool isRecording)
{
    m_isRecording = isRecording;
    setPlaceholderText(localized(isRecording ? QStringLiteral("press_shortcut")
                                             : QStringLiteral("record_shortcut")));
    describe();
}

void RecorderField::describe()
{
    QStringList tip;
    if (!m_words.isEmpty())
        tip << m_words;
    if (m_isRefused)
        tip << localized(QStringLiteral("keyboard_shortcut_refused"));
    setToolTip(tip.join(QLatin1Char('\n')));
    if (m_isRecording)
        tip.prepend(placeholderText());
    setAccessibleDescription(tip.join(QStringLiteral(". ")));
}

void RecorderField::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    if (m_isRefused) {
        const int inset = (buttonInset + buttonSide - markSide) / 2 + 1;
        warningIcon().paint(&painter, atEnd(markSide, width() - markSide - inset));
    }
    // Centred, the toolkit's field shows its placeholder only while it is without the keyboard.
    if (!m_isRecording || !text().isEmpty())
        return;
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(rect(), Qt::AlignCenter, placeholderText());
}

void RecorderField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    m_cancelButton->setGeometry(atEnd(buttonSide, buttonInset));
}

QRect RecorderField::atEnd(int side, int inset) const
{
    return QStyle::visualRect(layoutDirection(), rect(),
                              QRect(width() - side - inset, (height() - side) / 2, side, side));
}

int RecorderField::widthOf(const QString &text) const
{
    return fontMetrics().horizontalAdvance(text) + 2 * textPadding;
}

} // namespace KeyboardShortcuts
