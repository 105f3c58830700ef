// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/GnomeDesktop.h"

#include "support/Wait.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <cmath>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto startLimit = 60s;
constexpr int pointerButton = 0x110;
const auto shell = QStringLiteral("org.gnome.Shell");
const auto remoteDesktop = QStringLiteral("org.gnome.Mutter.RemoteDesktop");

} // namespace

GnomeDesktop::GnomeDesktop() : m_bus(QString()) { }

GnomeDesktop::~GnomeDesktop()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QString GnomeDesktop::missing()
{
    if (!QFile::exists(QStringLiteral("/usr/share/xdg-desktop-portal/portals/gnome.portal")))
        return QStringLiteral("xdg-desktop-portal-gnome is not installed");
    return UserDesktop::missing({"dbus-daemon", "gnome-shell", "Xwayland", "gsettings"});
}

bool GnomeDesktop::start(const Setup &setup)
{
    m_setup = setup;
    const QString run = m_folder.filePath(QStringLiteral("run"));
    const std::map<QString, QString> more{
        {"XDG_CURRENT_DESKTOP", QStringLiteral("GNOME")},
        // Services that the bus starts must know it from the beginning.
        {"WAYLAND_DISPLAY", QStringLiteral("wayland-0")},
        {"DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=%1/session").arg(run)},
        {"DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=%1/system").arg(run)},
        {"GSETTINGS_BACKEND", QStringLiteral("keyfile")},
        {"NO_AT_BRIDGE", QStringLiteral("1")},
    };
    return makeHome({"home/Pictures", "looks"}, more)
        && startBus(QStringLiteral("system"), QStringLiteral("system"))
        && startBus(QStringLiteral("session"), QStringLiteral("session"),
                    QStringLiteral("<standard_session_servicedirs/>"))
        && startShell() && applyScales() && startHand();
}

QRect GnomeDesktop::place(qsizetype monitor) const
{
    QRect place;
    for (qsizetype i = 0; i <= monitor; ++i) {
        place = QRect(QPoint(place.x() + place.width(), 0),
                      (monitors()[i].size().toSizeF() / pixelsPerUnit(i)).toSize());
    }
    return place;
}

double GnomeDesktop::pixelsPerUnit(qsizetype monitor) const
{
    return m_setup.layout == Setup::Layout::inPixels ? 1 : m_setup.scales.value(monitor, 1);
}

bool GnomeDesktop::setScales(const QList<double> &scales)
{
    m_setup.scales = scales;
    return applyScales();
}

double GnomeDesktop::nearestScale(double wanted, QSize size, const QString &state)
{
    const QRegularExpression mode(QStringLiteral("'%1x%2@[^']+', %1, %2, [0-9.]+, [0-9.]+, "
                                                 "\\[([^\\]]*)\\]")
                                      .arg(size.width())
                                      .arg(size.height()));
    double nearest = 1;
    for (const QString &offered : mode.match(state).captured(1).split(QStringLiteral(", "))) {
        if (std::abs(offered.toDouble() - wanted) < std::abs(nearest - wanted))
            nearest = offered.toDouble();
    }
    return nearest;
}

bool GnomeDesktop::applyScales()
{
    if (m_setup.scales.isEmpty())
        return true;
    const auto ask = [this](const char *method, const QStringList &arguments) {
        return output(
            QStringLiteral("gdbus"),
            QStringList{
                "call", "--session", "-d", "org.gnome.Mutter.DisplayConfig", "-o",
                "/org/gnome/Mutter/DisplayConfig", "-m",
                QStringLiteral("org.gnome.Mutter.DisplayConfig.%1").arg(QLatin1String(method))}
                + arguments);
    };
    const QString state = QString::fromUtf8(ask("GetCurrentState", {}));
    const auto serial =
        QRegularExpression(QStringLiteral("^\\(uint32 ([0-9]+)")).match(state).captured(1);
    for (qsizetype i = 0; i < m_setup.scales.size(); ++i)
        m_setup.scales[i] = nearestScale(m_setup.scales[i], monitors()[i].size(), state);
    QStringList configured;
    for (qsizetype i = 0; i < m_setup.scales.size(); ++i) {
        const QString size =
            QStringLiteral("%1x%2").arg(monitors()[i].width()).arg(monitors()[i].height());
        const QRegularExpression pattern(
            QStringLiteral("\\(\\('([^']+)', [^)]*\\), \\[\\('(%1@[^']+)'").arg(size));
        const QRegularExpressionMatch found = pattern.match(state);
        configured << QStringLiteral("(%1, 0, %2, 0, %3, [('%4', '%5', {})])")
                          .arg(place(i).x())
                          .arg(m_setup.scales[i], 0, 'g', 17)
                          .arg(i == 0 ? "true" : "false", found.captured(1), found.captured(2));
    }
    const QString list = QStringLiteral("@a(iiduba(ssa{sv})) [%1]").arg(configured.join(", "));
    // Of those that can be told, which begin with points.
    const bool canBeTold = state.contains(QLatin1String("'supports-changing-layout-mode': <true>"));
    const QString layout = QStringLiteral("{'layout-mode': <uint32 %1>}")
                               .arg(m_setup.layout == Setup::Layout::inPixels ? 2 : 1);
    const bool isSet =
        !ask("ApplyMonitorsConfig", {serial, "1", list, canBeTold ? layout : QStringLiteral("{}")})
             .isNull();
    return isSet || fail(QStringLiteral("mutter wants no scales %1: %2").arg(list, state));
}

