// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/PortalPicture.h"

#include <QFuture>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace tovek {

class FileGrowth;

/// Reads pictures while the desktop is writing them, in case it is going to name them: compressing
/// takes it longer than reading takes us, and GNOME keeps its answer back for as long as the screen
/// flashes, half a second. Removes nothing, and shows nothing that was not named. Main thread only.
class EarlyPictures : public QObject
{
public:
    /// Somebody may be unpacking photographs there.
    static constexpr size_t mostAtATime = 2;

    /// Those in which the desktop may leave pictures.
    explicit EarlyPictures(QStringList folders);
    ~EarlyPictures() override;

    /// Where GNOME leaves them: in the folder for pictures, or at home where there is none.
    static QStringList standardFolders();

    /// Of files that are written from the moment on that the future has finished, which it does not
    /// while the file system of a folder does not answer.
    QFuture<void> start();
    void stop();
    /// Of as many rows, from the top, as were read of a file so far; the image gets the others
    /// while it is held.
    std::function<void(const QImage &image, int rows)> onRows;
    /// Of what was read of a file, before it is known whether anybody is going to name it.
    std::function<void(const PortalPicture &)> onRead;
    /// What was read of the named file, or is being read; absent when it was not seen.
    std::optional<QFuture<PortalPicture>> take(const QString &uri);

private:
    struct Watch;
    void begin(std::shared_ptr<Watch> watch);
    struct Reading
    {
        QFuture<PortalPicture> picture;
        std::shared_ptr<FileGrowth> growth;
    };
    void look() const;
    void hear();
    void hear(const QString &path, uint32_t change);

    const QStringList m_folders;
    QFuture<std::shared_ptr<Watch>> m_beginning;
    bool m_isWanted = false;
    std::shared_ptr<Watch> m_watch; ///< null while nothing is heard
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::map<QString, Reading> m_readings; ///< by path
    QTimer m_look; ///< at how far they are
};

} // namespace tovek
