// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/StatusNotifierItem.h"
#include "support/TestBus.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <array>

using namespace tovek;

/// The part of a panel that items announce themselves to.
class Watcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    QStringList items;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service) { items << service; }

Q_SIGNALS:
    void iconChanged();
};

class TestStatusNotifierItem : public QObject
{
    Q_OBJECT

private:
    const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
    TestBus bus;
    Watcher watcher;

    QDBusConnection hostBus() const
    {
        return QDBusConnection::connectToBus(bus.address(), QStringLiteral("host"));
    }
    /// A call of the host to the last registered item; the test's main loop runs meanwhile.
    QVariant call(const QString &interface, const QString &method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            watcher.items.back(), QStringLiteral("/StatusNotifierItem"), interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall pending = hostBus().asyncCall(message);
        [&] { QTRY_VERIFY(pending.isFinished()); }();
        return pending.reply().arguments().value(0);
    }
    QVariant property(const QString &name)
    {
        return call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                    {QStringLiteral("org.kde.StatusNotifierItem"), name})
            .value<QDBusVariant>()
            .variant();
    }
    static TrayPicture picture(Size size)
    {
        return {size, [](Size room, const QColor &, double) {
                    QImage image(qRound(room.width), qRound(room.height),
                                 QImage::Format_ARGB32_Premultiplied);
                    image.fill(QColor(1, 2, 3));
                    return image;
                }};
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!TestBus::isInstalled())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(bus.start());
        QVERIFY(hostBus().registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                                         QDBusConnection::ExportAllSlots));
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        watcher.items.clear();
        QVERIFY(hostBus().registerService(service));
    }
    void cleanup() { hostBus().unregisterService(service); }

    void announcesItselfWhenVisible()
    {
        StatusNotifierItem item;
        item.setPicture(picture({18, 18}));
        item.setToolTip(QStringLiteral("Tovek"));
        QTRY_VERIFY(item.hasHost());
        QVERIFY(watcher.items.isEmpty());
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        QCOMPARE(property(QStringLiteral("Id")).toString(), QStringLiteral("tovek"));
        QCOMPARE(property(QStringLiteral("Status")).toString(), QStringLiteral("Active"));
        QCOMPARE(property(QStringLiteral("ItemIsMenu")).toBool(), false);
        QVERIFY(!item.canDrag());
    }

    void announcesItsConnectionWhereItMayHaveNoName()
    {
        TestBus strict; // as that of a sandbox
        QVERIFY(strict.start({service.toUtf8()}));
        const auto connected = [&strict](const char *name) {
            return QDBusConnection::connectToBus(strict.address(), QLatin1String(name));
        };
        {
            QDBusConnection host = connected("strict-host");
            QVERIFY(host.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                                        QDBusConnection::ExportAllSlots));
            QVERIFY(host.registerService(service));
            StatusNotifierItem item(connected("guest"), StatusNotifierItem::Menu::ofHost);
            item.setPicture(picture({18, 18}));
            item.setVisible(true);
            QTRY_COMPARE(watcher.items.size(), 1);
            QVERIFY2(watcher.items.front().startsWith(':'), qPrintable(watcher.items.front()));
            for (const auto &[path, interface, name] :
                 {std::array{"/StatusNotifierItem", "org.kde.StatusNotifierItem", "Id"},
                  std::array{"/MenuBar", "com.canonical.dbusmenu", "Version"}}) {
                QDBusMessage ask = QDBusMessage::createMethodCall(
                    watcher.items.front(), path, "org.freedesktop.DBus.Properties", "Get");
                ask << interface << name;
                const QDBusPendingCall asked = host.asyncCall(ask);
                QTRY_VERIFY(asked.isFinished());
                QVERIFY2(!asked.isError(), qPrintable(asked.error().message()));
            }
            QSignalSpy changes(&watcher, &Watcher::iconChanged);
            QVERIFY(host.connect(watcher.items.front(), "/StatusNotifierItem",
                                 "org.kde.StatusNotifierItem", "NewIcon", &watcher,
                                 SIGNAL(iconChanged())));
            item.setPicture(picture({72, 18}));
            QTRY_COMPARE(changes.size(), 1);
            item.setVisible(false);
            QTRY_VERIFY(!host.interface()->isServiceRegistered(watcher.items.front()));
            item.setVisible(true);
            QTRY_COMPARE(watcher.items.size(), 2);
        }
        for (const char *name : {"strict-host", "guest"})
            QDBusConnection::disconnectFromBus(QLatin1String(name));
        QVERIFY(qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8()));
    }

    void sendsWidePicturesInSquares()
    {
        StatusNotifierItem item;
        item.setPicture(picture({72, 18}));
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        const auto icons = property(QStringLiteral("IconPixmap")).value<QDBusArgument>();
        icons.beginArray();
        QVERIFY(!icons.atEnd());
        int width = 0, height = 0;
        QByteArray bytes;
        icons.beginStructure();
        icons >> width >> height >> bytes;
        icons.endStructure();
        QCOMPARE(QSize(width, height), QSize(16, 16));
        QCOMPARE(bytes.size(), 16 * 16 * 4);
        QCOMPARE(bytes.mid((8 * 16 + 8) * 4, 4), QByteArray("\xff\x01\x02\x03", 4));
        QCOMPARE(bytes.mid(0, 4), QByteArray(4, '\0'));
    }

    void carriesItsSymbolByARimOnAPanelOfTheOtherKind()
    {
        StatusNotifierItem item;
        item.setPicture({{16, 16}, [](Size room, const QColor &ink, double) {
                             const QSize size(qRound(room.width), qRound(room.height));
                             QImage image(size, QImage::Format_ARGB32_Premultiplied);
                             image.fill(Qt::transparent);
                             QPainter(&image).fillRect(QRect(QPoint(5, 5), size - QSize(10, 10)),
                                                       ink);
                             return image;
                         }});
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        const auto icons = property(QStringLiteral("IconPixmap")).value<QDBusArgument>();
        icons.beginArray();
        int width = 0, height = 0;
        QByteArray bytes;
        icons.beginStructure();
        icons >> width >> height >> bytes;
        icons.endStructure();
        const auto pixel = [&](int x, int y) {
            return qFromBigEndian<QRgb>(bytes.constData() + (y * width + x) * 4);
        };
        // As good as opaque beside an edge, of the opposite colour, and nothing further out.
        QVERIFY(qAlpha(pixel(4, 8)) > 220);
        QVERIFY(std::abs(qGray(pixel(4, 8)) - qGray(pixel(8, 8))) > 200);
        QCOMPARE(qAlpha(pixel(2, 8)), 0);
    }

    void paintsItsIconOnlyForWhoAsksForIt()
    {
        StatusNotifierItem item;
        int paintings = 0;
        TrayPicture counted = picture({18, 18});
        counted.paint = [&, paint = counted.paint](Size room, const QColor &ink, double scale) {
            ++paintings;
            return paint(room, ink, scale);
        };
        item.setPicture(counted);
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        paintings = 0;
        QCOMPARE(property(QStringLiteral("Id")).toString(), QStringLiteral("tovek"));
        QCOMPARE(paintings, 0);
        property(QStringLiteral("IconPixmap"));
        QVERIFY(paintings > 0);
        paintings = 0;
        call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"),
             {QStringLiteral("org.kde.StatusNotifierItem")});
        QVERIFY(paintings > 0);
    }

    void tellsThatItWasChosen_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("main button") << QStringLiteral("Activate");
        QTest::newRow("other button") << QStringLiteral("ContextMenu");
    }
    void tellsThatItWasChosen()
    {
        QFETCH(QString, method);
        StatusNotifierItem item;
        int chosen = 0;
        item.onMenuRequested = [&] { ++chosen; };
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        QVERIFY(item.geometry().isEmpty());
        call(QStringLiteral("org.kde.StatusNotifierItem"), method, {300, 10});
        QTRY_COMPARE(chosen, 1);
        QCOMPARE(item.geometry().topLeft(), QPoint(300, 10));
    }

    void comesBackWithItsHost()
    {
        StatusNotifierItem item;
        int changes = 0;
        item.onHostChanged = [&] { ++changes; };
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        hostBus().unregisterService(service);
        QTRY_VERIFY(!item.hasHost());
        QVERIFY(hostBus().registerService(service));
        QTRY_COMPARE(watcher.items.size(), 2);
        QCOMPARE(changes, 3);
    }

    void tellsWhenNobodyIsThere()
    {
        hostBus().unregisterService(service);
        StatusNotifierItem item;
        int changes = 0;
        item.onHostChanged = [&] { ++changes; };
        QVERIFY(item.isLookingForHost());
        QTRY_VERIFY(!item.isLookingForHost());
        QVERIFY(!item.hasHost());
        QCOMPARE(changes, 1);
    }

    void leavesTheBusWhenHidden()
    {
        StatusNotifierItem item;
        item.setVisible(true);
        QTRY_COMPARE(watcher.items.size(), 1);
        const auto isThere = [this] {
            return hostBus().interface()->isServiceRegistered(watcher.items.back()).value();
        };
        QVERIFY(isThere());
        item.setVisible(false);
        QTRY_VERIFY(!isThere());
    }
};

QTEST_MAIN(TestStatusNotifierItem)
#include "tst_StatusNotifierItem.moc"
