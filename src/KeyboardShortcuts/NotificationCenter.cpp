// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/NotificationCenter.h"

#include "foundation/MainThread.h"

namespace KeyboardShortcuts {

struct NotificationCenter::Observer
{
    QString name;
    Callback callback;
    bool isActive = true;
};

NotificationCenter::Token &NotificationCenter::Token::operator=(Token &&other) noexcept
{
    if (this != &other) {
        reset();
        m_observers = std::move(other.m_observers);
        m_observer = std::move(other.m_observer);
    }
    return *this;
}

void NotificationCenter::Token::reset()
{
    if (!m_observer)
        return;
    m_observer->isActive = false;
    if (const auto observers = m_observers.lock())
        observers->remove(m_observer);
    m_observer.reset();
}

NotificationCenter::NotificationCenter() : m_observers(std::make_shared<Observers>()) { }

NotificationCenter::Token NotificationCenter::observe(const QString &name, Callback callback)
{
    Q_ASSERT(tovek::isMainThread());
    Token token;
    token.m_observers = m_observers;
    token.m_observer = std::make_shared<Observer>(Observer{name, std::move(callback)});
    m_observers->push_back(token.m_observer);
    return token;
}

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    Q_ASSERT(tovek::isMainThread());
    const Observers observers = *m_observers;
    for (const std::shared_ptr<Observer> &observer : observers) {
        if (observer->isActive && observer->name == name)
            observer->callback(userInfo);
    }
}

} // namespace KeyboardShortcuts
