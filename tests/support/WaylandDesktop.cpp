// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/WaylandDesktop.h"

#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

namespace tovek {

namespace {

const char busConfiguration[] = R"(<busconfig>
<type>session</type>
<listen>unix:path=%1</listen>
<auth>EXTERNAL</auth>
<policy context="default">
<allow user="*"/>
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy>
</busconfig>
)";

bool isRoot()
{
    return geteuid() == 0;
}

/// Known to the machine by a name: XWayland trusts nobody else.
const passwd *userWithoutRights()
{
    static const passwd *const user = getpwnam("nobody");
    return user;
}

void giveAway(const QString &path)
{
    if (isRoot() && userWithoutRights())
        (void)!chown(QFile::encodeName(path).constData(), userWithoutRights()->pw_uid,
                     userWithoutRights()->pw_gid);
}

void collectTitles(const QJsonObject &node, QStringList &titles)
{
    if (node.contains(QLatin1String("pid")))
        titles << node.value(QLatin1String("name")).toString();
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue &child : node.value(QLatin1String(children)).toArray())
            collectTitles(child.toObject(), titles);
    }
}

} // namespace

WaylandDesktop::WaylandDesktop(WaylandPlan plan) : m_plan(std::move(plan)) { }

WaylandDesktop::~WaylandDesktop()
{
    while (!m_programs.empty())
        m_programs.pop_back();
}

QString WaylandDesktop::missing(const WaylandPlan &plan)
{
    QStringList needed{QStringLiteral("dbus-daemon"), QStringLiteral("swaybg"),
                       QStringLiteral("setpriv")};
    if (plan.compositor == WaylandPlan::Compositor::sway)
        needed << QStringLiteral("sway") << QStringLiteral("swaymsg") << QStringLiteral("grim");
    else
        needed << QStringLiteral("kwin_wayland");
    if (plan.hasXWayland)
        needed << QStringLiteral("Xwayland");
    for (const QString &name : std::as_const(needed)) {
        if (QStandardPaths::findExecutable(name).isEmpty())
            return name + QStringLiteral(" is not installed");
    }
    if (isRoot() && !userWithoutRights())
        return QStringLiteral("there is no user \"nobody\"");
    return {};
}

QString WaylandDesktop::monitorName(int index)
{
    return QStringLiteral("HEADLESS-%1").arg(index + 1);
}

QSize WaylandDesktop::pointsOf(const WaylandMonitor &monitor)
{
    const bool isAside = monitor.transform.endsWith(QLatin1String("90"))
        || monitor.transform.endsWith(QLatin1String("270"));
    const QSize native = isAside ? monitor.native.transposed() : monitor.native;
    return {int(native.width() / monitor.scale), int(native.height() / monitor.scale)};
}

QString WaylandDesktop::socket() const
{
    return m_environment.value(QStringLiteral("WAYLAND_DISPLAY"));
}

bool WaylandDesktop::fail(const QString &error)
{
    m_error = error;
    return false;
}

bool WaylandDesktop::makeFolders()
{
    if (!m_folder.isValid())
        return fail(m_folder.errorString());
    giveAway(m_folder.path());
    for (const char *name : {"home", "home/.config", "home/.local", "home/.local/share",
                             "home/.cache", "home/Downloads", "run", "log"}) {
        const QString path = m_folder.filePath(QLatin1String(name));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        giveAway(path);
    }
    return true;
}

bool WaylandDesktop::start()
{
    if (!makeFolders())
        return false;
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (own.contains(QLatin1String(name)))
            m_environment.insert(QLatin1String(name), own.value(QLatin1String(name)));
    }
    const QString run = m_folder.filePath(QStringLiteral("run"));
    const std::map<const char *, QString> values{
        {"HOME", home()},
        {"XDG_RUNTIME_DIR", run},
        {"XDG_CONFIG_HOME", configFolder()},
        {"XDG_DATA_HOME", home() + QStringLiteral("/.local/share")},
        {"XDG_CACHE_HOME", home() + QStringLiteral("/.cache")},
        {"XDG_SESSION_TYPE", QStringLiteral("wayland")},
        {"XDG_CURRENT_DESKTOP", isKWin() ? QStringLiteral("KDE") : QStringLiteral("sway")},
        // Always set: a program that finds no address may start a bus of its own.
        {"DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=%1/bus").arg(run)},
        {"LANG", QStringLiteral("C.UTF-8")},
        {"LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1")},
    };
    for (const auto &[name, value] : values)
        m_environment.insert(QLatin1String(name), value);
    return startBus() && (isKWin() ? startKWin() : startSway());
}

