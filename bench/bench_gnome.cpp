// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a user of the running program waits for on GNOME with two monitors, beside a bare client of
// the desktop's portal that does nothing with the picture. Compressing the picture takes the
// desktop most of the time, never twice the same; what counts is the time after that. Prints
// Markdown. TOVEK_PROGRAM names another build of the program.
//
// With --screencast: from the command to all overlays instead, with the pictures of the portal, and
// with those of mutter's ScreenCast, for which pipewire and wireplumber have to be installed.

#include "Measure.h"
#include "Pictures.h"
#include "support/GnomeDesktop.h"
#include "support/Wait.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>
#include <QUrl>

#include <atomic>
#include <cstdio>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

using namespace tovek;
using namespace tovek::bench;
using namespace std::chrono_literals;

namespace {

constexpr int runs = 15;
constexpr int escape = 1;
constexpr auto settleTime = 500ms;
constexpr auto patience = 20s;
const auto askingOption = QStringLiteral("--ask-portal");
const auto castOption = QStringLiteral("--screencast");

/// Tells when a file was last closed by whoever wrote it, at home or in the folder for pictures
/// there.
class LastWritten
{
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit LastWritten(const QString &home) : m_inotify(inotify_init1(IN_CLOEXEC))
    {
        for (const QString &folder : {home, home + QStringLiteral("/Pictures")})
            inotify_add_watch(m_inotify, QFile::encodeName(folder).constData(), IN_CLOSE_WRITE);
        std::thread([this] {
            char events[4096];
            while (read(m_inotify, events, sizeof events) > 0)
                m_time = std::chrono::steady_clock::now();
        }).detach();
    }
    double millisecondsSince() const
    {
        if (m_time.load() == Time())
            giveUp(QStringLiteral("no picture was written"));
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now()
                                                         - m_time.load())
            .count();
    }

private:
    const int m_inotify;
    std::atomic<Time> m_time;
};

/// Asks for a picture, and waits for the name of its file. The portal answers only to programs of
/// the desktop's user.
class BarePortalClient : public QObject
{
    Q_OBJECT

public:
    BarePortalClient()
    {
        m_bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.portal.Request"),
                      QStringLiteral("Response"), this, SLOT(respond(uint, QVariantMap)));
        m_limit.setSingleShot(true);
        m_limit.callOnTimeout(&m_loop, &QEventLoop::quit);
        // What the connection takes is not the portal's.
        m_bus.call(QDBusMessage::createMethodCall(
            m_portal, m_path, QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
    }

    QString takePicture()
    {
        QDBusMessage ask = QDBusMessage::createMethodCall(
            m_portal, m_path, QStringLiteral("org.freedesktop.portal.Screenshot"),
            QStringLiteral("Screenshot"));
        ask << QString() << QVariantMap{{QStringLiteral("interactive"), false}};
        m_bus.asyncCall(ask);
        m_limit.start(patience);
        m_loop.exec();
        return m_file;
    }

private Q_SLOTS:
    void respond(uint, const QVariantMap &results)
    {
        m_file = QUrl(results.value(QStringLiteral("uri")).toString()).toLocalFile();
        m_loop.quit();
    }

private:
    const QString m_portal = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString m_path = QStringLiteral("/org/freedesktop/portal/desktop");
    QDBusConnection m_bus = QDBusConnection::sessionBus();
    QEventLoop m_loop;
    QTimer m_limit;
    QString m_file;
};

/// Prints how long after the picture was written its answer came, in milliseconds.
int askPortal()
{
    const auto &written = *new LastWritten(QDir::homePath()); // stays, as its thread does
    BarePortalClient client;
    const QString file = client.takePicture();
    const double time = written.millisecondsSince();
    if (file.isEmpty() || !QFile::remove(file))
        return 1;
    std::printf("%.3f\n", time);
    return 0;
}

struct Stage
{
    Stage()
    {
        GnomeDesktop::Setup setup;
        setup.background = windowsWithText({1600, 1200});
        if (!desktop.start(setup))
            giveUp(desktop.error());
        for (const QString &name : {QString(), QStringLiteral("org.tovek.Tovek")}) {
            if (!desktop.permitScreenshots(name))
                giveUp(QStringLiteral("the desktop keeps no permissions"));
        }
        startTovek();
        written = new LastWritten(desktop.home());
        std::this_thread::sleep_for(settleTime);
    }

