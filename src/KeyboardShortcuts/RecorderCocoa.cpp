// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/RecorderCocoa.h"

#include "KeyboardShortcuts/AlertSheet.h"
#include "KeyboardShortcuts/InputEventFromQt.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/Localization.h"
#include "KeyboardShortcuts/MenuItems.h"
#include "KeyboardShortcuts/ShortcutDescription.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "platform/SystemShortcuts.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QPointer>

namespace KeyboardShortcuts {

using Action = RecorderDecision::Action;

namespace {

constexpr int forceButton = 1;

} // namespace

RecorderCocoa::RecorderCocoa(Name name, ShortcutService &service, RecorderSetup setup,
                             QWidget *parent)
    : RecorderField(parent)
    , m_shortcutName(std::move(name))
    , m_service(service)
    , m_setup(std::move(setup))
{
    connect(cancelButton(), &QAbstractButton::clicked, this, &RecorderCocoa::clearShortcut);
    observe();
    refreshText();
}

void RecorderCocoa::observe()
{
    NotificationCenter &center = m_service.notifications();
    m_shortcutsNameChangeObserver =
        center.observe(shortcutByNameDidChange, [this](const QVariantMap &userInfo) {
            if (userInfo.value(QStringLiteral("name")).value<Name>() == m_shortcutName)
                refreshText();
        });
    m_layoutChangeObserver =
        center.observe(keyboardLayoutDidChange, [this](const QVariantMap &) { refreshText(); });
    m_registrationObserver =
        center.observe(registrationDidChange, [this](const QVariantMap &) { refreshText(); });
}

RecorderCocoa::~RecorderCocoa()
{
    endRecording();
}

void RecorderCocoa::setShortcutName(const Name &name)
{
    m_shortcutName = name;
    refreshText();
}

void RecorderCocoa::record(const Shortcut &shortcut)
{
    if (m_setup.systemShortcuts)
        m_setup.systemShortcuts->refresh();
    carryOut(decide(shortcut, environment()));
}

bool RecorderCocoa::event(QEvent *event)
{
    // Another window has the keyboard now; this one shall not record by itself when it returns.
    if (event->type() == QEvent::WindowDeactivate && isRecording())
        release();
    if (event->type() == QEvent::ParentChange)
        endRecording();
    return RecorderField::event(event);
}

void RecorderCocoa::focusInEvent(QFocusEvent *event)
{
    RecorderField::focusInEvent(event);
    deselect();
    // The user has not asked to record when a window merely becomes active or a menu closes.
    if (event->reason() == Qt::ActiveWindowFocusReason && !m_awaitsWindow)
        clearFocus();
    else if (event->reason() != Qt::PopupFocusReason)
        startRecording();
}

void RecorderCocoa::focusOutEvent(QFocusEvent *event)
{
    RecorderField::focusOutEvent(event);
    endRecording();
}

void RecorderCocoa::hideEvent(QHideEvent *event)
{
    RecorderField::hideEvent(event);
    if (isRecording())
        release();
}

void RecorderCocoa::refreshText()
{
    showShortcut(m_service.shortcut(m_shortcutName));
}

void RecorderCocoa::showShortcut(const std::optional<Shortcut> &shortcut)
{
    if (shortcut)
        showContent({m_service.description(*shortcut),
                     keySequence(*shortcut, m_service.layout()).toString(QKeySequence::NativeText),
                     m_service.isRefused(*shortcut)});
    else
        showContent({});
}

void RecorderCocoa::clearShortcut()
{
    showShortcut(std::nullopt);
    m_service.setShortcut(m_shortcutName, std::nullopt);
}

void RecorderCocoa::startRecording()
{
    m_awaitsWindow = false;
    if (isRecording())
        return;
    showRecording(true);
    m_service.setPaused(true);
    if (m_setup.systemShortcuts)
        m_setup.systemShortcuts->refresh();
    postActivity(true);
    m_eventMonitor = std::make_unique<LocalEventMonitor>(
        QList<QEvent::Type>{QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::MouseButtonRelease},
        [this](QWidget &widget, QEvent &event) { return handle(widget, event); });
    m_eventMonitor->start();
    if (m_setup.holdKeyboard)
        m_setup.holdKeyboard(*this, true);
}

void RecorderCocoa::endRecording()
{
    if (!isRecording())
        return;
    if (m_setup.holdKeyboard)
        m_setup.holdKeyboard(*this, false);
    // It may be the one that called us.
    m_eventMonitor->stop();
    m_eventMonitor.release()->deleteLater();
    showRecording(false);
    m_service.setPaused(false);
    postActivity(false);
}

void RecorderCocoa::release()
{
    m_awaitsWindow = false;
    endRecording();
    clearFocus();
}

void RecorderCocoa::resumeRecording()
{
    // The window gets the keyboard back from its sheet only when the window manager gives it.
    m_awaitsWindow = true;
    setFocus(Qt::OtherFocusReason);
}

void RecorderCocoa::postActivity(bool isActive)
{
    m_service.notifications().post(recorderActiveStatusDidChange,
                                   {{QStringLiteral("isActive"), isActive}});
}

RecorderEnvironment RecorderCocoa::environment() const
{
    RecorderEnvironment environment;
    environment.systemMajor = m_setup.systemMajor;
    environment.systemMinor = m_setup.systemMinor;
    environment.isSandboxed = m_setup.isSandboxed.value_or(KeyboardShortcuts::isSandboxed());
    environment.menuItemTitle = [this](const Shortcut &shortcut) -> std::optional<QString> {
        if (!m_setup.mainMenu)
            return std::nullopt;
        const QAction *item = menuItem(shortcut, m_setup.mainMenu(), m_service.layout());
        return item ? std::optional(menuTitle(*item)) : std::nullopt;
    };
    environment.otherField = [this](const Shortcut &shortcut) -> std::optional<QString> {
        const auto other = m_service.otherName(shortcut, m_shortcutName);
        if (!other)
            return std::nullopt;
        return m_setup.titleOf ? m_setup.titleOf(*other) : other->rawValue;
    };
    environment.isSystemShortcut = [this](const Shortcut &shortcut) {
        return m_service.isSystemShortcut(shortcut)
            || (m_setup.systemShortcuts
                && m_setup.systemShortcuts->contains(
                    {quint32(shortcut.carbonKeyCode), quint32(shortcut.carbonModifiers)}));
    };
    return environment;
}

bool RecorderCocoa::isOwnKey(const QWidget &widget, const QEvent &event) const
{
    return &widget == this && event.type() != QEvent::MouseButtonRelease;
}

bool RecorderCocoa::handle(QWidget &widget, QEvent &event)
{
    if (!isRecording())
        return false;
    if (isOwnKey(widget, event)) {
        // No item of a menu and no other shortcut of the window gets the key.
        if (event.type() == QEvent::ShortcutOverride) {
            event.accept();
            return true;
        }
        const InputEvent input =
            inputEventFrom(static_cast<QKeyEvent &>(event), m_service.layout());
        return carryOut(decide(RecorderEvent{input, {}}, rect(), environment()));
    }
    // A press on the clear button is followed to its release, as by any button.
    if (event.type() != QEvent::MouseButtonRelease || &widget == cancelButton())
        return false;
    const auto &mouse = static_cast<QMouseEvent &>(event);
    RecorderEvent released{{}, mapFromGlobal(mouse.globalPosition())};
    if (mouse.button() == Qt::LeftButton)
        released.input.type = InputEvent::Type::leftMouseUp;
    else if (mouse.button() == Qt::RightButton)
        released.input.type = InputEvent::Type::rightMouseUp;
    const bool isSwallowed = carryOut(decide(released, rect(), environment()));
    if (!isRecording())
        clearFocus();
    return isSwallowed;
}

bool RecorderCocoa::carryOut(const RecorderDecision &decision)
{
    switch (decision.action) {
    case Action::passOn:
        return false;
    case Action::swallow:
        break;
    case Action::release:
        release();
        break;
    case Action::releaseAndPassOn:
        // The keyboard moves on from here with a Tab, so the field keeps it until then.
        endRecording();
        return false;
    case Action::clear:
        cancelButton()->click();
        break;
    case Action::beep:
        m_setup.beep ? m_setup.beep() : QApplication::beep();
        break;
    case Action::refuseForMenuItem:
        refuse(
            localized(QStringLiteral("keyboard_shortcut_used_by_menu_item")).arg(decision.title));
        break;
    case Action::refuseAsDisallowed:
        refuse(localized(QStringLiteral("keyboard_shortcut_disallowed")));
        break;
    case Action::askAboutField:
        askAboutField(*decision.shortcut, decision.title);
        break;
    case Action::askAboutSystem:
        askAboutSystem(*decision.shortcut);
        break;
    case Action::store:
        store(*decision.shortcut);
        break;
    }
    return true;
}

void RecorderCocoa::store(const Shortcut &shortcut)
{
    showShortcut(shortcut);
    m_service.setShortcut(m_shortcutName, shortcut);
    if (onChange)
        onChange(shortcut);
    release();
}

void RecorderCocoa::refuse(const QString &message)
{
    release();
    connect(showAlert(message), &QDialog::finished, this, &RecorderCocoa::resumeRecording);
}

void RecorderCocoa::askAboutField(const Shortcut &shortcut, const QString &title)
{
    ask(shortcut, localized(QStringLiteral("keyboard_shortcut_used_by_field")).arg(title),
        localized(QStringLiteral("keyboard_shortcut_can_be_moved")),
        localized(QStringLiteral("move_shortcut")));
}

void RecorderCocoa::askAboutSystem(const Shortcut &shortcut)
{
    const QString holder = m_setup.holderOf ? m_setup.holderOf(shortcut) : QString();
    ask(shortcut, localized(QStringLiteral("keyboard_shortcut_used_by_system")),
        holder.isEmpty() ? localized(QStringLiteral("keyboard_shortcuts_can_be_changed")) : holder,
        localized(QStringLiteral("force_use_shortcut")));
}

void RecorderCocoa::ask(const Shortcut &shortcut, const QString &message,
                        const QString &information, const QString &insist)
{
    release();
    const AlertSheet *alert = showAlert(message, information, {insist});
    connect(alert, &QDialog::finished, this, [this, shortcut](int button) {
        resumeRecording();
        if (button != forceButton)
            return;
        while (const auto other = m_service.otherName(shortcut, m_shortcutName))
            m_service.setShortcut(*other, std::nullopt);
        store(shortcut);
    });
}

AlertSheet *RecorderCocoa::showAlert(const QString &message, const QString &information,
                                     const QStringList &moreButtons)
{
    const QStringList buttons = QStringList{localized(QStringLiteral("ok"))} + moreButtons;
    auto *alert =
        new AlertSheet({message, information, buttons, AlertSheet::Style::warning}, *this);
    alert->open();
    return alert;
}

} // namespace KeyboardShortcuts
