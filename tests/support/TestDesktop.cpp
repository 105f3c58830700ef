// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/TestDesktop.h"

#include "support/Wait.h"
#include "support/XConnection.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <xcb/randr.h>

namespace tovek {

namespace {

// Nothing but what the test itself starts: the ordinary configuration would start whatever
// services are installed on the machine as soon as somebody asks for them.
const char busConfiguration[] = R"(<busconfig>
<type>session</type>
<listen>unix:path=%1</listen>
<auth>EXTERNAL</auth>
<servicedir>%2</servicedir>
<policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy>
</busconfig>
)";

// A window manager announces itself before it listens (openbox 3.6.1 loses windows mapped in
// between), so it is ready when it has shown a window of ours.
bool hasShownAWindow(const XConnection &connection)
{
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto isShown = [&] {
        xcb_map_window(connection, window);
        const XPtr<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            connection, xcb_get_window_attributes(connection, window), nullptr));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    };
    const auto isGone = [&] {
        const xcb_atom_t list = connection.atom("_NET_CLIENT_LIST");
        return connection.property(connection.root(), list).isEmpty();
    };
    const bool wasShown = waitUntil(isShown);
    xcb_destroy_window(connection, window);
    return wasShown && waitUntil(isGone);
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

TestDesktop::TestDesktop(DesktopPlan plan)
    : m_plan(std::move(plan))
    , m_server(m_plan.size, m_plan.depth)
{
}

TestDesktop::~TestDesktop()
{
    while (!m_programs.empty())
        m_programs.pop_back();
}

QString TestDesktop::missing(const DesktopPlan &plan)
{
    QStringList needed{QStringLiteral("dbus-daemon")};
    if (!plan.windowManager.isEmpty())
        needed.append(plan.windowManager);
    if (plan.hasCompositor)
        needed.append(QStringLiteral("picom"));
    for (const QString &name : std::as_const(needed)) {
        if (QStandardPaths::findExecutable(name).isEmpty())
            return name + QStringLiteral(" is not installed");
    }
    return XServer::missing();
}

QString TestDesktop::monitorName(int index)
{
    return QStringLiteral("monitor%1").arg(index);
}

bool TestDesktop::fail(const QString &error)
{
    m_error = error;
    return false;
}

bool TestDesktop::start()
{
    if (!m_folder.isValid())
        return fail(m_folder.errorString());
    for (const char *name :
         {"home/.config", "home/.local/share", "home/.cache", "home/Downloads", "run", "log"})
        QDir(m_folder.path()).mkpath(QLatin1String(name));
    const QString run = m_folder.filePath(QStringLiteral("run"));
    QFile::setPermissions(run, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!m_server.start())
        return fail(m_server.error());

    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    for (const char *name :
         {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "USER"}) {
        if (own.contains(QLatin1String(name)))
            m_environment.insert(QLatin1String(name), own.value(QLatin1String(name)));
    }
    const std::map<const char *, QString> values{
        {"DISPLAY", displayName()},
        {"HOME", home()},
        {"XDG_RUNTIME_DIR", run},
        {"XDG_CONFIG_HOME", configFolder()},
        {"XDG_DATA_HOME", home() + QStringLiteral("/.local/share")},
        {"XDG_CACHE_HOME", home() + QStringLiteral("/.cache")},
        {"XDG_SESSION_TYPE", QStringLiteral("x11")},
        // Always set: a program that finds no address may start a bus of its own.
        {"DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=%1/bus").arg(run)},
        {"LANG", QStringLiteral("C.UTF-8")},
        {"QT_QPA_PLATFORM", QStringLiteral("xcb")},
        {"LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1")},
    };
    for (const auto &[name, value] : values)
        m_environment.insert(QLatin1String(name), value);
    return setMonitors() && startBus() && startWindowManager();
}

bool TestDesktop::startBus()
{
    if (!m_plan.hasBus)
        return true;
    const QString socket = m_folder.filePath(QStringLiteral("run/bus"));
    const QString configuration = m_folder.filePath(QStringLiteral("bus.conf"));
    if (!QDir().mkpath(services())
        || !writeFile(configuration,
                      QString::fromLatin1(busConfiguration).arg(socket, services()).toUtf8()))
        return fail(QStringLiteral("cannot write ") + configuration);
    QFile::remove(socket);
    m_bus = this->run(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--config-file=") + configuration, QStringLiteral("--nofork"),
                       QStringLiteral("--nopidfile")});
    if (!m_bus)
        return false;
    if (!waitUntil([&] { return QFile::exists(socket); }))
        return fail(QStringLiteral("dbus-daemon did not get ready"));
    return true;
}

