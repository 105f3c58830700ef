// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusMenu.h"

#include "foundation/MainThread.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <algorithm>

namespace {

/// An item with all below it.
struct MenuLayout
{
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

struct MenuProperties
{
    int id = 0;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties << layout.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties >> layout.children;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuProperties &of)
{
    argument.beginStructure();
    argument << of.id << of.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuProperties &of)
{
    argument.beginStructure();
    argument >> of.id >> of.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(MenuLayout)
Q_DECLARE_METATYPE(MenuProperties)

namespace tovek {

namespace {

const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
constexpr uint protocolVersion = 3;

void registerTypes()
{
    static const bool isDone = [] {
        qDBusRegisterMetaType<MenuLayout>();
        qDBusRegisterMetaType<MenuProperties>();
        qDBusRegisterMetaType<QList<MenuProperties>>();
        qDBusRegisterMetaType<QList<QStringList>>();
        qDBusRegisterMetaType<QList<int>>();
        return true;
    }();
    Q_UNUSED(isDone)
}

QVariantMap menuProperties()
{
    return {{QStringLiteral("Version"), protocolVersion},
            {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
            {QStringLiteral("Status"), QStringLiteral("normal")},
            {QStringLiteral("IconThemePath"), QStringList()}};
}

} // namespace

QString DBusMenu::introspect(const QString &) const
{
    return QStringLiteral(
        "<interface name=\"com.canonical.dbusmenu\">"
        "<property name=\"Version\" type=\"u\" access=\"read\"/>"
        "<property name=\"TextDirection\" type=\"s\" access=\"read\"/>"
        "<property name=\"Status\" type=\"s\" access=\"read\"/>"
        "<property name=\"IconThemePath\" type=\"as\" access=\"read\"/>"
        "<method name=\"GetLayout\"><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"i\" direction=\"in\"/><arg type=\"as\" direction=\"in\"/>"
        "<arg type=\"u\" direction=\"out\"/><arg type=\"(ia{sv}av)\" direction=\"out\"/></method>"
        "<method name=\"GetGroupProperties\"><arg type=\"ai\" direction=\"in\"/>"
        "<arg type=\"as\" direction=\"in\"/><arg type=\"a(ia{sv})\" direction=\"out\"/></method>"
        "<method name=\"GetProperty\"><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"s\" direction=\"in\"/><arg type=\"v\" direction=\"out\"/></method>"
        "<method name=\"Event\"><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"s\" direction=\"in\"/><arg type=\"v\" direction=\"in\"/>"
        "<arg type=\"u\" direction=\"in\"/></method>"
        "<method name=\"EventGroup\"><arg type=\"a(isvu)\" direction=\"in\"/>"
        "<arg type=\"ai\" direction=\"out\"/></method>"
        "<method name=\"AboutToShow\"><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"b\" direction=\"out\"/></method>"
        "<method name=\"AboutToShowGroup\"><arg type=\"ai\" direction=\"in\"/>"
        "<arg type=\"ai\" direction=\"out\"/><arg type=\"ai\" direction=\"out\"/></method>"
        "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal>"
        "</interface>");
}

bool DBusMenu::handleMessage(const QDBusMessage &message, const QDBusConnection &bus)
{
    Q_ASSERT(isMainThread());
    registerTypes();
    const QString method = message.member();
    const QVariantList arguments = message.arguments();
    if (message.interface() == propertiesInterface) {
        const QVariantMap all = menuProperties();
        const QString name = arguments.value(1).toString();
        if (method == QStringLiteral("GetAll"))
            return bus.send(message.createReply(QVariant::fromValue(all)));
        return method == QStringLiteral("Get") && all.contains(name)
            && bus.send(message.createReply(QVariant::fromValue(QDBusVariant(all.value(name)))));
    }
    static const QStringList methods{
        QStringLiteral("GetLayout"),       QStringLiteral("GetGroupProperties"),
        QStringLiteral("GetProperty"),     QStringLiteral("Event"),
        QStringLiteral("EventGroup"),      QStringLiteral("AboutToShow"),
        QStringLiteral("AboutToShowGroup")};
    if ((message.interface() != menuInterface && !message.interface().isEmpty())
        || !methods.contains(method))
        return false;
    return bus.send(message.createReply(answer(method, arguments, bus)));
}

QVariantList DBusMenu::answer(const QString &method, const QVariantList &arguments,
                              const QDBusConnection &bus)
{
    const auto group = [&] { return arguments.value(0).value<QDBusArgument>(); };
    if (method == QStringLiteral("GetLayout"))
        return layout(arguments);
    if (method == QStringLiteral("GetGroupProperties"))
        return groupProperties(arguments);
    if (method == QStringLiteral("GetProperty")) {
        const QVariantMap all = propertiesOf(arguments.value(0).toInt());
        const QVariant value = all.value(arguments.value(1).toString(), QString());
        return {QVariant::fromValue(QDBusVariant(value))};
    }
    if (method == QStringLiteral("Event")) {
        happened(arguments.value(0).toInt(), arguments.value(1).toString());
        return {};
    }
    if (method == QStringLiteral("EventGroup")) {
        const QDBusArgument events = group();
        for (events.beginArray(); !events.atEnd();) {
            int id = 0;
            QString event;
            QDBusVariant data;
            uint time = 0;
            events.beginStructure();
            events >> id >> event >> data >> time;
            events.endStructure();
            happened(id, event);
        }
        return {QVariant::fromValue(QList<int>())};
    }
    const bool isNew = update(bus);
    if (method == QStringLiteral("AboutToShow"))
        return {isNew};
    return {QVariant::fromValue(isNew ? QList<int>{0} : QList<int>()),
            QVariant::fromValue(QList<int>())};
}

QVariantList DBusMenu::layout(const QVariantList &arguments)
{
    const int parent = arguments.value(0).toInt();
    const bool hasChildren = parent == 0 && arguments.value(1).toInt() != 0;
    if (m_rows.empty() && rows)
        m_rows = rows();
    MenuLayout root{parent, propertiesOf(parent), {}};
    for (int id = 1; hasChildren && id <= int(m_rows.size()); ++id)
        root.children << QVariant::fromValue(MenuLayout{id, propertiesOf(id), {}});
    return {m_revision, QVariant::fromValue(root)};
}

QVariantList DBusMenu::groupProperties(const QVariantList &arguments) const
{
    QList<int> ids = qdbus_cast<QList<int>>(arguments.value(0));
    if (ids.isEmpty()) { // all of them
        for (int id = 0; id <= int(m_rows.size()); ++id)
            ids << id;
    }
    QList<MenuProperties> all;
    for (const int id : std::as_const(ids))
        all << MenuProperties{id, propertiesOf(id)};
    return {QVariant::fromValue(all)};
}

QVariantMap DBusMenu::propertiesOf(int id) const
{
    if (id == 0)
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    if (id < 1 || id > int(m_rows.size()))
        return {};
    const TrayMenuRow &row = m_rows[size_t(id - 1)];
    if (row.isSeparator)
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    QString label = row.title;
    label.replace(QLatin1Char('_'), QStringLiteral("__")); // one would mark a key
    QVariantMap properties{{QStringLiteral("label"), label},
                           {QStringLiteral("enabled"), row.isEnabled}};
    if (!row.keys.isEmpty())
        properties.insert(QStringLiteral("shortcut"),
                          QVariant::fromValue(QList<QStringList>{row.keys}));
    return properties;
}

/// True when the rows are others than before.
bool DBusMenu::update(const QDBusConnection &bus)
{
    std::vector<TrayMenuRow> now = rows ? rows() : std::vector<TrayMenuRow>();
    if (now == m_rows)
        return false;
    m_rows = std::move(now);
    QDBusMessage changed = QDBusMessage::createSignal(QLatin1String(path), menuInterface,
                                                      QStringLiteral("LayoutUpdated"));
    changed << ++m_revision << 0;
    bus.send(changed);
    return true;
}

void DBusMenu::happened(int id, const QString &event)
{
    const bool isRow = id >= 1 && id <= int(m_rows.size());
    if (isRow && event == QStringLiteral("clicked") && m_rows[size_t(id - 1)].isEnabled && onChosen)
        onChosen(id - 1);
}

} // namespace tovek
