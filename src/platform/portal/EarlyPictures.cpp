// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/EarlyPictures.h"

#include "foundation/AskAside.h"
#include "foundation/WhenReady.h"
#include "platform/portal/FileGrowth.h"

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

using namespace std::chrono_literals;

constexpr auto lookInterval = 25ms;

} // namespace

/// To begin it may take as long as the folders' file systems like.
struct EarlyPictures::Watch
{
    explicit Watch(const QStringList &names) : inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
    {
        for (const QString &name : names) {
            const int number = inotify < 0
                ? -1
                : inotify_add_watch(inotify, QFile::encodeName(name).constData(),
                                    IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_ONLYDIR);
            if (number >= 0)
                folders.emplace(number, name);
        }
    }
    ~Watch()
    {
        if (inotify >= 0)
            close(inotify);
    }
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;

    const int inotify; ///< negative where there is none
    std::map<int, QString> folders; ///< by their numbers in events
};

EarlyPictures::EarlyPictures(QStringList folders) : m_folders(std::move(folders))
{
    m_look.setInterval(lookInterval);
    m_look.callOnTimeout([this] { look(); });
}

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

QFuture<void> EarlyPictures::start()
{
    stop();
    m_isWanted = true;
    // One that hangs is not asked a second time.
    if (!m_beginning.isRunning())
        m_beginning = askAside<std::shared_ptr<Watch>>(
            [folders = m_folders] { return std::make_shared<Watch>(folders); });
    const auto heard = std::make_shared<QPromise<void>>();
    heard->start();
    whenOver(m_beginning, this, [this, heard](const QFuture<std::shared_ptr<Watch>> &finished) {
        m_beginning = {}; // or it would keep watching
        if (m_isWanted && finished.resultCount() > 0)
            begin(finished.result());
        heard->finish();
    });
    return heard->future();
}

void EarlyPictures::begin(std::shared_ptr<Watch> watch)
{
    if (watch->inotify < 0)
        return;
    m_watch = std::move(watch);
    m_notifier = std::make_unique<QSocketNotifier>(m_watch->inotify, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { hear(); });
}

void EarlyPictures::stop()
{
    m_isWanted = false;
    m_look.stop();
    m_notifier.reset();
    // The kernel takes its time to end one, ten milliseconds and more.
    if (m_watch)
        askAside<bool>([watch = std::exchange(m_watch, nullptr)] { return watch != nullptr; });
    for (const auto &[path, reading] : m_readings)
        reading.growth->set(FileGrowth::Writer::unimportant);
    m_readings.clear();
}

void EarlyPictures::look() const
{
    for (const auto &[path, reading] : m_readings) {
        const auto [image, rows] = reading.growth->rows();
        if (rows > 0 && onRows && !reading.picture.isFinished())
            onRows(image, rows);
    }
}

void EarlyPictures::hear()
{
    alignas(inotify_event) std::array<char, 4096> bytes;
    const ssize_t count = read(m_watch->inotify, bytes.data(), bytes.size());
    for (ssize_t at = 0; at < count;) {
        const auto *event = reinterpret_cast<const inotify_event *>(bytes.data() + at);
        at += ssize_t(sizeof *event + event->len);
        const QString name = event->len ? QFile::decodeName(event->name) : QString();
        const auto folder = m_watch->folders.find(event->wd);
        if (folder != m_watch->folders.end() && name.endsWith(QLatin1String(".png")))
            hear(QDir(folder->second).filePath(name), event->mask);
    }
}

void EarlyPictures::hear(const QString &path, uint32_t change)
{
    using Writer = FileGrowth::Writer;
    const auto known = m_readings.find(path);
    if (known == m_readings.end() && m_readings.size() == mostAtATime)
        return;
    if (known != m_readings.end()) {
        FileGrowth &growth = *known->second.growth;
        if (change & IN_CLOSE_WRITE && growth.writer() == Writer::writing)
            return growth.set(Writer::done);
        // Written once more: what was read is not the file any longer.
        growth.set(Writer::unimportant);
    }
    const auto growth =
        std::make_shared<FileGrowth>(change & IN_CREATE ? Writer::writing : Writer::done);
    const auto picture =
        askAside<PortalPicture>([path, growth] { return readPortalPicture(path, *growth); });
    m_readings.insert_or_assign(path, Reading{picture, growth});
    m_look.start();
    whenReady(picture, this, [this, growth](const PortalPicture &read) {
        if (onRead && growth->writer() != Writer::unimportant)
            onRead(read);
    });
}

std::optional<QFuture<PortalPicture>> EarlyPictures::take(const QString &uri)
{
    if (m_watch)
        hear(); // the answer may be read before the event
    const auto reading = m_readings.find(QUrl(uri).toLocalFile());
    if (reading == m_readings.end())
        return std::nullopt;
    // It is whole when it is named, even if somebody keeps it open.
    if (reading->second.growth->writer() == FileGrowth::Writer::writing)
        reading->second.growth->set(FileGrowth::Writer::done);
    return reading->second.picture;
}

} // namespace tovek