    void startTovek()
    {
        tovek = desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"), {"--background"});
        if (!tovek || !waitUntil([&] { return desktop.act("no-such-action"); }, patience))
            giveUp(QStringLiteral("the program does not start"));
    }
    void startPipeWire()
    {
        const QString socket = desktop.environment().value(QStringLiteral("XDG_RUNTIME_DIR"))
            + QStringLiteral("/pipewire-0");
        if (!desktop.run(QStringLiteral("pipewire"))
            || !waitUntil([&] { return QFile::exists(socket); }, patience)
            || !desktop.run(QStringLiteral("wireplumber")))
            giveUp(QStringLiteral("PipeWire does not start"));
    }
    /// Another run of the program, which takes its pictures over mutter's ScreenCast.
    void chooseScreenCast()
    {
        const QString folder = desktop.configFolder() + QStringLiteral("/tovek");
        desktop.act("quit");
        if (!waitUntil([&] { return !desktop.act("no-such-action"); }, patience)
            || !QDir().mkpath(folder)
            || !desktop.writeFile(folder + QStringLiteral("/defaults.json"),
                                  R"({"useMutterScreenCast": true})"))
            giveUp(QStringLiteral("the settings cannot be written"));
        startTovek();
        if (!tovek->waitForLine(QStringLiteral("Wayland: capturing over mutter's ScreenCast, a "
                                               "private interface"),
                                patience))
            giveUp(QStringLiteral("the program takes no pictures over mutter's ScreenCast"));
    }

    bool isShown() const
    {
        return desktop.unmanagedTitles().size() == GnomeDesktop::monitors().size();
    }

    /// Milliseconds after the picture was written until the desktop has the pixels of all overlays,
    /// or the client its answer.
    double open(Subject subject)
    {
        if (subject == Subject::floor) {
            bool isTime = false;
            const double time =
                desktop.output(QCoreApplication::applicationFilePath(), {askingOption})
                    .trimmed()
                    .toDouble(&isTime);
            return isTime ? time : (giveUp(QStringLiteral("the portal gave no picture")), 0);
        }
        open();
        return written->millisecondsSince();
    }
    /// Until the desktop has the pixels of all overlays.
    void open() const
    {
        const QDeadlineTimer end(patience);
        if (!desktop.act("start-capture"))
            giveUp(QStringLiteral("the program has ended"));
        while (!isShown()) {
            if (end.hasExpired())
                giveUp(QStringLiteral("no overlay came"));
            // Answering takes the shell from what it is asked about.
            std::this_thread::sleep_for(1ms);
        }
    }
    void close()
    {
        std::this_thread::sleep_for(settleTime);
        if (isShown())
            desktop.tap(escape);
        if (!waitUntil([&] { return desktop.unmanagedTitles().isEmpty(); }, patience))
            giveUp(QStringLiteral("an overlay does not close"));
        std::this_thread::sleep_for(settleTime);
    }

    GnomeDesktop desktop;
    Program *tovek = nullptr;
    const LastWritten *written = nullptr; // stays, as its thread does
};

/// A row of milliseconds from the command, after one that does not count.
void printFromCommand(Stage &stage, const char *pictures)
{
    std::vector<double> times;
    for (int run = -1; run < runs; ++run) {
        const double time = millisecondsOf([&] { stage.open(); });
        stage.close();
        if (run >= 0)
            times.push_back(time);
    }
    std::printf("| %s | %.0f | %.0f |\n", pictures, median(times),
                *std::min_element(times.begin(), times.end()));
    std::fflush(stdout);
}

void comparePictures(Stage &stage)
{
    stage.startPipeWire();
    printHead("Command to all overlays", "ms", {"pictures", "median", "least"});
    printFromCommand(stage, "portal");
    stage.chooseScreenCast();
    printFromCommand(stage, "ScreenCast");
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("TOVEK_PROGRAM"))
        qputenv("TOVEK_PROGRAM", TOVEK_BINARY);
    const QGuiApplication application(argc, argv);
    if (application.arguments().contains(askingOption))
        return askPortal();
    if (const QString missing = GnomeDesktop::missing(); !missing.isEmpty())
        giveUp(missing);
    Stage stage;
    if (application.arguments().contains(castOption)) {
        comparePictures(stage);
        return 0;
    }
    printHead("Picture written to all overlays, beside the portal's answer", "ms: median",
              {"animations", "overlays", "answer", "difference", "budget"});
    // Without hardware the shell shows none, and answers without its flash.
    for (const bool isAnimated : {true, false}) {
        const QString script = QStringLiteral("imports.gi.St.Settings.get().%1_animations()");
        stage.desktop.evaluate(script.arg(isAnimated ? "uninhibit" : "inhibit"));
        const Pair times = timesOfOpening(stage, runs);
        std::printf("| %s | %.1f | %.1f | %.1f | 20 |\n", isAnimated ? "yes" : "no",
                    median(times.tovek), median(times.floor),
                    median(times.tovek) - median(times.floor));
        std::fflush(stdout);
    }
    return 0;
}

#include "bench_gnome.moc"
