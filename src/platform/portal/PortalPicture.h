// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QString>

namespace tovek {

class FileGrowth;

/// Tells a file from another, and from itself after it was written to.
struct FileState
{
    quint64 device = 0, number = 0;
    qint64 size = -1, seconds = 0, nanoseconds = 0; ///< size, and last change

    bool operator==(const FileState &) const = default;
};

/// A picture that the desktop left in a file for this program.
struct PortalPicture
{
    QImage image; ///< null when there is none
    QString error; ///< why, for a person to read
    FileState state; ///< of the file while it was read; unset when there is no picture
};

/// Reads the file, which must be one of this user's and no link, and removes it. A file that is
/// something else is left alone. Any thread; may take as long as the disk does.
PortalPicture takePortalPicture(const QString &uri);
/// The same without reading the file again that `early` was read from, if it is still as it was.
PortalPicture takePortalPicture(const QString &uri, const PortalPicture &early);
/// Reads it under the same conditions, while it is being written, and leaves it where it is.
PortalPicture readPortalPicture(const QString &path, FileGrowth &growth);
/// Removes it unread, under the same conditions.
void dropPortalPicture(const QString &uri);

} // namespace tovek
