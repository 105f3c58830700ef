// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/HostAppId.h"

#include <QTest>

using namespace tovek;

class TestHostAppId : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheUnit_data()
    {
        QTest::addColumn<QString>("cgroups");
        QTest::addColumn<QString>("name");
        const QString user = QStringLiteral("/user.slice/user-1000.slice/user@1000.service/");
        QTest::newRow("started from GNOME's menu")
            << "0::" + user + "app.slice/app-gnome-org.tovek.Tovek-4711.scope"
            << "org.tovek.Tovek";
        QTest::newRow("started at login")
            << "0::" + user + "app.slice/app-org.tovek.Tovek@autostart.service"
            << "org.tovek.Tovek";
        QTest::newRow("a launcher that escapes")
            << "0::" + user + "app.slice/app-gnome-my\\x2dtool-12.scope"
            << "my-tool";
        QTest::newRow("a slice of its own")
            << "0::" + user + "app.slice/app-org.tovek.slice/app-org.tovek.Tovek@1.service"
            << "org.tovek.Tovek";
        QTest::newRow("a terminal")
            << "0::" + user + "app.slice/app-org.gnome.Terminal.slice/vte-spawn-1234.scope"
            << "";
        QTest::newRow("started over the bus")
            << "0::" + user + "app.slice/dbus-:1.2-org.tovek.Tovek@0.service"
            << "";
        QTest::newRow("no manager of the user's") << "0::/system.slice/ssh.service"
                                                  << "";
        QTest::newRow("an older layout of groups")
            << "12:memory:/user.slice\n1:name=systemd:" + user + "app-org.tovek.Tovek-1.scope\n"
            << "org.tovek.Tovek";
        QTest::newRow("nothing") << ""
                                 << "";
    }
    void readsTheUnit()
    {
        QFETCH(QString, cgroups);
        QTEST(hostAppId(cgroups), "name");
    }
};

QTEST_APPLESS_MAIN(TestHostAppId)
#include "tst_HostAppId.moc"
