// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"
#include "support/SessionBus.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QTest>
#include <QThread>

using namespace tovek;

/// Answers as the portal of a desktop does.
class Portal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &, const QString &)
    {
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
    }
};

class TestDesktopColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!SessionBus::isInstalled())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(m_bus.start());
        qputenv("PATH", m_folder.path().toUtf8() + ':' + qgetenv("PATH"));
        // Out of this thread, which waits for its answers.
        m_portal.moveToThread(&m_thread);
        m_thread.start();
    }
    void cleanupTestCase()
    {
        m_thread.quit();
        m_thread.wait();
    }

    void asksThePortalThenGnomesKey_data()
    {
        QTest::addColumn<int>("portal"); // -1: there is none
        QTest::addColumn<QByteArray>("key"); // empty: there is none
        QTest::addColumn<QByteArray>("style");
        QTest::addColumn<bool>("isDark");
        QTest::newRow("nobody says anything") << -1 << QByteArray() << QByteArray() << false;
        QTest::newRow("dark portal") << 1 << QByteArray("'default'") << QByteArray() << true;
        QTest::newRow("light portal") << 2 << QByteArray("'prefer-dark'") << QByteArray() << false;
        QTest::newRow("dark key alone")
            << -1 << QByteArray("'prefer-dark'") << QByteArray() << true;
        QTest::newRow("light key alone") << -1 << QByteArray("'default'") << QByteArray() << false;
        QTest::newRow("dark style") << -1 << QByteArray() << QByteArray("Adwaita-Dark") << true;
        QTest::newRow("another style") << -1 << QByteArray() << QByteArray("fusion") << false;
    }
    void asksThePortalThenGnomesKey()
    {
        QFETCH(int, portal);
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, style);
        QFile tool(m_folder.filePath(QStringLiteral("gsettings")));
        QVERIFY(tool.open(QIODevice::WriteOnly));
        tool.write(key.isEmpty() ? QByteArray("#!/bin/sh\nexit 1\n")
                                 : "#!/bin/sh\necho \"" + key + "\"\n");
        tool.close();
        QVERIFY(tool.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner));
        qputenv("QT_STYLE_OVERRIDE", style);
        const QString name = QStringLiteral("org.freedesktop.portal.Desktop");
        QDBusConnection service =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
        if (portal >= 0) {
            m_portal.scheme = uint(portal);
            service.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &m_portal,
                                   QDBusConnection::ExportAllSlots);
            QVERIFY(service.registerService(name));
        }
        const bool isDark = areDarkWindowsWanted();
        service.unregisterService(name);
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        qunsetenv("QT_STYLE_OVERRIDE");
        QTEST(isDark, "isDark");
    }

private:
    SessionBus m_bus;
    QTemporaryDir m_folder;
    QThread m_thread;
    Portal m_portal;
};

QTEST_GUILESS_MAIN(TestDesktopColors)
#include "tst_DesktopColors.moc"
