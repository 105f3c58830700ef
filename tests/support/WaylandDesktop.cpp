// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/WaylandDesktop.h"

#include "support/Wait.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace tovek {

namespace {

void collectTitles(const QJsonObject &node, QStringList &titles)
{
    if (node.contains(QLatin1String("pid")))
        titles << node.value(QLatin1String("name")).toString();
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue &child : node.value(QLatin1String(children)).toArray())
            collectTitles(child.toObject(), titles);
    }
}

/// Its own version; 0 where it does not run. The installed program may carry a right that cannot be
/// had here, and then is not run at all; a copy has none.
int versionOfKWin()
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("kwin_wayland"));
    QFile::copy(QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")), copy);
    QProcess program;
    program.start(copy, {QStringLiteral("--version")});
    program.waitForFinished();
    static const QRegularExpression version(QStringLiteral("kwin (\\d+)\\."));
    return version.match(QString::fromUtf8(program.readAll())).captured(1).toInt();
}

/// From version 6 on, a KWin without a screen draws without OpenGL unless there is a graphics card,
/// and then answers every request for a picture with an error.
bool showsPicturesOfKWin()
{
    static const bool shows = versionOfKWin() < 6
        || !QDir(QStringLiteral("/dev/dri"))
                .entryList({QStringLiteral("renderD*")}, QDir::System)
                .isEmpty();
    return shows;
}

} // namespace

WaylandDesktop::WaylandDesktop(WaylandPlan plan) : m_plan(std::move(plan)) { }

WaylandDesktop::~WaylandDesktop() = default;

QString WaylandDesktop::missing(const WaylandPlan &plan)
{
    QStringList needed{QStringLiteral("dbus-daemon"), QStringLiteral("swaybg")};
    if (plan.compositor == WaylandPlan::Compositor::sway)
        needed << QStringLiteral("sway") << QStringLiteral("swaymsg") << QStringLiteral("grim");
    else
        needed << QStringLiteral("kwin_wayland");
    if (plan.hasXWayland)
        needed << QStringLiteral("Xwayland");
    const QString reason = UserDesktop::missing(needed);
    if (reason.isEmpty() && plan.compositor == WaylandPlan::Compositor::kwin
        && !showsPicturesOfKWin())
        return QStringLiteral("this KWin gives no pictures without a graphics card");
    return reason;
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

bool WaylandDesktop::start()
{
    const std::map<QString, QString> more{
        {"XDG_CURRENT_DESKTOP", isKWin() ? QStringLiteral("KDE") : QStringLiteral("sway")},
        // Always set: a program that finds no address may start a bus of its own.
        {"DBUS_SESSION_BUS_ADDRESS",
         QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("run/bus"))},
    };
    return makeHome({}, more) && startBus(QStringLiteral("bus"), QStringLiteral("session"))
        && (isKWin() ? startKWin() : startSway());
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
              // Newer ones leave the pointer out of pictures here, until somebody asks for it.
              {QStringLiteral("WLR_NO_HARDWARE_CURSORS"), QStringLiteral("1")},
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
    if (!waitUntil([&] { return outputs().array().size() == int(m_plan.monitors.size()); }))
        return fail(QStringLiteral("sway has not the outputs that it was told to have"));
    // A program of its own draws it, and on a busy machine it comes after the first looks.
    return waitUntil([&] { return hasBackground(); })
        || fail(QStringLiteral("sway shows no background"));
}

bool WaylandDesktop::hasBackground()
{
    for (size_t i = 0; i < m_plan.monitors.size(); ++i) {
        const QImage seen = look(int(i));
        // It is one pixel, made large: where scales are fractions, sway 1.10 has it fade towards
        // the edges. In the very middle lies the pointer.
        const QPoint middle = seen.rect().center() - QPoint(20, 20);
        if (seen.isNull() || qBlue(seen.pixel(middle)) < 0x80)
            return false;
    }
    return true;
}

bool WaylandDesktop::install(const QString &name, const QByteArray &desktopFile)
{
    const QString folder = home() + QStringLiteral("/.local/share/applications");
    QDir().mkpath(folder);
    giveAway(folder);
    return writeFile(folder + QStringLiteral("/%1.desktop").arg(name), desktopFile)
        || fail(QStringLiteral("cannot write a desktop file"));
}

bool WaylandDesktop::installForKWin()
{
    const auto entry = [](const QString &program, const QByteArray &permission) {
        return "[Desktop Entry]\nType=Application\nName=Test\nNoDisplay=true\nExec="
            + QFile::encodeName(QFileInfo(program).canonicalFilePath()) + "\nX-KDE-" + permission
            + "\n";
    };
    if (!install(QStringLiteral("eye"),
                 entry(QStringLiteral(TOVEK_KWIN_EYE),
                       "DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2"))
        || !install(QStringLiteral("hand"),
                    entry(QCoreApplication::applicationFilePath(),
                          "Wayland-Interfaces=org_kde_kwin_fake_input")))
        return false;
    if (!m_plan.isInstalled)
        return true;
    QFile file(QStringLiteral(TOVEK_DESKTOP_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QString program = QFileInfo(qEnvironmentVariable("TOVEK_PROGRAM")).canonicalFilePath();
    return install(QStringLiteral("org.tovek.Tovek"),
                   file.readAll().replace("Exec=tovek", "Exec=" + QFile::encodeName(program)));
}

bool WaylandDesktop::startKWin()
{
    if (!installForKWin())
        return false;
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
             {{QStringLiteral("KWIN_COMPOSE"), QStringLiteral("O2")}}))
        return false;
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"), display);
    m_kwinEye = run(QStringLiteral(TOVEK_KWIN_EYE));
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

QJsonDocument WaylandDesktop::tell(const QStringList &message)
{
    return QJsonDocument::fromJson(
        output(QStringLiteral("swaymsg"), QStringList{QStringLiteral("-r")} + message));
}

QString WaylandDesktop::xDisplay()
{
    QFile file(home() + QStringLiteral("/display"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

QImage WaylandDesktop::look(int monitor)
{
    if (isKWin())
        return lookAtKWin(outputName(monitor));
    const QByteArray picture =
        output(QStringLiteral("grim"),
               {QStringLiteral("-t"), QStringLiteral("ppm"), QStringLiteral("-o"),
                monitorName(monitor), QStringLiteral("-")});
    return QImage::fromData(picture, "PPM").convertToFormat(QImage::Format_RGB32);
}

QImage WaylandDesktop::lookAtKWin(const QString &output)
{
    if (!m_kwinEye)
        return {};
    const QString path = home() + QStringLiteral("/eye.ppm");
    const qsizetype answered = m_kwinEye->lines().size();
    m_kwinEye->writeLine(QStringLiteral("%1 %2").arg(output, path).toUtf8());
    if (!waitUntil([&] { return m_kwinEye->lines().size() > answered; })
        || m_kwinEye->lines().last() != QLatin1String("yes"))
        return {};
    return QImage(path).convertToFormat(QImage::Format_RGB32);
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
