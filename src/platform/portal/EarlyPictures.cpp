// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/EarlyPictures.h"

#include "foundation/AskAside.h"

#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QUrl>

#include <array>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace tovek {

namespace {

/// Somebody may be unpacking photographs there.
constexpr size_t mostAtATime = 2;

} // namespace

EarlyPictures::EarlyPictures(QStringList folders) : m_folders(std::move(folders)) { }

EarlyPictures::~EarlyPictures()
{
    stop();
}

QStringList EarlyPictures::standardFolders()
{
    QStringList folders{QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                        QDir::homePath()};
    folders.removeDuplicates();
    return folders;
}

void EarlyPictures::start()
{
    stop();
    m_inotify = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (m_inotify < 0)
        return;
    for (const QString &folder : m_folders) {
        const int watch = inotify_add_watch(m_inotify, QFile::encodeName(folder).constData(),
                                            IN_CLOSE_WRITE | IN_MOVED_TO | IN_ONLYDIR);
        if (watch >= 0)
            m_watched.emplace(watch, folder);
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_inotify, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { hear(); });
}

void EarlyPictures::stop()
{
    m_notifier.reset();
    if (m_inotify >= 0)
        close(std::exchange(m_inotify, -1));
    m_watched.clear();
    m_read.clear();
}

void EarlyPictures::hear()
{
    alignas(inotify_event) std::array<char, 4096> bytes;
    const ssize_t count = read(m_inotify, bytes.data(), bytes.size());
    for (ssize_t at = 0; at < count;) {
        const auto *event = reinterpret_cast<const inotify_event *>(bytes.data() + at);
        at += ssize_t(sizeof *event + event->len);
        const QString name = event->len ? QFile::decodeName(event->name) : QString();
        const auto folder = m_watched.find(event->wd);
        if (folder == m_watched.end() || !name.endsWith(QLatin1String(".png"))
            || m_read.size() == mostAtATime)
            continue;
        const QString path = QDir(folder->second).filePath(name);
        // Written once more: what was read is not the file any longer.
        m_read.insert_or_assign(
            path, askAside<PortalPicture>([path] { return readPortalPicture(path); }));
    }
}

std::optional<QFuture<PortalPicture>> EarlyPictures::take(const QString &uri)
{
    if (m_notifier)
        hear(); // the answer may be read before the event
    const auto read = m_read.find(QUrl(uri).toLocalFile());
    return read == m_read.end() ? std::nullopt : std::optional(read->second);
}

} // namespace tovek
