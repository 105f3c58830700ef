// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/program/Refusal.h"

#include <QTemporaryFile>

namespace tovek {

/// A package while it is downloaded and verified: a file that only the user can read, under a name
/// that nobody knows or, where the file system can do that, under none. It goes with this object,
/// and mostly even when the process is killed, unless it has been put in its place.
class PackageFile
{
public:
    struct Problem
    {
        Refusal refusal = Refusal::notWritten;
        QString detail;
    };

    /// The folder is made where it is missing. Nothing is created yet.
    explicit PackageFile(QString folder);

    /// Absent when there is room for so many bytes.
    [[nodiscard]] std::optional<Problem> open(qint64 length);
    [[nodiscard]] std::optional<Problem> append(const QByteArray &bytes);
    qint64 size() const { return m_file.size(); }
    /// Reads again what is on the disk. Absent when that is the package that was signed.
    [[nodiscard]] std::optional<Problem> verify(const UpdatePackage &package);
    /// Absent when it is an executable for the machine that this process runs on.
    [[nodiscard]] std::optional<Problem> verifyMachine();
    /// In one step, so that there is always one whole file of that name; another one of the name is
    /// replaced, and its permissions kept.
    [[nodiscard]] std::optional<Problem> moveTo(const QString &path);

private:
    Problem failed(const QString &reason) const;

    QString m_folder;
    QTemporaryFile m_file;
};

} // namespace tovek
