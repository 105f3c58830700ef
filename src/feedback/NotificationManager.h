// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Notifications.h"

#include <QUrl>

namespace tovek {

class FileRevealer;

/// Tells of saved screenshots, and shows the file that the user asks for; and stands in for what a
/// desktop does not show. The program's only user of notifications. Main thread only.
class NotificationManager
{
public:
    static inline const QString categoryIdentifier = QStringLiteral("SAVE_COMPLETE");
    static inline const QString showActionIdentifier = QStringLiteral("SHOW_IN_FINDER");
    static inline const QString noItemCategory = QStringLiteral("NO_STATUS_ITEM");
    static inline const QString captureAction = QStringLiteral("CAPTURE");
    static inline const QString preferencesAction = QStringLiteral("PREFERENCES");

    NotificationManager(Notifications &center, FileRevealer &revealer);
    ~NotificationManager();

    /// Asked once at launch.
    void requestAuthorization();
    void showSavedNotification(const QString &message, const QUrl &fileUrl);
    /// What the status item would offer, on a desktop that shows none.
    /// `shown` is not called where the notification fails.
    void showInPlaceOfStatusItem(std::function<void()> shown);
    /// A message in place of a toast, on a desktop that shows none.
    void showMessage(const QString &message);
    std::function<void()> onCapture, onPreferences;
    /// Of the last saved file.
    const std::optional<QUrl> &pendingFileUrl() const { return m_pendingFileUrl; }

private:
    void show(NotificationRequest request, std::function<void()> shown = nullptr);
    void didReceive(const NotificationResponse &response);

    Notifications &m_center;
    FileRevealer &m_revealer;
    std::optional<QUrl> m_pendingFileUrl;
};

} // namespace tovek
