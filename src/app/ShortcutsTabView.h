// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/RecorderCocoa.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace tovek {

class FormRow;
class ShortcutObserver;

/// The tab in which the program's shortcuts are recorded.
class ShortcutsTabView : public QWidget
{
    Q_OBJECT

public:
    /// The service, and what the setup points to, must outlive the view.
    ShortcutsTabView(KeyboardShortcuts::ShortcutService &service,
                     const KeyboardShortcuts::RecorderSetup &setup, QWidget *parent = nullptr);

    /// What was taken away from the desktop for a shortcut, kept until it is given back.
    struct TakenKeys
    {
        std::function<QString()> stored;
        std::function<void(const QString &taken)> store;
    };
    void setTakenKeys(const TakenKeys &taken) { m_taken = taken; }

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void addUsePrint(KeyboardShortcuts::RecorderCocoa *recorder, QWidget *row);
    void usePrint(KeyboardShortcuts::RecorderCocoa &recorder);
    void showUsePrint();
    void tellWhatPrintCosts();
    void takePrintFromDesktop();
    /// When no shortcut needs it any more.
    void givePrintBack();
    bool isPrintIdle() const;
    /// Marks the rows whose keys somebody else holds, and tells who and what can be done.
    void showRefusals();
    /// Of a combination that cannot be had, or not without a question.
    QString explanation(const KeyboardShortcuts::Shortcut &shortcut) const;
    QString usualHint() const;
    void setHint(const QString &text);
    void colorHint();

    KeyboardShortcuts::ShortcutService &m_service;
    tovek::SystemShortcuts *m_systemShortcuts;
    ShortcutObserver *m_observer;
    std::vector<FormRow *> m_rows;
    bool m_wantsPrint = false; ///< and may not have it
    TakenKeys m_taken;
    QString m_printCosts; ///< what "Use Print" takes from the desktop, in a sentence
    QPushButton *m_usePrint = nullptr; ///< offered while the program has no shortcut at all
    QLabel *m_hint;
    KeyboardShortcuts::NotificationCenter::Token m_registrationToken;
};

} // namespace tovek
