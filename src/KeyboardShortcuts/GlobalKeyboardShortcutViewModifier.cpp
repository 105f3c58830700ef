// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/GlobalKeyboardShortcutViewModifier.h"

#include "KeyboardShortcuts/ShortcutDescription.h"
#include "KeyboardShortcuts/ShortcutService.h"

#include <QAbstractButton>
#include <QAction>

namespace KeyboardShortcuts {

GlobalKeyboardShortcutViewModifier::GlobalKeyboardShortcutViewModifier(QAbstractButton &view,
                                                                       Name name,
                                                                       ShortcutService &service)
    : GlobalKeyboardShortcutViewModifier(
        view, std::move(name), service,
        [&view](const QKeySequence &sequence) { view.setShortcut(sequence); })
{
}

GlobalKeyboardShortcutViewModifier::GlobalKeyboardShortcutViewModifier(QAction &view, Name name,
                                                                       ShortcutService &service)
    : GlobalKeyboardShortcutViewModifier(
        view, std::move(name), service,
        [&view](const QKeySequence &sequence) { view.setShortcut(sequence); })
{
}

GlobalKeyboardShortcutViewModifier::GlobalKeyboardShortcutViewModifier(
    QObject &view, Name name, ShortcutService &service,
    std::function<void(const QKeySequence &)> apply)
    : QObject(&view)
    , m_name(std::move(name))
    , m_service(service)
    , m_apply(std::move(apply))
{
    NotificationCenter &center = service.notifications();
    m_nameToken = center.observe(shortcutByNameDidChange, [this](const QVariantMap &userInfo) {
        if (userInfo.value(QStringLiteral("name")).value<Name>() == m_name)
            update();
    });
    m_recorderToken =
        center.observe(recorderActiveStatusDidChange, [this](const QVariantMap &userInfo) {
            m_isRecorderActive = userInfo.value(QStringLiteral("isActive")).toBool();
            update();
        });
    m_layoutToken =
        center.observe(keyboardLayoutDidChange, [this](const QVariantMap &) { update(); });
    update();
}

void GlobalKeyboardShortcutViewModifier::update()
{
    const auto shortcut = m_isRecorderActive ? std::nullopt : m_service.shortcut(m_name);
    m_apply(shortcut ? keySequence(*shortcut, m_service.layout()) : QKeySequence());
}

} // namespace KeyboardShortcuts
