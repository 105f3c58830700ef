// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Stage.h"

#include "Measure.h"
#include "support/Eye.h"
#include "support/RunningTovek.h"

#include <QDir>
#include <QJsonDocument>

#include <poll.h>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

namespace tovek::bench {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A quick tap; the key is down for as long.
constexpr auto tapTime = 80ms;
/// What an overlay does after it came up has ended by then.
constexpr auto settleTime = 160ms;
constexpr auto deadline = 10s;
/// A drag over the whole screen ends on its last pixel, which the selection then does not hold.
constexpr int pixelsLeftOut = 1;

QString floorFile(const TestDesktop &desktop)
{
    return desktop.downloads() + QStringLiteral("/floor.png");
}

/// Tells when a file has been closed after writing, or been moved to its name.
class FolderWatch
{
public:
    explicit FolderWatch(const QString &folder) : m_inotify(inotify_init1(IN_CLOEXEC))
    {
        inotify_add_watch(m_inotify, qPrintable(folder), IN_CLOSE_WRITE | IN_MOVED_TO);
    }
    ~FolderWatch() { ::close(m_inotify); }
    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;

    /// The name of a PNG that is complete; hidden ones are somebody's work in progress.
    QString next()
    {
        pollfd waiting{m_inotify, POLLIN, 0};
        alignas(inotify_event) char buffer[4096];
        while (poll(&waiting, 1, int(std::chrono::milliseconds(deadline).count())) == 1) {
            const ssize_t count = read(m_inotify, buffer, sizeof buffer);
            for (ssize_t at = 0; at < count;) {
                const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
                const QString name = QString::fromUtf8(event->name);
                if (name.endsWith(QLatin1String(".png")) && !name.startsWith('.'))
                    return name;
                at += ssize_t(sizeof(inotify_event)) + event->len;
            }
        }
        return {};
    }

private:
    int m_inotify;
};

} // namespace

void waitFor(std::chrono::microseconds time)
{
    std::this_thread::sleep_for(time);
}

Stage::Stage(const QImage &picture, const QJsonObject &more)
    : m_size(picture.size())
    , m_desktop({.size = m_size, .monitors = {}})
{
    if (!m_desktop.start())
        giveUp(m_desktop.error());
    m_scene = std::make_unique<Scene>(m_desktop.displayName(), picture);
    m_reader = std::make_unique<SelectionReader>(m_desktop.displayName().toLatin1());
    const RunningTovek settings(m_desktop, {});
    if (!settings.writeSettings(QJsonDocument(RunningTovek::settings(more)).toJson()))
        giveUp(QStringLiteral("the settings cannot be written"));
}