bool WaylandDesktop::startBus()
{
    const QString bus = m_folder.filePath(QStringLiteral("run/bus"));
    const QString configuration = home() + QStringLiteral("/bus.conf");
    if (!writeFile(configuration, QString::fromLatin1(busConfiguration).arg(bus).toUtf8()))
        return fail(QStringLiteral("cannot write ") + configuration);
    if (!run(QStringLiteral("dbus-daemon"),
             {QStringLiteral("--config-file=") + configuration, QStringLiteral("--nofork"),
              QStringLiteral("--nopidfile")}))
        return false;
    return waitUntil([&] { return QFile::exists(bus); })
        || fail(QStringLiteral("dbus-daemon did not get ready"));
}

bool WaylandDesktop::startSway()
{
    QString configuration = m_plan.hasXWayland ? QStringLiteral("xwayland force\n")
                                               : QStringLiteral("xwayland disable\n");
    int x = 0;
    for (size_t i = 0; i < m_plan.monitors.size(); ++i) {
        const WaylandMonitor &monitor = m_plan.monitors[i];
        configuration += QStringLiteral("output %1 resolution %2x%3 position %4 0 scale %5 "
                                        "transform %6\n")
                             .arg(monitorName(int(i)))
                             .arg(monitor.native.width())
                             .arg(monitor.native.height())
                             .arg(x)
                             .arg(monitor.scale)
                             .arg(monitor.transform);
        x += pointsOf(monitor).width();
    }
    if (m_plan.hasXWayland)
        configuration += QStringLiteral("exec echo $DISPLAY > %1/display\n").arg(home());
    configuration += QStringLiteral("output * bg #336699 solid_color\n"
                                    "default_border none\nfocus_follows_mouse no\n");
    const QString path = home() + QStringLiteral("/sway.conf");
    if (!writeFile(path, configuration.toUtf8()))
        return fail(QStringLiteral("cannot write ") + path);
    const QString runFolder = m_folder.filePath(QStringLiteral("run"));
    const QString ipc = runFolder + QStringLiteral("/sway.sock");
    if (!run(QStringLiteral("sway"), {QStringLiteral("-c"), path},
             {{QStringLiteral("WLR_BACKENDS"), QStringLiteral("headless")},
              {QStringLiteral("WLR_RENDERER"), QStringLiteral("pixman")},
              {QStringLiteral("WLR_LIBINPUT_NO_DEVICES"), QStringLiteral("1")},
              {QStringLiteral("WLR_HEADLESS_OUTPUTS"), QString::number(m_plan.monitors.size())},
              {QStringLiteral("SWAYSOCK"), ipc}}))
        return false;
    const auto sockets = [&] {
        return QDir(runFolder).entryList({QStringLiteral("wayland-?")}, QDir::System);
    };
    if (!waitUntil([&] { return QFile::exists(ipc) && !sockets().isEmpty(); }))
        return fail(QStringLiteral("sway did not get ready"));
    m_environment.insert(QStringLiteral("SWAYSOCK"), ipc);
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"),
                         runFolder + QLatin1Char('/') + sockets().first());
    const auto outputs = [&] {
        return tell({QStringLiteral("-t"), QStringLiteral("get_outputs")});
    };
    return waitUntil([&] { return outputs().array().size() == int(m_plan.monitors.size()); })
        || fail(QStringLiteral("sway has not the outputs that it was told to have"));
}

