// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <list>
#include <memory>

namespace KeyboardShortcuts {

/// The user info holds the Name under "name".
inline const QString shortcutByNameDidChange =
    QStringLiteral("KeyboardShortcuts_shortcutByNameDidChange");
/// A recorder started or stopped; the user info holds a boolean under "isActive".
inline const QString recorderActiveStatusDidChange =
    QStringLiteral("KeyboardShortcuts_recorderActiveStatusDidChange");
/// The keys type other characters now, so descriptions and key equivalents may read differently.
inline const QString keyboardLayoutDidChange =
    QStringLiteral("KeyboardShortcuts_keyboardLayoutDidChange");

/// The system gave a shortcut that it had refused, or kept one that it had given.
inline const QString registrationDidChange =
    QStringLiteral("KeyboardShortcuts_registrationDidChange");

/// Tells every observer of a name what is posted under it, in the order of their subscription.
/// Main thread only.
class NotificationCenter
{
    struct Observer;
    using Observers = std::list<std::shared_ptr<Observer>>;

public:
    using Callback = std::function<void(const QVariantMap &userInfo)>;

    /// Observes for as long as it lives; may outlive the centre.
    class [[nodiscard]] Token
    {
    public:
        Token() = default;
        ~Token() { reset(); }
        Token(Token &&) noexcept = default;
        Token &operator=(Token &&other) noexcept;
        /// Ends the observation.
        void reset();

    private:
        friend class NotificationCenter;
        std::weak_ptr<Observers> m_observers;
        std::shared_ptr<Observer> m_observer;
    };

    NotificationCenter();
    Token observe(const QString &name, Callback callback);
    /// An observer that ends during the call, by another one's doing, is not called any more; one
    /// that starts during the call is not called yet.
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    std::shared_ptr<Observers> m_observers; ///< shared with the tokens, weakly
};

} // namespace KeyboardShortcuts