bool TestDesktop::startWindowManager()
{
    m_watcher = std::make_unique<XConnection>(displayName());
    const XConnection &connection = *m_watcher;
    if (!connection.isOpen())
        return fail(QStringLiteral("cannot connect to the X server"));
    if (!m_plan.windowManager.isEmpty()) {
        const xcb_atom_t check = connection.atom("_NET_SUPPORTING_WM_CHECK");
        // It writes no text, and to read how accents are composed is most of openbox's start.
        if (!run(m_plan.windowManager, {},
                 {{QStringLiteral("XCOMPOSEFILE"), QStringLiteral("/dev/null")}}))
            return false;
        if (!waitUntil([&] { return !connection.property(connection.root(), check).isEmpty(); })
            || !hasShownAWindow(connection))
            return fail(m_plan.windowManager + QStringLiteral(" did not get ready"));
    }
    if (!m_plan.hasCompositor)
        return true;
    const xcb_atom_t selection = connection.atom("_NET_WM_CM_S0");
    QStringList options{QStringLiteral("--config"),   QStringLiteral("/dev/null"),
                        QStringLiteral("--backend"),  QStringLiteral("xrender"),
                        QStringLiteral("--no-vsync"), QStringLiteral("--shadow")};
    if (m_plan.hasFades)
        options.append(QStringLiteral("--fading"));
    if (!run(QStringLiteral("picom"), options))
        return false;
    const auto isOwned = [&] {
        const XPtr<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            connection, xcb_get_selection_owner(connection, selection), nullptr));
        return owner && owner->owner != XCB_NONE;
    };
    return waitUntil(isOwned) || fail(QStringLiteral("picom did not get ready"));
}

bool TestDesktop::setMonitors()
{
    for (size_t index = 0; index < m_plan.monitors.size(); ++index) {
        if (!setMonitor(monitorName(int(index)), m_plan.monitors[index], index == 0))
            return fail(QStringLiteral("the X server refused a monitor"));
    }
    return true;
}

bool TestDesktop::setMonitor(const QString &name, QRect native, bool isPrimary)
{
    // xcb-randr 1.15 cannot send this request (an assertion in libxcb fails), so a program does.
    // A monitor that claims the only output replaces the one that the server makes of it.
    const QString geometry = QStringLiteral("%1/%2x%3/%4+%5+%6")
                                 .arg(native.width())
                                 .arg(native.width() * 254 / 960)
                                 .arg(native.height())
                                 .arg(native.height() * 254 / 960)
                                 .arg(native.x())
                                 .arg(native.y());
    Program *setter =
        run(QStringLiteral("xrandr"),
            {QStringLiteral("--setmonitor"), (isPrimary ? QStringLiteral("*") : QString()) + name,
             geometry, isPrimary ? QStringLiteral("screen") : QStringLiteral("none")});
    return setter && setter->waitForExit() == 0;
}

bool TestDesktop::removeMonitor(const QString &name)
{
    const XConnection connection(displayName());
    if (!connection.isOpen())
        return false;
    const XPtr<xcb_generic_error_t> error(xcb_request_check(
        connection,
        xcb_randr_delete_monitor_checked(connection, connection.root(),
                                         connection.atom(name.toLatin1().constData()))));
    return !error;
}

Program *TestDesktop::run(const QString &path, const QStringList &arguments,
                          const std::map<QString, QString> &variables)
{
    QProcessEnvironment environment = m_environment;
    for (const auto &[name, value] : variables)
        environment.insert(name, value);
    const QString log = QStringLiteral("%1/log/%2").arg(m_folder.path()).arg(m_programs.size());
    auto program = std::make_unique<Program>(log);
    if (!program->start(path, arguments, environment)) {
        m_error = path + QStringLiteral(" did not start");
        return nullptr;
    }
    m_programs.push_back(std::move(program));
    return m_programs.back().get();
}

Program *TestDesktop::showPicture(QRect native, const QStringList &more)
{
    QStringList arguments;
    for (int number : {native.x(), native.y(), native.width(), native.height()})
        arguments.append(QString::number(number));
    Program *program = run(QStringLiteral(TOVEK_PICTURE_WINDOW), arguments + more);
    return program && program->waitForLine(QStringLiteral("painted")) ? program : nullptr;
}

} // namespace tovek
