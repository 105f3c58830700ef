// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalPicture.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QUrl>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tovek {

namespace {

constexpr qint64 largestFile = qint64(1) << 30;
constexpr int largestImageMb = 2048; // sixteen screens of 8K

/// The file that a portal named, open, and nothing else.
class LeftFile
{
public:
    explicit LeftFile(const QString &uri) : m_path(pathOf(uri))
    {
        if (m_path.isEmpty()) {
            m_error = QStringLiteral("the desktop gave no file for it");
            return;
        }
        // Not following links, and not waiting for the other end of a pipe.
        m_file = open(m_path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        if (m_file < 0 || fstat(m_file, &m_status) != 0)
            m_error = errno == ELOOP ? QStringLiteral("the desktop's file for it is a link")
                                     : QStringLiteral("the desktop's file for it is missing");
        else if (!S_ISREG(m_status.st_mode) || m_status.st_nlink > 1)
            m_error = QStringLiteral("the desktop's file for it is a link or no file");
        else if (m_status.st_uid != geteuid())
            m_error = QStringLiteral("the desktop's file for it belongs to somebody else");
        else if (m_status.st_size > largestFile)
            m_error = QStringLiteral("the desktop's file for it is too large");
    }
    ~LeftFile()
    {
        if (m_file >= 0)
            close(m_file);
    }
    LeftFile(const LeftFile &) = delete;
    LeftFile &operator=(const LeftFile &) = delete;

    const QString &error() const { return m_error; }
    FileState state() const
    {
        return {m_status.st_dev, m_status.st_ino, m_status.st_size, m_status.st_mtim.tv_sec,
                m_status.st_mtim.tv_nsec};
    }
    QByteArray read() const
    {
        QFile file;
        return file.open(m_file, QIODevice::ReadOnly) ? file.read(largestFile) : QByteArray();
    }
    void remove() const
    {
        // Only if it is still the one that was looked at.
        struct stat now = {};
        if (m_error.isEmpty() && lstat(m_path.constData(), &now) == 0
            && now.st_ino == m_status.st_ino && now.st_dev == m_status.st_dev)
            unlink(m_path.constData());
    }

private:
    static QByteArray pathOf(const QString &uri)
    {
        const QUrl url(uri, QUrl::StrictMode);
        return url.isLocalFile() && url.host().isEmpty() ? QFile::encodeName(url.toLocalFile())
                                                         : QByteArray();
    }

    const QByteArray m_path;
    int m_file = -1;
    struct stat m_status = {};
    QString m_error;
};

PortalPicture pictureIn(const LeftFile &file)
{
    const FileState before = file.state();
    QByteArray bytes = file.read();
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return {};
    QImageReader reader(&buffer, "png");
    QImageReader::setAllocationLimit(largestImageMb);
    const QImage image = reader.read();
    // Half a file gives an error and, with it, half a picture.
    if (image.isNull() || reader.error() != QImageReader::UnknownError)
        return {{}, QStringLiteral("the desktop's file for it is damaged"), {}};
    return {image.convertToFormat(QImage::Format_RGB32), {}, before};
}

} // namespace

PortalPicture takePortalPicture(const QString &uri)
{
    return takePortalPicture(uri, {});
}

PortalPicture takePortalPicture(const QString &uri, const PortalPicture &early)
{
    const LeftFile file(uri);
    if (!file.error().isEmpty())
        return {{}, file.error(), {}};
    PortalPicture picture =
        !early.image.isNull() && early.state == file.state() ? early : pictureIn(file);
    file.remove();
    return picture;
}

PortalPicture readPortalPicture(const QString &path)
{
    const LeftFile file(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
    return file.error().isEmpty() ? pictureIn(file) : PortalPicture{{}, file.error(), {}};
}

void dropPortalPicture(const QString &uri)
{
    LeftFile(uri).remove();
}

} // namespace tovek
