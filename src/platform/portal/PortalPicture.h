// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QString>

namespace tovek {

/// A picture that the desktop left in a file for this program.
struct PortalPicture
{
    QImage image; ///< null when there is none
    QString error; ///< why, for a person to read
};

/// Reads the file, which must be one of this user's and no link, and removes it. A file that is
/// something else is left alone. Any thread; may take as long as the disk does.
PortalPicture takePortalPicture(const QString &uri);
/// Removes it unread, under the same conditions.
void dropPortalPicture(const QString &uri);

} // namespace tovek
