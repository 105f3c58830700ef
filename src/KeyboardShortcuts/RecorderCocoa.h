// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/NotificationCenter.h"
#include "KeyboardShortcuts/RecorderField.h"
#include "KeyboardShortcuts/RecorderRules.h"

class QAction;

namespace tovek {
class SystemShortcuts;
}

namespace KeyboardShortcuts {

class AlertSheet;
class LocalEventMonitor;
class ShortcutService;

/// What a recorder needs beside the service. All of it may stay empty.
struct RecorderSetup
{
    std::function<QList<QAction *>()> mainMenu; ///< whose items no shortcut may repeat
    tovek::SystemShortcuts *systemShortcuts = nullptr; ///< must outlive the recorder
    std::function<QString(const Name &)> titleOf; ///< of the fields; names stand for themselves
    /// Tells who holds a combination and what can be done; may give nothing.
    std::function<QString(const Shortcut &)> holderOf;
    /// Brings all keys to the recorder, those that other programs hold too, or lets them go.
    std::function<void(QWidget &recorder, bool isHeld)> holdKeyboard;
    std::function<void()> beep; ///< the desktop's own, where there is none given
    int systemMajor = 0;
    int systemMinor = 0;
    std::optional<bool> isSandboxed; ///< found out where it is not given
};

/// The field in which the user records, replaces or clears the shortcut of one name. While it has
/// the keyboard it takes the next combination; meanwhile no shortcut acts.
class RecorderCocoa : public RecorderField
{
    Q_OBJECT

public:
    /// The service must outlive the recorder.
    RecorderCocoa(Name name, ShortcutService &service, RecorderSetup setup = {},
                  QWidget *parent = nullptr);
    ~RecorderCocoa() override;

    const Name &shortcutName() const { return m_shortcutName; }
    void setShortcutName(const Name &name);
    bool isRecording() const { return m_eventMonitor != nullptr; }
    /// As if the keys had been pressed while recording.
    void record(const Shortcut &shortcut);

    /// After a new shortcut was stored.
    std::function<void(const std::optional<Shortcut> &)> onChange;

protected:
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void observe();
    void refreshText();
    void showShortcut(const std::optional<Shortcut> &shortcut);
    void clearShortcut();
    void startRecording();
    void endRecording();
    void resumeRecording();
    void release();
    void postActivity(bool isActive);
    RecorderEnvironment environment() const;
    bool handle(QWidget &widget, QEvent &event);
    bool isOwnKey(const QWidget &widget, const QEvent &event) const;
    /// True when the event goes no further.
    bool carryOut(const RecorderDecision &decision);
    void store(const Shortcut &shortcut);
    void refuse(const QString &message);
    void askAboutField(const Shortcut &shortcut, const QString &title);
    void askAboutSystem(const Shortcut &shortcut);
    /// Stores it, here alone, when the user insists.
    void ask(const Shortcut &shortcut, const QString &message, const QString &information,
             const QString &insist);
    AlertSheet *showAlert(const QString &message, const QString &information = {},
                          const QStringList &moreButtons = {});

    Name m_shortcutName;
    ShortcutService &m_service;
    RecorderSetup m_setup;
    std::unique_ptr<LocalEventMonitor> m_eventMonitor; ///< present only while recording
    NotificationCenter::Token m_shortcutsNameChangeObserver;
    NotificationCenter::Token m_layoutChangeObserver;
    NotificationCenter::Token m_registrationObserver;
    bool m_awaitsWindow = false; ///< records again when the window is active again
};

} // namespace KeyboardShortcuts
