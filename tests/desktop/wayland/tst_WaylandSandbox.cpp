// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program in a sandbox on sway: with ordinary windows, and all else from the portals.

#include "desktop/wayland/ExactPixels.h"
#include "support/BoxedSocket.h"

#include <QRegularExpression>
#include <QStandardPaths>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 20s;
/// In the order in which they need each other.
struct Service
{
    const char *program, *name;
};
constexpr Service services[]{
    {"/usr/libexec/xdg-permission-store", "org.freedesktop.impl.portal.PermissionStore"},
    {"/usr/libexec/xdg-desktop-portal-wlr", "org.freedesktop.impl.portal.desktop.wlr"},
    {"/usr/libexec/xdg-desktop-portal", "org.freedesktop.portal.Desktop"},
};

QString missingService()
{
    if (QStandardPaths::findExecutable(QStringLiteral("pipewire")).isEmpty())
        return QStringLiteral("pipewire is not installed");
    for (const Service &service : services) {
        if (!QFile::exists(QLatin1String(service.program)))
            return QLatin1String(service.program) + QStringLiteral(" is not installed");
    }
    return {};
}

} // namespace

class TestWaylandSandbox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(WaylandDesktop::missing());
        SKIP_BECAUSE(missingService());
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void capturesExactly_data()
    {
        QTest::addColumn<double>("scale");
        QTest::newRow("scale 1") << 1.0;
        QTest::newRow("scale 2") << 2.0;
    }
    void capturesExactly()
    {
        QFETCH(double, scale);
        const WaylandMonitor monitor{QSize(1600, 1200), scale};
        WaylandSession session({{monitor, monitor}});
        std::unique_ptr<BoxedSocket> box;
        session.beforeTheProgram = [&] { return startServices(session) && enclose(session, box); };
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.tovek->waitForLine(QStringLiteral("Wayland: overlays are full-screen")));
        verifyThatOverlaysShowTheScreens(session);
        if (QTest::currentTestFailed()) {
            qInfo() << session.tovek->lines() << session.tovek->errorLines();
            return;
        }
        QVERIFY(session.openAgain());
        session.select(1, {200, 104}, {420, 308});
        QVERIFY(session.tap("Return"));
        const QImage expected = session.expected(1, {200, 104, 220, 204});
        QCOMPARE(differentPixels(session.pasted(), expected), 0);
    }

private:
    /// On both screens, of which only one has the keyboard.
    static void verifyThatOverlaysShowTheScreens(WaylandSession &session)
    {
        for (const int pointed : {1, 0}) {
            QVERIFY(session.open("start-capture", pointed));
            for (int i = 0; i < 2; ++i)
                QCOMPARE(WaylandSession::differences(session.desktop.look(i), session.before[i]),
                         0);
            QVERIFY(session.tap("Escape"));
            QTRY_COMPARE(session.desktop.windowTitles(), QStringList());
        }
        // Before it moves again, sway shows no pointer.
        session.point(1, WaylandSession::corner);
    }
    static bool startServices(WaylandSession &session)
    {
        const auto isOnTheBus = [&](const char *name) {
            const QByteArray answer = session.desktop.output(
                QStringLiteral("gdbus"),
                {"call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/",
                 "--method", "org.freedesktop.DBus.NameHasOwner", QLatin1String(name)});
            return answer.contains("true");
        };
        if (!session.desktop.run(QStringLiteral("pipewire")))
            return false;
        for (const Service &service : services) {
            if (!session.desktop.run(QLatin1String(service.program))
                || !waitUntil([&] { return isOnTheBus(service.name); }, patience))
                return false;
        }
        return true;
    }
    static bool enclose(WaylandSession &session, std::unique_ptr<BoxedSocket> &box)
    {
        const QString folder = session.desktop.environment().value("XDG_RUNTIME_DIR") + '/';
        box = std::make_unique<BoxedSocket>(folder + "boxed",
                                            QDir(folder).filePath(session.desktop.socket()));
        // What tells the program that it is in a sandbox, of those that have no file for it.
        session.variables = {
            {"WAYLAND_DISPLAY", "boxed"}, {"SWAYSOCK", QString()}, {"SNAP", "/snap/tovek"}};
        return box->isListening();
    }
};

QTEST_GUILESS_MAIN(TestWaylandSandbox)
#include "tst_WaylandSandbox.moc"