double Stage::start(Subject subject)
{
    Program *&program = this->program(subject);
    const auto begin = Clock::now();
    if (subject == Subject::floor) {
        program = m_desktop.run(QStringLiteral(TOVEK_FLOOR),
                                {floorFile(m_desktop), QString::number(pixelsLeftOut)});
        if (!program || !program->waitForLine(QStringLiteral("ready")))
            giveUp(QStringLiteral("the floor did not start"));
    } else {
        program = m_desktop.run(qEnvironmentVariable("TOVEK_PROGRAM", QStringLiteral(TOVEK_BINARY)),
                                {QStringLiteral("--background")});
        while (program && !m_scene->isTaken(cKey)) {
            if (Clock::now() - begin > deadline)
                giveUp(QStringLiteral("the program does not hold its shortcut"));
            waitFor(500us);
        }
        if (!program)
            giveUp(m_desktop.error());
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void Stage::stop(Subject subject)
{
    if (Program *&program = this->program(subject)) {
        program->stop();
        program = nullptr;
    }
}

void Stage::furnish()
{
    const std::pair<const char *, QStringList> programs[]{
        {"trayer", {"--edge", "top", "--align", "right", "--height", "24"}},
        {"dunst", {"-config", "/dev/null"}},
        {"pulseaudio",
         {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
          "module-null-sink", "-L", "module-native-protocol-unix"}},
    };
    for (const auto &[name, arguments] : programs) {
        if (!m_desktop.run(QLatin1String(name), arguments))
            giveUp(m_desktop.error());
    }
    waitFor(1s); // none of them tells when it is ready
}

double Stage::open(Subject subject)
{
    const bool isFloor = subject == Subject::floor;
    bool &hasChecked = m_hasChecked[isFloor];
    const QRect area(0, 0, m_size.width(), m_size.height() - 1); // the witness is below
    QImage before;
    if (!hasChecked)
        before = Eye(m_desktop.displayName()).look(area);
    if (!isFloor) {
        m_scene->key(superKey, true);
        m_scene->key(shiftKey, true);
    }
    m_scene->key(isFloor ? f8 : cKey, true);
    waitFor(tapTime);
    const auto time = m_scene->releaseUntilCovered(isFloor ? f8 : cKey);
    if (!time)
        giveUp(QStringLiteral("no overlay came"));
    const QRgb shown = m_scene->cornerOfScreen();
    if (!isFloor) {
        m_scene->key(shiftKey, false);
        m_scene->key(superKey, false);
    }
    waitFor(settleTime);
    // What came up must have been the picture already, not a window that is painted later.
    if (m_scene->cornerOfScreen() != shown)
        giveUp(QStringLiteral("the overlay was not painted when it appeared"));
    if (!hasChecked && differentPixels(before, Eye(m_desktop.displayName()).look(area)) != 0)
        giveUp(QStringLiteral("the overlay does not show the frozen screen"));
    hasChecked = true;
    return *time;
}

void Stage::close()
{
    m_scene->key(escapeKey, true);
    m_scene->key(escapeKey, false);
    if (!m_scene->waitUntilUncovered())
        giveUp(QStringLiteral("an overlay does not close"));
    waitFor(settleTime);
}

QPoint Stage::at(double fraction) const
{
    return {int(fraction * (m_size.width() - 1)), int(fraction * (m_size.height() - 1))};
}

void Stage::press(double fraction)
{
    m_scene->move(at(fraction));
    m_scene->button(true);
}

void Stage::drag(double from, double to, int events, std::chrono::microseconds interval)
{
    const auto begin = Clock::now();
    for (int event = 1; event <= events; ++event) {
        std::this_thread::sleep_until(begin + event * interval);
        m_scene->move(at(from + (to - from) * event / events));
    }
}

void Stage::selectEverything()
{
    press(0);
    waitFor(20ms);
    drag(0, 1, 15, 4ms);
    release();
    waitFor(settleTime);
}

Stage::Result Stage::copy()
{
    m_reader->take();
    const xcb_window_t ourselves = m_reader->owner();
    std::optional<SelectionReader::Value> value;
    const double time = millisecondsOf([&] {
        const auto end = Clock::now() + deadline;
        m_scene->key(returnKey, true);
        m_scene->key(returnKey, false);
        while (m_reader->owner() == ourselves) {
            if (Clock::now() > end)
                giveUp(QStringLiteral("nothing was copied"));
            waitFor(300us);
        }
        value = m_reader->read("image/png");
    });
    if (!value || !m_scene->waitUntilUncovered())
        giveUp(QStringLiteral("the copy cannot be read"));
    waitFor(settleTime);
    return {time, value->bytes.size()};
}

Stage::Result Stage::save(Subject subject)
{
    FolderWatch folder(m_desktop.downloads());
    QString name;
    const double time = millisecondsOf([&] {
        m_scene->key(controlKey, true);
        m_scene->key(sKey, true);
        name = folder.next();
    });
    m_scene->key(sKey, false);
    m_scene->key(controlKey, false);
    QFile file(QDir(m_desktop.downloads()).filePath(name));
    if (name.isEmpty() || !m_scene->waitUntilUncovered())
        giveUp(QStringLiteral("nothing was saved"));
    const qsizetype bytes = file.size();
    if (subject == Subject::tovek
        && QImage(file.fileName()).size() != m_size - QSize(pixelsLeftOut, pixelsLeftOut))
        giveUp(QStringLiteral("the saved picture is not the whole screen"));
    file.remove();
    waitFor(settleTime);
    return {time, bytes};
}

pid_t Stage::pid(Subject subject) const
{
    return pid_t(m_programs[subject == Subject::floor]->pid());
}

Memory Stage::memory(Subject subject)
{
    return memoryOf(pid(subject), mappedFiles(pid_t(m_desktop.server().pid())));
}

} // namespace tovek::bench
