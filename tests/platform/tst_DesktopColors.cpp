// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DesktopColors.h"
#include "support/TestBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QTest>
#include <QThread>

#include <cmath>

using namespace tovek;

/// Answers as the portal of a desktop does.
class Portal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint scheme = 0;
    QVariant accent; ///< invalid: it knows of none
    int delayMs = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &, const QString &key)
    {
        QThread::msleep(ulong(delayMs));
        if (key != QLatin1String("accent-color"))
            return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
        if (!accent.isValid())
            sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"));
        return QDBusVariant(QVariant::fromValue(QDBusVariant(accent)));
    }
};

struct Parts
{
    double red, green, blue;
};

QDBusArgument &operator<<(QDBusArgument &out, const Parts &parts)
{
    out.beginStructure();
    out << parts.red << parts.green << parts.blue;
    out.endStructure();
    return out;
}
const QDBusArgument &operator>>(const QDBusArgument &in, Parts &)
{
    return in;
}

class TestDesktopColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!TestBus::isInstalled())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(m_bus.start());
        qDBusRegisterMetaType<Parts>();
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
        if (portal >= 0) {
            m_portal.scheme = uint(portal);
            m_portal.accent = {};
            QVERIFY(startPortal());
        }
        const bool isDark = DesktopColors(QDBusConnection::sessionBus()).theme().isDark;
        stopPortal();
        qunsetenv("QT_STYLE_OVERRIDE");
        QTEST(isDark, "isDark");
    }

    void takesAnAccentWithinTheRangeOfColors_data()
    {
        QTest::addColumn<QVariant>("given");
        QTest::addColumn<QColor>("accent");
        const auto parts = [](double red, double green, double blue) {
            return QVariant::fromValue(Parts{red, green, blue});
        };
        QTest::newRow("a colour") << parts(0, 0.2, 1) << QColor(0, 51, 255);
        QTest::newRow("below the range") << parts(-1, -1, -1) << QColor();
        QTest::newRow("above it") << parts(0.5, 1.01, 0.5) << QColor();
        QTest::newRow("no number") << parts(std::nan(""), 0, 0) << QColor();
        QTest::newRow("something else") << QVariant(QStringLiteral("blue")) << QColor();
        QTest::newRow("an older portal") << QVariant() << QColor();
    }
    void takesAnAccentWithinTheRangeOfColors()
    {
        QFETCH(QVariant, given);
        m_portal.scheme = 1;
        m_portal.accent = given;
        QVERIFY(startPortal());
        const WindowTheme theme = DesktopColors(QDBusConnection::sessionBus()).theme();
        stopPortal();
        QVERIFY(theme.isDark);
        QFETCH(QColor, accent);
        QCOMPARE(theme.accent.isValid(), accent.isValid());
        QCOMPARE(theme.accent.rgb(), accent.rgb());
    }

    void waitsAsideForABusyPortal()
    {
        m_portal.scheme = 1;
        m_portal.accent = QVariant::fromValue(Parts{1, 0, 0});
        m_portal.delayMs = 500;
        QVERIFY(startPortal());
        const auto answer = DesktopColors(QDBusConnection::sessionBus()).ask();
        QTRY_VERIFY(answer.isFinished());
        stopPortal();
        m_portal.delayMs = 0;
        QCOMPARE(answer.result().accent, QColor(Qt::red));
        QVERIFY(answer.result().isDark);
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
    bool startPortal()
    {
        QDBusConnection service =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
        service.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &m_portal,
                               QDBusConnection::ExportAllSlots);
        return service.registerService(m_name);
    }
    void stopPortal()
    {
        QDBusConnection service(QStringLiteral("portal"));
        if (service.isConnected())
            service.unregisterService(m_name);
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }

    const QString m_name = QStringLiteral("org.freedesktop.portal.Desktop");
    TestBus m_bus;
    QTemporaryDir m_folder;
    QThread m_thread;
    Portal m_portal;
};

QTEST_GUILESS_MAIN(TestDesktopColors)
#include "tst_DesktopColors.moc"
