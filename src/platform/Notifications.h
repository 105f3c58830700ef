// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QMap>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tovek {

struct NotificationAction
{
    QString identifier;
    QString title;

    bool operator==(const NotificationAction &) const = default;
};

/// Notifications of a category offer its actions.
struct NotificationCategory
{
    QString identifier;
    std::vector<NotificationAction> actions;

    bool operator==(const NotificationCategory &) const = default;
};

struct NotificationRequest
{
    QString identifier; ///< unique
    QString title;
    QString body; ///< plain text
    QString categoryIdentifier;
    QString imagePath; ///< of a picture to show; may be empty
    QMap<QString, QString> userInfo = {}; ///< comes back with the response
    /// A word on what has just happened: it makes no sound, takes the place of the one before, and
    /// leaves nothing behind.
    bool isPassing = false;

    bool operator==(const NotificationRequest &) const = default;
};

struct NotificationResponse
{
    QString actionIdentifier;
    QMap<QString, QString> userInfo;
    QString activationToken = {}; ///< lets another program come to the front for it; often empty
};

/// The action identifier of a click on the notification itself.
inline const QString defaultNotificationAction = QStringLiteral("default");

/// The desktop's notifications. Main thread only; nothing here waits.
class Notifications
{
public:
    using Completion = std::function<void(const std::optional<QString> &error)>;

    virtual ~Notifications() = default;
    /// Asks for leave to show notifications with sound. An error is a failure of the question; a
    /// refusal is none.
    virtual void requestAuthorization(Completion done) = 0;
    virtual void setCategories(const std::vector<NotificationCategory> &categories) = 0;
    /// Shows a notification at once, with the default sound, also while the program is active.
    virtual void add(const NotificationRequest &request, Completion done) = 0;

    /// The user chose an action of a notification of this process, or clicked it.
    std::function<void(const NotificationResponse &)> onResponse;
};

} // namespace tovek
