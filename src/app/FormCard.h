// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace tovek {

/// One row of a form: a symbol, a label, and what is set on the right. A note can stand below the
/// label.
class FormRow : public QWidget
{
public:
    FormRow(const QString &symbol, const QString &label, QWidget *parent);

    /// Adds a control on the right, after those before it. The first one takes the row's label as
    /// its accessible name and the note as its description; if it can be checked, a click anywhere
    /// on the row is one on it.
    void addControl(QWidget *control);
    /// Empty: no note.
    void setNote(const QString &note);
    /// More where its texts need it.
    void setLeastHeight(int height) { m_leastHeight = height; }

    QSize sizeHint() const override { return QWidget::sizeHint().expandedTo({0, m_leastHeight}); }
    QSize minimumSizeHint() const override
    {
        return QWidget::minimumSizeHint().expandedTo({0, m_leastHeight});
    }

protected:
    void changeEvent(QEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void colorNote();

    QLabel *m_label;
    QLabel *m_note;
    QWidget *m_control = nullptr;
    int m_leastHeight = 0;
};

/// Rows on a rounded ground, with lines between them. A row is as high as its texts need, and at
/// least of the given height.
class FormCard : public QWidget
{
public:
    FormCard(int rowHeight, QWidget *parent);
    FormRow *addRow(const QString &symbol, const QString &label);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_rowHeight;
    QVBoxLayout *m_rows;
};

} // namespace tovek
