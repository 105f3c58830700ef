// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QUrl>

#include <algorithm>

namespace tovek {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

/// Some servers never close what they keep in a list; the oldest are forgotten then.
constexpr size_t mostOpen = 64;

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(service, path, service, method);
}

} // namespace

DBusNotifications::DBusNotifications(QDBusConnection bus) : m_bus(std::move(bus)) { }

DBusNotifications::~DBusNotifications() = default;

void DBusNotifications::setBus(const QDBusConnection &bus)
{
    m_open.clear();
    m_token = {};
    m_capabilities.reset();
    m_watcher.reset();
    m_isListening = false;
    m_bus = bus;
}

void DBusNotifications::requestAuthorization(Completion done)
{
    QMetaObject::invokeMethod(
        this, [done = std::move(done)] { done(std::nullopt); }, Qt::QueuedConnection);
}

void DBusNotifications::setCategories(const std::vector<NotificationCategory> &categories)
{
    m_categories = categories;
}

void DBusNotifications::add(const NotificationRequest &request, Completion done)
{
    if (!m_bus.isConnected()) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done(QStringLiteral("there is no session bus")); },
            Qt::QueuedConnection);
        return;
    }
    askCapabilities([this, request, done = std::move(done)] { notify(request, done); });
}

void DBusNotifications::askCapabilities(std::function<void()> then)
{
    if (m_capabilities) {
        then();
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(call(QStringLiteral("GetCapabilities")), timeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, then = std::move(then)] {
                watcher->deleteLater();
                const QDBusPendingReply<QStringList> reply = *watcher;
                if (!reply.isError())
                    m_capabilities = reply.value();
                then();
            });
}

void DBusNotifications::notify(const NotificationRequest &request, const Completion &done)
{
    // Servers that know no click on the body (xfce4-notifyd 0.7.3) would make a button of a title.
    QStringList actions{defaultNotificationAction, QString()};
    for (const NotificationCategory &category : m_categories) {
        if (category.identifier != request.categoryIdentifier)
            continue;
        for (const NotificationAction &action : category.actions)
            actions << action.identifier << action.title;
    }
    const bool takesMarkup =
        m_capabilities && m_capabilities->contains(QStringLiteral("body-markup"));
    QVariantMap hints{
        {QStringLiteral("category"), QStringLiteral("transfer.complete")},
        {QStringLiteral("desktop-entry"), QStringLiteral("org.tovek.Tovek")},
    };
    if (request.isPassing) {
        hints.insert(QStringLiteral("transient"), true);
        hints.insert(QStringLiteral("suppress-sound"), true);
    } else {
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
    }
    if (!request.imagePath.isEmpty()) {
        hints.insert(QStringLiteral("image-path"),
                     QUrl::fromLocalFile(request.imagePath).toString(QUrl::FullyEncoded));
    }
    QDBusMessage message = call(QStringLiteral("Notify"));
    message << QStringLiteral("Tovek") << (request.isPassing ? m_passing : 0U)
            << QStringLiteral("org.tovek.Tovek") << request.title
            << (takesMarkup ? request.body.toHtmlEscaped() : request.body) << actions << hints
            << -1;
    // Before the call: an answer may follow the reply at once.
    setListening(true);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message, timeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, done, isPassing = request.isPassing, userInfo = request.userInfo] {
                watcher->deleteLater();
                const QDBusPendingReply<uint> reply = *watcher;
                if (!reply.isError())
                    remember(reply.value(), userInfo);
                if (isPassing && !reply.isError())
                    m_passing = reply.value();
                setListening(!m_open.empty());
                if (done)
                    done(reply.isError() ? std::optional(reply.error().message()) : std::nullopt);
            });
}

void DBusNotifications::remember(uint id, const UserInfo &userInfo)
{
    m_open[id] = userInfo;
    if (m_open.size() > mostOpen)
        m_open.erase(m_open.begin());
}

void DBusNotifications::forget(uint id)
{
    m_open.erase(id);
    setListening(!m_open.empty());
}

void DBusNotifications::actionInvoked(uint id, const QString &action)
{
    // The signal goes to everybody: most numbers are other programs'.
    const auto found = m_open.find(id);
    if (found != m_open.end() && onResponse)
        onResponse({action, found->second, m_token.first == id ? m_token.second : QString()});
    m_token = {};
}

void DBusNotifications::activationToken(uint id, const QString &token)
{
    m_token = {id, token};
}

void DBusNotifications::notificationClosed(uint id, uint)
{
    if (m_open.contains(id))
        forget(id);
}

void DBusNotifications::setListening(bool isListening)
{
    if (m_isListening == isListening || !m_bus.isConnected())
        return;
    m_isListening = isListening;
    const auto change = [this, isListening](const char *signal, const char *slot) {
        const QString name = QString::fromLatin1(signal);
        if (isListening)
            m_bus.connect(service, path, service, name, this, slot);
        else
            m_bus.disconnect(service, path, service, name, this, slot);
    };
    change("ActivationToken", SLOT(activationToken(uint, QString)));
    change("ActionInvoked", SLOT(actionInvoked(uint, QString)));
    change("NotificationClosed", SLOT(notificationClosed(uint, uint)));
    if (!isListening) {
        // Nobody tells any more when the server changes.
        m_watcher.reset();
        m_capabilities.reset();
        return;
    }
    // Another server knows nothing of our notifications, and may take markup where this one did
    // not.
    m_watcher = std::make_unique<QDBusServiceWatcher>(service, m_bus,
                                                      QDBusServiceWatcher::WatchForUnregistration);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        m_capabilities.reset();
        m_open.clear();
        QMetaObject::invokeMethod(
            this, [this] { setListening(!m_open.empty()); }, Qt::QueuedConnection);
    });
}

} // namespace tovek