bool WaylandDesktop::startKWin()
{
    // The installed one may carry a right that cannot be had here, and then is not run at all.
    const QString program = home() + QStringLiteral("/kwin_wayland");
    QFile::copy(QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")), program);
    giveAway(program);
    const WaylandMonitor &monitor = m_plan.monitors.front();
    const QSize points = pointsOf(monitor);
    const QString display = m_folder.filePath(QStringLiteral("run/wayland-0"));
    if (!run(program,
             {QStringLiteral("--virtual"), QStringLiteral("--no-lockscreen"),
              QStringLiteral("--socket"), QStringLiteral("wayland-0"), QStringLiteral("--width"),
              QString::number(points.width()), QStringLiteral("--height"),
              QString::number(points.height()), QStringLiteral("--scale"),
              QString::number(monitor.scale), QStringLiteral("--output-count"),
              QString::number(m_plan.monitors.size())},
             {{QStringLiteral("KWIN_COMPOSE"), QStringLiteral("O2")},
              {QStringLiteral("KWIN_WAYLAND_NO_PERMISSION_CHECKS"), QStringLiteral("1")},
              {QStringLiteral("KWIN_SCREENSHOT_NO_PERMISSION_CHECKS"), QStringLiteral("1")}}))
        return false;
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"), display);
    m_kwinEye =
        std::make_unique<KWinEye>(m_environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")));
    return waitUntil([&] { return QFile::exists(display) && !look(0).isNull(); },
                     std::chrono::seconds(20))
        || fail(QStringLiteral("KWin shows nothing here"));
}

bool WaylandDesktop::showPicture(int output, const QString &path)
{
    if (!isKWin())
        return !tell({QStringLiteral("output %1 bg %2 fill").arg(outputName(output), path)})
                    .isNull();
    return run(QStringLiteral("swaybg"),
               {QStringLiteral("-o"), outputName(output), QStringLiteral("-i"), path,
                QStringLiteral("-m"), QStringLiteral("fill")});
}

QString WaylandDesktop::outputName(int index) const
{
    return isKWin() ? QStringLiteral("Virtual-%1").arg(index) : monitorName(index);
}

QStringList WaylandDesktop::asUser(const QString &path, const QStringList &arguments) const
{
    QStringList command{path};
    if (isRoot())
        command = QStringList{QStringLiteral("setpriv"),
                              QStringLiteral("--reuid=%1").arg(userWithoutRights()->pw_uid),
                              QStringLiteral("--regid=%1").arg(userWithoutRights()->pw_gid),
                              QStringLiteral("--clear-groups"),
                              QStringLiteral("--pdeathsig=SIGTERM"),
                              path};
    return command + arguments;
}

Program *WaylandDesktop::run(const QString &path, const QStringList &arguments,
                             const std::map<QString, QString> &variables)
{
    QProcessEnvironment environment = m_environment;
    for (const auto &[name, value] : variables)
        environment.insert(name, value);
    auto program = std::make_unique<Program>(
        m_folder.filePath(QStringLiteral("log/%1").arg(m_programs.size())));
    QStringList command = asUser(path, arguments);
    const QString first = command.takeFirst();
    if (!program->start(first, command, environment)) {
        fail(path + QStringLiteral(" cannot be started"));
        return nullptr;
    }
    m_programs.push_back(std::move(program));
    return m_programs.back().get();
}

QByteArray WaylandDesktop::output(const QString &path, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    QStringList command = asUser(path, arguments);
    const QString first = command.takeFirst();
    process.start(first, command);
    if (!process.waitForFinished(20000) || process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

QJsonDocument WaylandDesktop::tell(const QStringList &message)
{
    return QJsonDocument::fromJson(
        output(QStringLiteral("swaymsg"), QStringList{QStringLiteral("-r")} + message));
}

bool WaylandDesktop::writeFile(const QString &path, const QByteArray &bytes) const
{
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    giveAway(path);
    return isWritten;
}

QString WaylandDesktop::xDisplay()
{
    QFile file(home() + QStringLiteral("/display"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

QImage WaylandDesktop::look(int monitor)
{
    if (m_kwinEye)
        return m_kwinEye->look(outputName(monitor));
    const QByteArray picture =
        output(QStringLiteral("grim"),
               {QStringLiteral("-t"), QStringLiteral("ppm"), QStringLiteral("-o"),
                monitorName(monitor), QStringLiteral("-")});
    return QImage::fromData(picture, "PPM").convertToFormat(QImage::Format_RGB32);
}

QImage WaylandDesktop::lookWhenStill(int monitor)
{
    QImage last = look(monitor);
    const bool isStill = waitUntil([&] {
        QImage now = look(monitor);
        const bool isAlike = !now.isNull() && now == last;
        last = std::move(now);
        return isAlike;
    });
    return isStill ? last : QImage();
}

QStringList WaylandDesktop::windowTitles()
{
    QStringList titles;
    collectTitles(tell({QStringLiteral("-t"), QStringLiteral("get_tree")}).object(), titles);
    return titles;
}

} // namespace tovek
