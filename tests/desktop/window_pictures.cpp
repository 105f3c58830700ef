// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Photographs the windows of the program on a virtual desktop, for people to look at: the tabs of
// the settings, the alerts, and what an update shows. window_pictures PROGRAMS FOLDER, where
// PROGRAMS is the folder with tovek_with_updates in it; TOVEK_PROGRAM is one without updates.

#include "desktop/Launched.h"
#include "update/UpdateServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

using namespace tovek;

namespace {

// A dark desktop, as one of the desktops writes it down.
const char darkColors[] = R"([Colors:Window]
BackgroundNormal=43,43,46
ForegroundNormal=242,242,244
[Colors:View]
BackgroundNormal=30,30,32
ForegroundNormal=242,242,244
[Colors:Button]
BackgroundNormal=60,60,64
ForegroundNormal=242,242,244
[Colors:Selection]
BackgroundNormal=10,132,255
ForegroundNormal=255,255,255
[Colors:Tooltip]
BackgroundNormal=60,60,64
ForegroundNormal=242,242,244
)";

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

class Pictures
{
public:
    Pictures(const QString &programs, const QString &folder, bool isDark, int scale)
        : m_programs(programs)
        , m_folder(folder)
        , m_suffix(QStringLiteral("-%1@%2.png")
                       .arg(isDark ? QStringLiteral("dark") : QStringLiteral("light"))
                       .arg(scale))
        , m_isDark(isDark)
        , m_scale(scale)
    {
    }

