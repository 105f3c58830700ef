// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FileRevealer.h"
#include "platform/Notifications.h"

#include <QUrl>

namespace tovek {

/// Notifications that nobody sees; the test plays the user.
class FakeNotifications : public Notifications
{
public:
    void requestAuthorization(Completion done) override { done(authorizationError); }
    void setCategories(const std::vector<NotificationCategory> &newCategories) override
    {
        categories = newCategories;
    }
    void add(const NotificationRequest &request, Completion done) override
    {
        requests.push_back(request);
        done(addError);
    }
    /// The user's choice on the notification of this number.
    void choose(size_t index, const QString &action, const QString &activationToken = {})
    {
        onResponse({action, requests.at(index).userInfo, activationToken});
    }

    std::optional<QString> authorizationError;
    std::optional<QString> addError;
    std::vector<NotificationCategory> categories;
    std::vector<NotificationRequest> requests;
};

class FakeFileRevealer : public FileRevealer
{
public:
    void activateFileViewer(const QUrl &file, const QString &activationToken) override
    {
        revealed.push_back(file);
        token = activationToken;
    }

    std::vector<QUrl> revealed;
    QString token; ///< the last one
};

} // namespace tovek
