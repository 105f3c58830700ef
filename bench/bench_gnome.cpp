// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a user of the running program waits for on GNOME with two monitors, beside a bare client of
// the desktop's portal. That does nothing with the picture: when the answer comes it covers the
// monitors with two windows that it has had ready, and tells when the answer came. Compressing the
// picture takes the desktop most of the time, never twice the same; what counts is the time after
// that. Prints Markdown. TOVEK_PROGRAM names another build of the program.
//
// With --screencast: from the command to all overlays instead, with the pictures of the portal, and
// with those of mutter's ScreenCast, for which pipewire and wireplumber have to be installed.

#include "Measure.h"
#include "Pictures.h"
#include "support/GnomeDesktop.h"
#include "support/Wait.h"
#include "support/XConnection.h"

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

/// Windows over the monitors, with pixels that the X server has long had: to put them on the screen
/// is one request each.
class BareCover
{
public:
    BareCover() : m_connection(qEnvironmentVariable("DISPLAY"))
    {
        if (!m_connection.isOpen())
            giveUp(QStringLiteral("there is no X server"));
        for (const QRect &monitor : GnomeDesktop::monitors())
            m_windows.push_back(makeWindow(monitor));
        m_connection.sync();
    }
    void show() const
    {
        for (const xcb_window_t window : m_windows)
            xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
    }

private:
    xcb_window_t makeWindow(const QRect &at) const
    {
        const xcb_screen_t &screen = *m_connection.screen();
        const auto width = uint16_t(at.width()), height = uint16_t(at.height());
        const uint32_t pixmap = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, screen.root_depth, pixmap, screen.root, width, height);
        const xcb_gcontext_t gc = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, gc, pixmap, XCB_GC_FOREGROUND, &screen.white_pixel);
        const xcb_rectangle_t all{0, 0, width, height};
        xcb_poly_fill_rectangle(m_connection, pixmap, gc, 1, &all);
        const uint32_t values[]{pixmap, 1};
        const xcb_window_t window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, screen.root, int16_t(at.x()),
                          int16_t(at.y()), width, height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen.root_visual, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
                          values);
        constexpr std::string_view title = "floor";
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                            XCB_ATOM_STRING, 8, uint32_t(title.size()), title.data());
        return window;
    }

    XConnection m_connection;
    std::vector<xcb_window_t> m_windows;
};

/// Prints how long after the picture was written its answer came, and how long after it was asked
/// for, in milliseconds, and stays for as long as anybody listens.
int askPortal()
{
    const auto &written = *new LastWritten(QDir::homePath()); // stays, as its thread does
    BarePortalClient client;
    const BareCover cover;
    QString file;
    double sinceWritten = 0;
    const double roundTrip = millisecondsOf([&] {
        file = client.takePicture();
        sinceWritten = written.millisecondsSince();
    });
    cover.show();
    if (file.isEmpty() || !QFile::remove(file))
        return 1;
    std::printf("%.3f %.3f\n", sinceWritten, roundTrip);
    std::fflush(stdout);
    pause();
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

    /// Milliseconds after the picture was written until the desktop has the pixels of all windows.
    double open(Subject subject)
    {
        if (subject == Subject::tovek) {
            fromCommand.push_back(millisecondsOf([this] { open(); }));
            return written->millisecondsSince();
        }
        floor = desktop.run(QCoreApplication::applicationFilePath(), {askingOption});
        waitUntilCovered();
        const double time = written->millisecondsSince();
        keepTimesOfAnswer();
        return time;
    }
    /// Until the desktop has the pixels of all overlays.
    void open() const
    {
        if (!desktop.act("start-capture"))
            giveUp(QStringLiteral("the program has ended"));
        waitUntilCovered();
    }
    void waitUntilCovered() const
    {
        const QDeadlineTimer end(patience);
        while (!isShown()) {
            if (end.hasExpired())
                giveUp(QStringLiteral("nothing covered the screens but \"%1\", and %2 says \"%3\"")
                           .arg(desktop.unmanagedTitles().join(QLatin1Char(' ')),
                                floor ? QStringLiteral("the bare client") : QStringLiteral("Tovek"),
                                (floor ? floor : tovek)->lines().join(QLatin1Char('\n'))));
            // Answering takes the shell from what it is asked about.
            std::this_thread::sleep_for(1ms);
        }
    }
    void keepTimesOfAnswer()
    {
        const QStringList times =
            floor && waitUntil([&] { return !floor->lines().isEmpty(); }, patience)
            ? floor->lines().constFirst().split(QLatin1Char(' '))
            : QStringList();
        if (times.size() != 2)
            giveUp(QStringLiteral("the portal gave no picture"));
        answers.push_back(times.front().toDouble());
        roundTrips.push_back(times.back().toDouble());
    }
    void forgetTimes()
    {
        for (std::vector<double> *times : {&answers, &roundTrips, &fromCommand})
            times->clear();
    }
    void close()
    {
        std::this_thread::sleep_for(settleTime);
        if (floor)
            std::exchange(floor, nullptr)->stop();
        else if (isShown())
            desktop.tap(escape);
        if (!waitUntil([&] { return desktop.unmanagedTitles().isEmpty(); }, patience))
            giveUp(QStringLiteral("an overlay does not close"));
        std::this_thread::sleep_for(settleTime);
    }

    GnomeDesktop desktop;
    Program *tovek = nullptr;
    Program *floor = nullptr; ///< while it covers the screens
    // In milliseconds; the first of each does not count.
    std::vector<double> answers; ///< after the picture was written, as the bare client says
    std::vector<double> roundTrips; ///< from the question to the answer, as it says
    std::vector<double> fromCommand; ///< to all overlays
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

/// A row; what comes after the picture is written is counted from there.
void printAfterWriting(Stage &stage, bool isAnimated)
{
    const QString script = QStringLiteral("imports.gi.St.Settings.get().%1_animations()");
    stage.desktop.evaluate(script.arg(isAnimated ? "uninhibit" : "inhibit"));
    stage.forgetTimes();
    const Pair times = timesOfOpening(stage, runs);
    const auto medianOf = [](std::vector<double> values) {
        values.erase(values.begin());
        return median(values);
    };
    const double overlays = median(times.tovek), windows = median(times.floor);
    const double answer = medianOf(stage.answers);
    std::printf("| %s | %.0f | %.0f | %.1f | %.1f | %.1f | %.1f | %.1f | 20 |\n",
                isAnimated ? "yes" : "no", medianOf(stage.fromCommand), medianOf(stage.roundTrips),
                overlays, windows, answer, overlays - answer, overlays - windows);
    std::fflush(stdout);
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
    printHead("Command to all overlays, and what comes after the picture is written", "ms: median",
              {"animations", "command to overlays", "portal's round trip", "overlays",
               "bare windows", "portal's answer", "overlays - answer", "overlays - bare windows",
               "budget"});
    // Without hardware the shell shows none, and answers without its flash.
    for (const bool isAnimated : {true, false})
        printAfterWriting(stage, isAnimated);
    return 0;
}

#include "bench_gnome.moc"