    [[nodiscard]] bool take()
    {
        DesktopPlan plan;
        plan.size = QSize(1000, 700) * m_scale;
        if (!m_server.start() || !m_launched.startDesktop(plan))
            return false;
        const QString config = m_launched.desktop->configFolder();
        if (m_isDark && !write(config + QStringLiteral("/kdeglobals"), darkColors))
            return false;
        const QString appImage = m_launched.desktop->home() + QStringLiteral("/Tovek.AppImage");
        write(appImage, "the old program");
        m_launched.path = m_programs + QStringLiteral("/tovek_with_updates");
        m_launched.variables = {
            {"TEST_FEED", m_server.feedUrl().toString()},
            {"TEST_KEY", QString::fromLatin1(m_server.keys().publicKey.toBase64())},
            {"TEST_CERTIFICATE", m_server.certificateFile()},
            {"APPIMAGE", appImage},
            {"APPDIR", m_programs},
            {"QT_SCALE_FACTOR", QString::number(m_scale)},
        };
        if (m_isDark) {
            m_launched.variables["XDG_CURRENT_DESKTOP"] = QStringLiteral("KDE");
            m_launched.variables["KDE_SESSION_VERSION"] = QStringLiteral("5");
        }
        m_launched.program = m_launched.launch();
        return takeSettings() && takeUpdates() && takeWithout();
    }

private:
    bool takeSettings()
    {
        Hand &hand = *m_launched.hand;
        if (!m_launched.isInFront("General") || !save("settings-general"))
            return false;
        const QPoint origin = window().topLeft();
        m_settings = m_launched.eye->activeWindow();
        hand.click(origin + QPoint(382, 203) * m_scale);
        if (!isAlertOpen() || !save("chooser") || !hand.tap("Escape") || !isBack())
            return false;
        // "Show Tovek in menu bar"
        hand.click(origin + QPoint(405, 108) * m_scale);
        if (!isAlertOpen() || !save("alert-hidden") || !hand.tap("Return"))
            return false;
        if (!isBack())
            return false;
        hand.click(origin + QPoint(223, 36) * m_scale);
        if (!m_launched.isInFront("Shortcuts") || !save("settings-shortcuts"))
            return false;
        hand.click(origin + QPoint(360, 95) * m_scale);
        if (!save("settings-recording") || !hand.tap("Control_L+q") || !isAlertOpen()
            || !save("alert-menu") || !hand.tap("Return") || !isBack())
            return false;
        // The window manager's own.
        if (!hand.tap("Alt_L+F4") || !isAlertOpen() || !save("alert-system") || !hand.tap("Return")
            || !isBack())
            return false;
        const QImage recording = m_launched.eye->look();
        if (!hand.tap("Control_L+Shift_L+c")
            || !waitUntil([&] { return m_launched.eye->look() != recording; })
            || !save("settings-recorded"))
            return false;
        return m_launched.activateAction("about") && m_launched.isInFront("About")
            && save("settings-about") && hand.tap("Escape");
    }
    bool takeUpdates()
    {
        m_server.publish({QStringLiteral("1.4"), QByteArray(3'000'000, 'x')});
        ServerAnswer part{QByteArray(1'100'000, 'x'), 200, {}, ServerAnswer::End::stuck, 3'000'000};
        const ServerAnswer feed{m_server.body(QStringLiteral("/feed.xml"))};
        m_server.answer(QStringLiteral("/feed.xml"), {{}, 200, {}, ServerAnswer::End::never});
        if (!check("Checking for updates…", "update-checking"))
            return false;
        if (!m_launched.hand->tap("Escape") || !isClosed())
            return false;
        m_server.answer(QStringLiteral("/feed.xml"), feed);
        m_server.answer(UpdateServer::packagePath(), part);
        if (!check("A new version of Tovek is available", "update-offer")
            || !m_launched.hand->tap("Return") || !m_launched.isInFront("Downloading the update…"))
            return false;
        if (!save("update-download") || !m_launched.hand->tap("Escape") || !isClosed())
            return false;
        m_server.answer(UpdateServer::packagePath(), {QByteArray(3'000'000, 'y')});
        if (!check("A new version of Tovek is available", nullptr)
            || !m_launched.hand->tap("Return")
            || !m_launched.isInFront("Tovek could not be updated") || !save("update-refused")
            || !m_launched.hand->tap("Return") || !isClosed())
            return false;
        m_server.publish({QStringLiteral("0.0.1"), "x"});
        return check("You’re up to date!", "update-none") && m_launched.hand->tap("Return")
            && isClosed();
    }
    /// The settings of a build without updates, with the tooltip that says why.
    bool takeWithout()
    {
        if (!m_launched.activateAction("quit") || m_launched.program->waitForExit() != 0)
            return false;
        m_launched.path = qEnvironmentVariable("TOVEK_PROGRAM");
        m_launched.program = m_launched.launch();
        if (!m_launched.isInFront("General"))
            return false;
        const QPoint row = window().topLeft() + QPoint(200, 241) * m_scale;
        m_launched.hand->move(row);
        m_launched.hand->move(row + QPoint(3, 0));
        const auto isTold = [&] { return !m_launched.eye->overlays("tovek").isEmpty(); };
        const QRect settings = window();
        return waitUntil(isTold) && save("without-updates", settings);
    }
    bool check(const char *title, const char *name)
    {
        // As often as it takes: the check before may just be ending.
        const auto isShown = [&] {
            return m_launched.activateAction("check-for-updates")
                && waitUntil(
                       [&] { return m_launched.eye->activeTitle() == QString::fromUtf8(title); },
                       std::chrono::seconds(2));
        };
        return waitUntil(isShown) && (!name || save(name));
    }
    bool isClosed()
    {
        return waitUntil([&] { return m_launched.eye->activeTitle().isEmpty(); });
    }
    /// Whether the settings have the keyboard again.
    bool isBack()
    {
        return waitUntil([&] { return m_launched.eye->activeWindow() == m_settings; })
            && !m_launched.eye->lookWhenStill().isNull();
    }
    /// Whether an alert lies over the settings, and has the keyboard.
    bool isAlertOpen()
    {
        return waitUntil([&] {
            return m_launched.eye->activeWindow() != m_settings && m_launched.eye->activeWindow();
        });
    }
    /// The uppermost window of the program.
    QRect window() const
    {
        QRect native;
        for (const SeenWindow &seen : m_launched.eye->windows()) {
            if (seen.windowClass.compare(QStringLiteral("tovek"), Qt::CaseInsensitive) == 0)
                native = seen.native;
        }
        return native;
    }
    /// It, with some of what is around it.
    bool save(const char *name) const { return save(name, window()); }
    bool save(const char *name, QRect native) const
    {
        const QImage screen = m_launched.eye->lookWhenStill();
        const QString path = m_folder + QLatin1Char('/') + QLatin1String(name) + m_suffix;
        return screen.copy(native.adjusted(-8, -8, 8, 8)).save(path);
    }

    QString m_programs;
    QString m_folder;
    QString m_suffix;
    bool m_isDark;
    int m_scale;
    UpdateServer m_server;
    Launched m_launched;
    xcb_window_t m_settings = 0;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3 || !QDir().mkpath(arguments[2]))
        return 2;
    for (const bool isDark : {false, true}) {
        for (const int scale : {1, 2}) {
            Pictures pictures(arguments[1], arguments[2], isDark, scale);
            if (!pictures.take()) {
                std::puts("Not all pictures could be taken.");
                return 1;
            }
        }
    }
    return 0;
}
