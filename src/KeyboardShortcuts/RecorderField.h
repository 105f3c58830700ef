// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QLineEdit>

class QAbstractButton;

namespace KeyboardShortcuts {

/// How a recorder looks: a shortcut in the middle of a field that nobody can write in, the button
/// that clears it at the end, and at the beginning a mark when the shortcut cannot act.
class RecorderField : public QLineEdit
{
    Q_OBJECT

public:
    /// Points; the width of the field where no text needs more.
    static constexpr double minimumWidth = 130;

    explicit RecorderField(QWidget *parent);

    /// True while the shortcut that it shows cannot act; it says why in its tooltip.
    bool isRefused() const { return m_isRefused; }
    QAbstractButton *cancelButton() const { return m_cancelButton; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    struct Content
    {
        QString text; ///< of the shortcut; empty: there is none
        QString words; ///< the same keys by their names, for whom the symbols say little
        bool isRefused = false;
    };
    void showContent(const Content &content);
    void showRecording(bool isRecording);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    // The text cannot be selected.
    void mousePressEvent(QMouseEvent *) override { }
    void mouseMoveEvent(QMouseEvent *) override { }
    void mouseDoubleClickEvent(QMouseEvent *) override { }

private:
    void describe();
    /// A square, so far from the end of the field that is the right one in English.
    QRect atEnd(int side, int inset) const;
    int widthOf(const QString &text) const;

    QAbstractButton *m_cancelButton;
    QString m_words;
    bool m_isRefused = false;
    bool m_isRecording = false;
};

} // namespace KeyboardShortcuts
