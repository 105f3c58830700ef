// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/UserDefaults.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace tovek {

namespace {

constexpr qint64 largestFile = 1 << 20;

/// The file that a link leads to, through other links, whether it exists or not.
QString behindLinks(QString path)
{
    constexpr int mostLinks = 16;
    for (int i = 0; i < mostLinks && QFileInfo(path).isSymLink(); ++i)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

} // namespace

UserDefaults::UserDefaults(QString path) : m_path(std::move(path)) { }

std::optional<QString> UserDefaults::string(const QString &key) const
{
    load();
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<bool> UserDefaults::boolean(const QString &key) const
{
    load();
    const QJsonValue value = m_values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

bool UserDefaults::contains(const QString &key) const
{
    load();
    return m_values.contains(key);
}

void UserDefaults::remove(const QString &key)
{
    Q_ASSERT(isMainThread());
    load();
    if (!m_values.contains(key))
        return;
    m_values.remove(key);
    write();
}

QString UserDefaults::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/tovek/defaults.json");
}

void UserDefaults::load() const
{
    Q_ASSERT(isMainThread());
    if (m_isLoaded)
        return;
    m_isLoaded = true;
    if (!QFileInfo::exists(m_path))
        return;
    // Opening a pipe for reading would otherwise wait for somebody who writes.
    const int descriptor =
        ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return refuse(qt_error_string(errno));
    struct stat status
    {
    };
    QFile file;
    const bool isOpen = file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    if (!isOpen || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return refuse(QStringLiteral("it is not an ordinary file"));
    if (status.st_size > largestFile)
        return refuse(QStringLiteral("it is larger than a megabyte"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.read(largestFile), &error);
    if (error.error == QJsonParseError::NoError && document.isObject()) {
        m_values = document.object();
        return;
    }
    file.close();
    setAside();
}

/// Values live for this process, and the file stays as it is.
void UserDefaults::refuse(const QString &reason) const
{
    logLine(QStringLiteral("Failed to read settings %1: %2").arg(m_path, reason));
    m_canWrite = false;
}

void UserDefaults::setAside() const
{
    QString aside = m_path + QStringLiteral(".broken");
    for (int number = 2; QFile::exists(aside); ++number)
        aside = m_path + QStringLiteral(".broken-%1").arg(number);
    if (QFile::rename(m_path, aside)) {
        logLine(QStringLiteral("Settings %1 are not valid and were set aside as %2")
                    .arg(m_path, QFileInfo(aside).fileName()));
        return;
    }
    m_canWrite = false;
    logLine(QStringLiteral("Settings %1 are not valid and could not be set aside; they are left "
                           "as they are and changes are not stored")
                .arg(m_path));
}

void UserDefaults::set(const QString &key, const QJsonValue &value)
{
    Q_ASSERT(isMainThread());
    load();
    m_values.insert(key, value);
    write();
}

void UserDefaults::write()
{
    if (!m_canWrite) {
        logLine(QStringLiteral("Failed to write settings %1: the file there cannot be replaced")
                    .arg(m_path));
        return;
    }
    const QString target = behindLinks(m_path);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QSaveFile file(target);
    const QByteArray bytes = QJsonDocument(m_values).toJson(QJsonDocument::Indented);
    // Committing alone takes no notice of what its own flush could not write (Qt 6.4.2): an empty
    // file took the store's place when the disk was full.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()
        || !file.commit())
        logLine(QStringLiteral("Failed to write settings %1: %2").arg(m_path, file.errorString()));
}

} // namespace tovek
