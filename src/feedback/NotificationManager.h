// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Notifications.h"

#include <QUrl>

namespace tovek {

class FileRevealer;

/// Tells of saved screenshots, and shows the file that the user asks for. The program's only user
/// of notifications. Main thread only.
class NotificationManager
{
public:
    static inline const QString categoryIdentifier = QStringLiteral("SAVE_COMPLETE");
    static inline const QString showActionIdentifier = QStringLiteral("SHOW_IN_FINDER");

    NotificationManager(Notifications &center, FileRevealer &revealer);
    ~NotificationManager();

    /// Asked once at launch.
    void requestAuthorization();
    void showSavedNotification(const QString &message, const QUrl &fileUrl);
    /// Of the last saved file.
    const std::optional<QUrl> &pendingFileUrl() const { return m_pendingFileUrl; }

private:
    void didReceive(const NotificationResponse &response);

    Notifications &m_center;
    FileRevealer &m_revealer;
    std::optional<QUrl> m_pendingFileUrl;
};

} // namespace tovek
