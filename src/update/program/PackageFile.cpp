// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/PackageFile.h"

#include "update/UpdateSignature.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QStorageInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tovek {

namespace {

/// A rename survives a power failure only when the folder has been written, too.
void syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

constexpr qint64 elfHeadBytes = 20;

/// Width, byte order and machine of an executable; empty when it is none.
QByteArray machineOf(const QByteArray &head)
{
    const bool isExecutable = head.size() == elfHeadBytes
        && head.startsWith("\x7f"
                           "ELF");
    return isExecutable ? head.mid(4, 2) + head.mid(18, 2) : QByteArray();
}

} // namespace

PackageFile::PackageFile(QString folder)
    : m_folder(std::move(folder))
    , m_file(m_folder + QStringLiteral("/.tovek-update-XXXXXX"))
{
}

std::optional<PackageFile::Problem> PackageFile::open(qint64 length)
{
    if (!QDir().mkpath(m_folder))
        return failed(qt_error_string(errno));
    if (!m_file.open())
        return failed(m_file.errorString());
    const QStorageInfo storage(m_folder);
    if (storage.isValid() && storage.bytesAvailable() < length) {
        const QLocale locale;
        return Problem{Refusal::noRoom,
                       QCoreApplication::translate("Refusal", "it needs %1, and %2 has %3 left")
                           .arg(locale.formattedDataSize(length), m_folder,
                                locale.formattedDataSize(storage.bytesAvailable()))};
    }
    return std::nullopt;
}

std::optional<PackageFile::Problem> PackageFile::append(const QByteArray &bytes)
{
    // Told now rather than at the end, when there is no more room.
    if (m_file.write(bytes) != bytes.size() || !m_file.flush())
        return failed(m_file.errorString());
    return std::nullopt;
}

std::optional<PackageFile::Problem> PackageFile::verify(const UpdatePackage &package)
{
    if (m_file.size() != package.length)
        return Problem{Refusal::wrongLength, {}};
    const auto digest =
        m_file.seek(0) ? UpdateSignature::digest(m_file) : std::optional<QByteArray>();
    if (!digest)
        return failed(m_file.errorString());
    if (*digest != package.digest)
        return Problem{Refusal::badSignature, {}};
    return std::nullopt;
}

std::optional<PackageFile::Problem> PackageFile::verifyMachine()
{
    QFile own(QStringLiteral("/proc/self/exe"));
    if (!own.open(QIODevice::ReadOnly) || !m_file.seek(0))
        return failed(m_file.errorString());
    const QByteArray ours = machineOf(own.read(elfHeadBytes));
    if (ours.isEmpty() || machineOf(m_file.read(elfHeadBytes)) != ours)
        return Problem{Refusal::wrongMachine, {}};
    return std::nullopt;
}

std::optional<PackageFile::Problem> PackageFile::moveTo(const QString &path)
{
    if (QFile::exists(path) && !m_file.setPermissions(QFile::permissions(path)))
        return failed(m_file.errorString());
    const QByteArray from = QFile::encodeName(m_file.fileName());
    if (fsync(m_file.handle()) != 0
        || std::rename(from.constData(), QFile::encodeName(path).constData()) != 0)
        return failed(qt_error_string(errno));
    m_file.setAutoRemove(false);
    m_file.close();
    syncFolder(m_folder);
    return std::nullopt;
}

PackageFile::Problem PackageFile::failed(const QString &reason) const
{
    return {Refusal::notWritten, m_folder + QStringLiteral(": ") + reason};
}

} // namespace tovek
