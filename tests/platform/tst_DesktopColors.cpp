// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"
#include "support/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
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
        const bool isDark = DesktopColors(QDBusConnection::sessionBus()).areDark();
        service.unregisterService(name);
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        qunsetenv("QT_STYLE_OVERRIDE");
        QTEST(isDark, "isDark");
    }

    void hearsOfChanges_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("signal");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<bool>("isHeard");
        const QString portal = QStringLiteral("/org/freedesktop/portal/desktop");
        const QString changed = QStringLiteral("org.freedesktop.portal.Settings.SettingChanged");
        const auto setting = [](const char *space) {
            return QVariantList{QString::fromLatin1(space), QStringLiteral("color-scheme"),
                                QVariant::fromValue(QDBusVariant(1U))};
        };
        QTest::newRow("the portal")
            << portal << changed << setting("org.freedesktop.appearance") << true;
        QTest::newRow("the portal, of something else")
            << portal << changed << setting("org.gnome.desktop.interface") << false;
        const QString store = QStringLiteral("/ca/desrt/dconf/Writer/user");
        const QString notify = QStringLiteral("ca.desrt.dconf.Writer.Notify");
        const auto keys = [](const char *path, const QStringList &names) {
            return QVariantList{QString::fromLatin1(path), names, QString()};
        };
        QTest::newRow("the key") << store << notify
                                 << keys("/org/gnome/desktop/interface/color-scheme", {}) << true;
        QTest::newRow("several keys")
            << store << notify
            << keys("/org/gnome/desktop/interface/", {"gtk-theme", "color-scheme"}) << true;
        QTest::newRow("all keys") << store << notify << keys("/", {}) << true;
        QTest::newRow("another key")
            << store << notify << keys("/org/gnome/desktop/interface/gtk-theme", {}) << false;
    }
    void hearsOfChanges()
    {
        QFETCH(QString, path);
        QFETCH(QString, signal);
        QFETCH(QVariantList, arguments);
        QFETCH(bool, isHeard);
        DesktopColors colors(QDBusConnection::sessionBus());
        int heard = 0;
        colors.onChanged = [&] { ++heard; };
        const qsizetype dot = signal.lastIndexOf(QLatin1Char('.'));
        QDBusMessage message =
            QDBusMessage::createSignal(path, signal.left(dot), signal.mid(dot + 1));
        message.setArguments(arguments);
        QVERIFY(QDBusConnection::sessionBus().send(message));
        if (isHeard)
            QTRY_COMPARE(heard, 1);
        QTest::qWait(isHeard ? 0 : 200);
        QCOMPARE(heard, isHeard ? 1 : 0);
    }

private:
    SessionBus m_bus;
    QTemporaryDir m_folder;
    QThread m_thread;
    Portal m_portal;
};

QTEST_GUILESS_MAIN(TestDesktopColors)
#include "tst_DesktopColors.moc"
