// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalPicture.h"

#include "platform/portal/FileGrowth.h"
#include "platform/portal/PngReader.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QUrl>

#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tovek {

namespace {

using namespace std::chrono_literals;
using Writer = FileGrowth::Writer;

constexpr qint64 largestFile = qint64(1) << 30;
constexpr size_t bytesAtATime = 256 * 1024;
/// Whoever writes it compresses some ten kilobytes meanwhile.
constexpr auto growingTime = 2ms;
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
        struct stat now = {};
        if (fstat(m_file, &now) != 0)
            return {};
        return {now.st_dev, now.st_ino, now.st_size, now.st_mtim.tv_sec, now.st_mtim.tv_nsec};
    }
    /// The number of bytes that there were; negative on failure.
    ssize_t readAt(off_t at, std::span<uint8_t> bytes) const
    {
        return pread(m_file, bytes.data(), bytes.size(), at);
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

/// A picture of the kind that desktops write, as soon as it is whole; without one otherwise.
PortalPicture growingPictureIn(const LeftFile &file, FileGrowth &growth)
{
    PngReader reader(qint64(largestImageMb) << 20);
    std::vector<uint8_t> bytes(bytesAtATime);
    off_t at = 0;
    while (reader.state() == PngReader::State::reading && at <= largestFile) {
        // Asked before reading, not to miss what is written last.
        const Writer writer = growth.writer();
        const ssize_t count = writer == Writer::unimportant ? -1 : file.readAt(at, bytes);
        if (count > 0) {
            reader.add(std::span(bytes).first(size_t(count)));
            at += count;
            growth.setRows(reader.image(), reader.rows());
        } else if (count == 0 && writer == Writer::writing) {
            growth.waitFor(growingTime);
        } else {
            break;
        }
    }
    const FileState after = file.state();
    return reader.state() == PngReader::State::whole && after.size == at
        ? PortalPicture{reader.image(), {}, after}
        : PortalPicture();
}

/// PNG of any kind.
PortalPicture writtenPictureIn(const LeftFile &file)
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

PortalPicture pictureIn(const LeftFile &file, FileGrowth &growth)
{
    PortalPicture picture = growingPictureIn(file, growth);
    if (!picture.image.isNull() || growth.waitForEnd() == Writer::unimportant)
        return picture;
    return writtenPictureIn(file);
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
    FileGrowth written(Writer::done);
    PortalPicture picture =
        !early.image.isNull() && early.state == file.state() ? early : pictureIn(file, written);
    file.remove();
    return picture;
}

PortalPicture readPortalPicture(const QString &path, FileGrowth &growth)
{
    const LeftFile file(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
    return file.error().isEmpty() ? pictureIn(file, growth) : PortalPicture{{}, file.error(), {}};
}

void dropPortalPicture(const QString &uri)
{
    LeftFile(uri).remove();
}

} // namespace tovek
