// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>

#include <functional>
#include <memory>

namespace tovek {

/// Opens a package with the program that the desktop has for packages.
class PackageOpener : public QObject
{
public:
    PackageOpener();
    /// Calls back no more; what has been started goes on.
    ~PackageOpener() override;

    /// Calls back once, whether anything took the file: at once when nothing can, otherwise when it
    /// is certain. One file at a time.
    void open(const QString &file, std::function<void(bool isTaken)> done);

private:
    void answer(bool isTaken);

    std::unique_ptr<QProcess> m_opener;
    std::function<void(bool isTaken)> m_done; ///< empty when it has been called
};

} // namespace tovek
