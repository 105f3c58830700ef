// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

class QString;
class QUrl;

namespace tovek {

/// Shows a file in the desktop's file manager. Main thread only.
class FileRevealer
{
public:
    virtual ~FileRevealer() = default;
    /// Opens the file's folder with the file selected, where the desktop can select it, and brings
    /// it to the front: by the token that came with the user's click, where one did. Returns at
    /// once; what is not a local file is ignored.
    virtual void activateFileViewer(const QUrl &file, const QString &activationToken) = 0;
};

} // namespace tovek
