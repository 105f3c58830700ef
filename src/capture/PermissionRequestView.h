// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/SymbolSource.h"
#include "platform/CapturePermission.h"

#include <QWidget>

class QGridLayout;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace tovek {

/// Explains how to give the program access to the screen, or why there is none. The window that
/// holds it can be moved by the view's background.
class PermissionRequestView : public QWidget
{
public:
    /// Without advice it asks for the permission.
    explicit PermissionRequestView(const SymbolSource &symbols,
                                   const std::optional<CaptureAdvice> &advice = std::nullopt,
                                   QWidget *parent = nullptr);

    std::function<void()> onOpenSettings;
    std::function<void()> onDismiss;

    /// What all texts need, and no less than that.
    QSize sizeFor(QSize least) const;

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void addExplanation(QVBoxLayout &column);
    QGridLayout *makeSteps();
    void addButtons(QVBoxLayout &column);
    QPushButton *addButton(QHBoxLayout &row, const QString &text);
    void updateColors();

    SymbolSource m_symbols;
    CaptureAdvice m_advice;
    QLabel *m_symbol = nullptr;
    std::vector<QLabel *> m_secondary;
    QPushButton *m_prominent = nullptr;
};

} // namespace tovek
