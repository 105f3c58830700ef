// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/FileDescriptor.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <vector>

namespace tovek {

/// Pictures on their way into other programs, as files that only their user can read, in one folder
/// of the temporary directory that nobody else can look into. Main thread.
class DragFiles
{
public:
    DragFiles() = default;
    /// Takes the files along.
    ~DragFiles();
    DragFiles(const DragFiles &) = delete;
    DragFiles &operator=(const DragFiles &) = delete;

    /// Removes what a process left that was killed, and nothing of one that still runs, as on
    /// another display of the same user.
    static void removeLeft();
    /// The path of a new file; absent, with one log line, where none can be written.
    [[nodiscard]] std::optional<QString> write(const QString &name, const QByteArray &contents);
    /// Removes the file that was written first of those that are there.
    void removeOldest();

private:
    struct Folder
    {
        std::unique_ptr<QTemporaryDir> place;
        FileDescriptor lock; ///< tells other processes that we are still there
    };
    static Folder makeFolder();

    std::vector<Folder> m_folders; ///< oldest first
};

} // namespace tovek