bool GnomeDesktop::startShell()
{
    QStringList arguments{QStringLiteral("--headless"), QStringLiteral("--wayland-display"),
                          QStringLiteral("wayland-0"), QStringLiteral("--unsafe-mode")};
    for (const QRect &monitor : monitors())
        arguments << QStringLiteral("--virtual-monitor")
                  << QStringLiteral("%1x%2").arg(monitor.width()).arg(monitor.height());
    if (!m_setup.hasXWayland)
        arguments << QStringLiteral("--no-x11");
    const auto set = [this](const char *schema, const char *key, const QString &value) {
        output(QStringLiteral("gsettings"), {"set", schema, key, value});
    };
    // It has some about how it was started, which come and go.
    set("org.gnome.desktop.notifications", "show-banners", QStringLiteral("false"));
    if (!m_setup.scales.isEmpty() && m_setup.layout == Setup::Layout::inPoints)
        set("org.gnome.mutter", "experimental-features",
            QStringLiteral("['scale-monitor-framebuffer']"));
    const QString background = home() + QStringLiteral("/background.png");
    if (m_setup.background.save(background)) {
        giveAway(background);
        set("org.gnome.desktop.background", "picture-uri", QStringLiteral("file://") + background);
    }
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
    // Else a picture of one minute is compared with the desktop of the next.
    evaluate(QStringLiteral("Main.panel.statusArea.dateMenu.container.hide()"));
    if (!m_setup.hasXWayland)
        return true;
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
    // Some of the way may be lost, as that of a new device is; and laid out in pixels, the desktop
    // makes it longer where they are small.
    const double factor = m_setup.layout == Setup::Layout::inPixels
        ? *std::max_element(m_setup.scales.begin(), m_setup.scales.end())
        : 1;
    for (int i = 0; i < 20; ++i) {
        const QStringList now =
            evaluate(QStringLiteral("global.get_pointer().join()")).split(QLatin1Char(','));
        const QPoint way = at - QPoint(now.value(0).toInt(), now.value(1).toInt());
        if (way.isNull())
            return;
        callHand(QStringLiteral("NotifyPointerMotionRelative"),
                 {way.x() / factor, way.y() / factor});
        QThread::msleep(20);
    }
}

void GnomeDesktop::button(bool isDown) const
{
    callHand(QStringLiteral("NotifyPointerButton"), {pointerButton, isDown});
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
    return evaluate(
               QStringLiteral(
                   "global.get_window_actors().filter(a => a.get_texture()).map(a => a.meta_window)"
                   ".filter(w => w.is_override_redirect() && w.get_title() != 'gnome-shell')"
                   ".map(w => w.get_title()).join()"))
        .split(QLatin1Char(','), Qt::SkipEmptyParts);
}

int GnomeDesktop::windowCount(const QString &title) const
{
    return evaluate(
               QStringLiteral("global.get_window_actors().filter(a => a.visible)"
                              ".map(a => a.meta_window).filter(w => w.get_title() == '%1').length")
                   .arg(title))
        .toInt();
}

QImage GnomeDesktop::look()
{
    return takeLook(QStringLiteral("Screenshot"), {false, false});
}

QImage GnomeDesktop::lookAt(qsizetype monitor)
{
    QRect at = place(monitor);
    // It takes the units of its own widgets, of which a desktop in pixels makes more pixels each.
    const double unit = m_setup.layout == Setup::Layout::inPixels ? m_setup.scales.value(0, 1) : 1;
    at = QRect((at.topLeft() / unit), (at.size() / unit));
    return takeLook(QStringLiteral("ScreenshotArea"),
                    {at.x(), at.y(), at.width(), at.height(), false});
}

QImage GnomeDesktop::takeLook(const QString &method, const QVariantList &arguments)
{
    const QString file = m_folder.filePath(QStringLiteral("looks/%1.png").arg(++m_pictures));
    QDBusMessage call = QDBusMessage::createMethodCall(
        shell + QStringLiteral(".Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        shell + QStringLiteral(".Screenshot"), method);
    call.setArguments(arguments + QVariantList{file});
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

} // namespace tovek
