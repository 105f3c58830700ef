// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/GnomeDesktop.h"

#include "support/Wait.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <pwd.h>
#include <unistd.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto startLimit = 60s;
constexpr int leftButton = 0x110;
const char busConfiguration[] = R"(<busconfig><type>%1</type><listen>unix:path=%2</listen>
<auth>EXTERNAL</auth>%3<policy context="default"><allow user="*"/>
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>)";
const auto shell = QStringLiteral("org.gnome.Shell");
const auto remoteDesktop = QStringLiteral("org.gnome.Mutter.RemoteDesktop");

bool isRoot()
{
    return geteuid() == 0;
}

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

} // namespace

GnomeDesktop::GnomeDesktop() : m_bus(QString()) { }

GnomeDesktop::~GnomeDesktop()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
    while (!m_programs.empty())
        m_programs.pop_back();
}

QString GnomeDesktop::missing()
{
    for (const char *name : {"dbus-daemon", "gnome-shell", "Xwayland", "gsettings", "setpriv"}) {
        if (QStandardPaths::findExecutable(QLatin1String(name)).isEmpty())
            return QLatin1String(name) + QStringLiteral(" is not installed");
    }
    const QString portals = QStringLiteral("/usr/share/xdg-desktop-portal/portals/gnome.portal");
    if (!QFile::exists(portals))
        return QStringLiteral("xdg-desktop-portal-gnome is not installed");
    return isRoot() && !userWithoutRights() ? QStringLiteral("there is no user \"nobody\"")
                                            : QString();
}

bool GnomeDesktop::fail(const QString &error)
{
    m_error = error;
    return false;
}

bool GnomeDesktop::makeFolders()
{
    if (!m_folder.isValid())
        return fail(m_folder.errorString());
    giveAway(m_folder.path());
    for (const char *name :
         {"home", "home/.config", "home/.local", "home/.local/share", "home/.cache",
          "home/Downloads", "home/Pictures", "run", "log", "looks"}) {
        const QString path = m_folder.filePath(QLatin1String(name));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        giveAway(path);
    }
    return true;
}

bool GnomeDesktop::start()
{
    if (!makeFolders())
        return false;
    const QString run = m_folder.filePath(QStringLiteral("run"));
    const std::map<const char *, QString> values{
        {"PATH", qEnvironmentVariable("PATH")},
        {"HOME", home()},
        {"XDG_RUNTIME_DIR", run},
        {"XDG_CONFIG_HOME", home() + QStringLiteral("/.config")},
        {"XDG_DATA_HOME", home() + QStringLiteral("/.local/share")},
        {"XDG_CACHE_HOME", home() + QStringLiteral("/.cache")},
        {"XDG_SESSION_TYPE", QStringLiteral("wayland")},
        {"XDG_CURRENT_DESKTOP", QStringLiteral("GNOME")},
        // Services that the bus starts must know it from the beginning.
        {"WAYLAND_DISPLAY", QStringLiteral("wayland-0")},
        {"DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=%1/session").arg(run)},
        {"DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=%1/system").arg(run)},
        {"GSETTINGS_BACKEND", QStringLiteral("keyfile")},
        {"NO_AT_BRIDGE", QStringLiteral("1")},
        {"LANG", QStringLiteral("C.UTF-8")},
        {"LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1")},
    };
    for (const auto &[name, value] : values)
        m_environment.insert(QLatin1String(name), value);
    return startBus(QStringLiteral("system"), QStringLiteral("system"), {})
        && startBus(QStringLiteral("session"), QStringLiteral("session"),
                    QStringLiteral("<standard_session_servicedirs/>"))
        && startShell() && startHand();
}

