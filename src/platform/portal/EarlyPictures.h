// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/PortalPicture.h"

#include <QFuture>
#include <QObject>
#include <QStringList>

#include <map>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace tovek {

/// Reads pictures as soon as the desktop has written them, in case it is going to name them: GNOME
/// keeps its answer back for as long as the screen flashes, half a second. Removes nothing, and
/// shows nothing that was not named. Main thread only.
class EarlyPictures : public QObject
{
public:
    /// Those in which the desktop may leave pictures.
    explicit EarlyPictures(QStringList folders);
    ~EarlyPictures() override;

    /// Where GNOME leaves them: in the folder for pictures, or at home where there is none.
    static QStringList standardFolders();

    /// Of files that are written from the moment on that the future has finished, which it does not
    /// while the file system of a folder does not answer.
    QFuture<void> start();
    void stop();
    /// What was read of the named file, or is being read; absent when it was not seen.
    std::optional<QFuture<PortalPicture>> take(const QString &uri);

private:
    struct Watch;
    void begin(std::shared_ptr<Watch> watch);
    void hear();

    const QStringList m_folders;
    QFuture<std::shared_ptr<Watch>> m_beginning;
    bool m_isWanted = false;
    std::shared_ptr<Watch> m_watch; ///< null while nothing is heard
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::map<QString, QFuture<PortalPicture>> m_read; ///< by path
};

} // namespace tovek
