// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/NotificationManager.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "platform/FileRevealer.h"

#include <QUuid>

namespace tovek {

namespace {

const QString fileUrlKey = QStringLiteral("fileURL");

} // namespace

NotificationManager::NotificationManager(Notifications &center, FileRevealer &revealer)
    : m_center(center)
    , m_revealer(revealer)
{
    m_center.onResponse = [this](const NotificationResponse &response) { didReceive(response); };
    m_center.setCategories({{categoryIdentifier, {{showActionIdentifier, QStringLiteral("Show")}}},
                            {noItemCategory,
                             {{captureAction, QStringLiteral("Capture")},
                              {preferencesAction, QStringLiteral("Preferences")}}}});
}

NotificationManager::~NotificationManager()
{
    m_center.onResponse = nullptr;
}

void NotificationManager::requestAuthorization()
{
    Q_ASSERT(isMainThread());
    m_center.requestAuthorization([](const std::optional<QString> &error) {
        if (error)
            logLine(QStringLiteral("Notification permission error: ") + *error);
    });
}

void NotificationManager::showSavedNotification(const QString &message, const QUrl &fileUrl)
{
    Q_ASSERT(isMainThread());
    m_pendingFileUrl = fileUrl;
    NotificationRequest request;
    request.title = QStringLiteral("Screenshot Saved");
    request.body = message;
    request.categoryIdentifier = categoryIdentifier;
    request.imagePath = fileUrl.toLocalFile();
    request.userInfo = {{fileUrlKey, fileUrl.toString(QUrl::FullyEncoded)}};
    show(std::move(request));
}

void NotificationManager::showInPlaceOfStatusItem(std::function<void()> shown)
{
    NotificationRequest request;
    request.title = QStringLiteral("Tovek Is Running");
    request.body = QStringLiteral("This desktop has no place for its icon. The shortcuts work "
                                  "without it, and launching Tovek again opens its settings.");
    request.categoryIdentifier = noItemCategory;
    show(std::move(request), std::move(shown));
}

void NotificationManager::showMessage(const QString &message)
{
    NotificationRequest request;
    request.title = message;
    request.isPassing = true;
    show(std::move(request));
}

void NotificationManager::show(NotificationRequest request, std::function<void()> shown)
{
    Q_ASSERT(isMainThread());
    request.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_center.add(request, [shown = std::move(shown)](const std::optional<QString> &error) {
        if (error)
            logLine(QStringLiteral("Failed to show notification: ") + *error);
        else if (shown)
            shown();
    });
}

void NotificationManager::didReceive(const NotificationResponse &response)
{
    if (response.actionIdentifier == captureAction && onCapture)
        onCapture();
    else if (response.actionIdentifier == preferencesAction && onPreferences)
        onPreferences();
    if (response.actionIdentifier != showActionIdentifier
        && response.actionIdentifier != defaultNotificationAction)
        return;
    // The notification's own file, not the last one saved.
    const QUrl file(response.userInfo.value(fileUrlKey), QUrl::StrictMode);
    if (file.isValid())
        m_revealer.activateFileViewer(file, response.activationToken);
}

} // namespace tovek