bool GnomeDesktop::startBus(const QString &name, const QString &type, const QString &services)
{
    const QString socket = m_folder.filePath(QStringLiteral("run/") + name);
    const QString file = home() + QStringLiteral("/%1.conf").arg(name);
    const QString text = QString::fromLatin1(busConfiguration).arg(type, socket, services);
    if (!writeFile(file, text.toUtf8())
        || !run(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--config-file=") + file, QStringLiteral("--nofork")}))
        return fail(QStringLiteral("no bus"));
    return waitUntil([&] { return QFile::exists(socket); })
        || fail(QStringLiteral("dbus-daemon did not get ready"));
}

bool GnomeDesktop::startShell()
{
    QStringList arguments{QStringLiteral("--headless"), QStringLiteral("--wayland"),
                          QStringLiteral("--wayland-display"), QStringLiteral("wayland-0"),
                          QStringLiteral("--unsafe-mode")};
    for (const QRect &monitor : monitors())
        arguments << QStringLiteral("--virtual-monitor")
                  << QStringLiteral("%1x%2").arg(monitor.width()).arg(monitor.height());
    if (!run(QStringLiteral("gnome-shell"), arguments))
        return false;
    m_bus = QDBusConnection::connectToBus(
        m_environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")),
        QStringLiteral("gnome ") + m_folder.path());
    const bool isUp = waitUntil(
        [this] { return evaluate(QStringLiteral("!Main.layoutManager._startingUp")) == "true"; },
        startLimit);
    // It opens its overview about a second after its start; hidden before, it comes all the same.
    const auto isTrue = [this](const char *script) {
        return waitUntil([&] { return evaluate(QLatin1String(script)) == "true"; }, startLimit);
    };
    const bool isReady = isUp && isTrue("Main.overview.visible")
        && isTrue("Main.overview.hide(); !Main.overview.visible");
    if (!isReady)
        return fail(QStringLiteral("gnome-shell did not get ready"));
    const QString display = evaluate(QStringLiteral("imports.gi.GLib.getenv('DISPLAY')"));
    const QString cookie = evaluate(QStringLiteral("imports.gi.GLib.getenv('XAUTHORITY')"));
    m_environment.insert(QStringLiteral("DISPLAY"), display);
    m_environment.insert(QStringLiteral("XAUTHORITY"), cookie);
    return !display.isEmpty() || fail(QStringLiteral("gnome-shell has no XWayland"));
}

bool GnomeDesktop::startHand()
{
    const QString path = QStringLiteral("/org/gnome/Mutter/RemoteDesktop");
    const QDBusReply<QDBusObjectPath> session = m_bus.call(QDBusMessage::createMethodCall(
        remoteDesktop, path, remoteDesktop, QStringLiteral("CreateSession")));
    if (!session.isValid())
        return fail(session.error().message());
    m_hand = session.value().path();
    callHand(QStringLiteral("Start"), {});
    // Of a new device the first key is lost, and the first motion.
    tap(183);
    moveTo({10, 10});
    return true;
}

void GnomeDesktop::callHand(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        remoteDesktop, m_hand, remoteDesktop + QStringLiteral(".Session"), method);
    call.setArguments(arguments);
    const QDBusMessage answer = m_bus.call(call);
    if (answer.type() == QDBusMessage::ErrorMessage)
        qWarning("%s: %s", qPrintable(method), qPrintable(answer.errorMessage()));
}

void GnomeDesktop::key(int evdevCode, bool isDown) const
{
    callHand(QStringLiteral("NotifyKeyboardKeycode"), {uint(evdevCode), isDown});
}

void GnomeDesktop::tap(int evdevCode) const
{
    key(evdevCode, true);
    key(evdevCode, false);
}

void GnomeDesktop::moveTo(QPoint at)
{
    // Some of the way may be lost, as that of a new device is.
    for (int i = 0; i < 5; ++i) {
        const QStringList now =
            evaluate(QStringLiteral("global.get_pointer().join()")).split(QLatin1Char(','));
        const QPoint way = at - QPoint(now.value(0).toInt(), now.value(1).toInt());
        if (way.isNull())
            return;
        callHand(QStringLiteral("NotifyPointerMotionRelative"), {double(way.x()), double(way.y())});
        QThread::msleep(20);
    }
}

void GnomeDesktop::button(bool isDown) const
{
    callHand(QStringLiteral("NotifyPointerButton"), {leftButton, isDown});
}

QString GnomeDesktop::evaluate(const QString &script) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(shell, QStringLiteral("/org/gnome/Shell"),
                                                       shell, QStringLiteral("Eval"));
    call << script;
    const QList<QVariant> answer = m_bus.call(call, QDBus::Block, 5000).arguments();
    QString text = answer.value(0).toBool() ? answer.value(1).toString() : QString();
    if (text.startsWith(QLatin1Char('"')))
        text = text.mid(1, text.size() - 2);
    return text;
}

QString GnomeDesktop::focusedTitle() const
{
    // The overview takes the focus, and may come late.
    return evaluate(QStringLiteral("if (Main.overview.visible) Main.overview.hide(); "
                                   "global.display.focus_window?.get_title()"));
}

QStringList GnomeDesktop::unmanagedTitles() const
{
    return evaluate(QStringLiteral(
                        "global.get_window_actors().map(a => a.meta_window)"
                        ".filter(w => w.is_override_redirect() && w.get_title() != 'gnome-shell')"
                        ".map(w => w.get_title()).join()"))
        .split(QLatin1Char(','), Qt::SkipEmptyParts);
}

QImage GnomeDesktop::look()
{
    const QString file = m_folder.filePath(QStringLiteral("looks/%1.png").arg(++m_pictures));
    QDBusMessage call = QDBusMessage::createMethodCall(
        shell + QStringLiteral(".Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        shell + QStringLiteral(".Screenshot"), QStringLiteral("Screenshot"));
    call << false << false << file;
    m_bus.call(call);
    return QImage(file).convertToFormat(QImage::Format_RGB32);
}

bool GnomeDesktop::permitScreenshots(const QString &appId) const
{
    const QString store = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
    QDBusMessage call = QDBusMessage::createMethodCall(
        store, QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"), store,
        QStringLiteral("SetPermission"));
    call << QStringLiteral("screenshot") << true << QStringLiteral("screenshot") << appId
         << QStringList{QStringLiteral("yes")};
    return m_bus.call(call).type() == QDBusMessage::ReplyMessage;
}

bool GnomeDesktop::act(const QString &action) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.tovek.Tovek"), QStringLiteral("/org/tovek/Tovek"),
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("ActivateAction"));
    call << action << QVariantList() << QVariantMap();
    return m_bus.call(call).type() == QDBusMessage::ReplyMessage;
}

QStringList GnomeDesktop::pictures() const
{
    return QDir(home() + QStringLiteral("/Pictures")).entryList(QDir::Files)
        + QDir(home()).entryList({QStringLiteral("*.png")}, QDir::Files);
}

QStringList GnomeDesktop::asUser(const QString &path, const QStringList &arguments) const
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

Program *GnomeDesktop::run(const QString &path, const QStringList &arguments,
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

QByteArray GnomeDesktop::output(const QString &path, const QStringList &arguments)
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

bool GnomeDesktop::writeFile(const QString &path, const QByteArray &bytes) const
{
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    giveAway(path);
    return isWritten;
}

} // namespace tovek
