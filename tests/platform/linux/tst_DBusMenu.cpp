// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusMenu.h"
#include "support/TestBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QTest>

using namespace tovek;

/// A row as a host reads it.
struct HostRow
{
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

static const QDBusArgument &operator>>(const QDBusArgument &argument, HostRow &row)
{
    argument.beginStructure();
    argument >> row.id >> row.properties >> row.children;
    argument.endStructure();
    return argument;
}

/// What a host tells in a group.
struct HostEvent
{
    int id = 0;
    QString event;
};

static QDBusArgument &operator<<(QDBusArgument &argument, const HostEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.event << QDBusVariant(0) << 0U;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, HostEvent &event)
{
    QDBusVariant data;
    uint time = 0;
    argument.beginStructure();
    argument >> event.id >> event.event >> data >> time;
    argument.endStructure();
    return argument;
}

class TestDBusMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!TestBus::isInstalled())
            QSKIP("dbus-daemon is not installed");
        qDBusRegisterMetaType<HostEvent>();
        qDBusRegisterMetaType<QList<HostEvent>>();
        QVERIFY(m_bus.start());
        QVERIFY(hostBus().isConnected());
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_rows = {{QStringLiteral("Start"), false, true, {QStringLiteral("Print")}},
                  {{}, true, true, {}},
                  {QStringLiteral("save_as"), false, false, {}}};
        m_chosen.clear();
        m_menu = std::make_unique<DBusMenu>();
        m_menu->rows = [this] { return m_rows; };
        m_menu->onChosen = [this](int row) { m_chosen << row; };
        QVERIFY(ownBus().registerVirtualObject(QLatin1String(DBusMenu::path), m_menu.get()));
    }
    void cleanup() { ownBus().unregisterObject(QLatin1String(DBusMenu::path)); }

    void tellsItsRows()
    {
        const HostRow root = layout();
        QCOMPARE(root.id, 0);
        QCOMPARE(root.properties.value("children-display").toString(), QStringLiteral("submenu"));
        QCOMPARE(root.children.size(), 3);
        const HostRow first = qdbus_cast<HostRow>(unpacked(root.children[0]));
        QCOMPARE(first.id, 1);
        QCOMPARE(first.properties.value("label").toString(), QStringLiteral("Start"));
        QCOMPARE(first.properties.value("enabled").toBool(), true);
        QCOMPARE(qdbus_cast<QList<QStringList>>(first.properties.value("shortcut")),
                 QList<QStringList>{{"Print"}});
        const HostRow second = qdbus_cast<HostRow>(unpacked(root.children[1]));
        QCOMPARE(second.properties.value("type").toString(), QStringLiteral("separator"));
        const HostRow third = qdbus_cast<HostRow>(unpacked(root.children[2]));
        QCOMPARE(third.properties.value("label").toString(), QStringLiteral("save__as"));
        QCOMPARE(third.properties.value("enabled").toBool(), false);
    }

    void tellsWhatWasChosen()
    {
        layout();
        const auto data = QVariant::fromValue(QDBusVariant(0));
        call("Event", {1, QStringLiteral("hovered"), data, 0U});
        call("Event", {1, QStringLiteral("clicked"), data, 0U});
        call("Event", {3, QStringLiteral("clicked"), data, 0U}); // cannot be chosen
        call("Event", {0, QStringLiteral("clicked"), data, 0U});
        call("Event", {4, QStringLiteral("clicked"), data, 0U});
        QCOMPARE(m_chosen, QList<int>{0});
    }

    void tellsWhatWasChosenTogether()
    {
        layout();
        const QList<HostEvent> events{{1, QStringLiteral("hovered")},
                                      {1, QStringLiteral("clicked")}};
        const QDBusMessage answer = call("EventGroup", {QVariant::fromValue(events)});
        QCOMPARE(answer.signature(), QStringLiteral("ai"));
        QCOMPARE(m_chosen, QList<int>{0});
    }

    void tellsThePropertiesOfSome()
    {
        layout();
        const QDBusMessage answer =
            call("GetGroupProperties", {QVariant::fromValue(QList<int>{1, 3}), QStringList()});
        QCOMPARE(answer.signature(), QStringLiteral("a(ia{sv})"));
        QCOMPARE(call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0})}).signature(),
                 QStringLiteral("aiai"));
    }

    void readsItsRowsAnewWhenItIsToBeShown()
    {
        layout();
        QCOMPARE(call("AboutToShow", {0}).arguments().value(0).toBool(), false);
        m_rows[2].isEnabled = true;
        QCOMPARE(call("AboutToShow", {0}).arguments().value(0).toBool(), true);
        const HostRow third = qdbus_cast<HostRow>(unpacked(layout().children[2]));
        QCOMPARE(third.properties.value("enabled").toBool(), true);
    }

    void knowsNoOtherMethod() { QCOMPARE(call("Explode", {}).type(), QDBusMessage::ErrorMessage); }

private:
    static QVariant unpacked(const QVariant &child)
    {
        return child.canConvert<QDBusVariant>() ? child.value<QDBusVariant>().variant() : child;
    }
    QDBusConnection ownBus() const
    {
        return QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("own"));
    }
    QDBusConnection hostBus() const
    {
        return QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("host"));
    }
    QDBusMessage call(const char *method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            ownBus().baseService(), QLatin1String(DBusMenu::path),
            QStringLiteral("com.canonical.dbusmenu"), QLatin1String(method));
        message.setArguments(arguments);
        const QDBusPendingCall pending = hostBus().asyncCall(message);
        [&] { QTRY_VERIFY(pending.isFinished()); }();
        return pending.reply();
    }
    HostRow layout()
    {
        const QDBusMessage answer = call("GetLayout", {0, -1, QStringList()});
        return qdbus_cast<HostRow>(answer.arguments().value(1));
    }

    TestBus m_bus;
    std::vector<TrayMenuRow> m_rows;
    std::unique_ptr<DBusMenu> m_menu;
    QList<int> m_chosen;
};

QTEST_GUILESS_MAIN(TestDBusMenu)
#include "tst_DBusMenu.moc"
