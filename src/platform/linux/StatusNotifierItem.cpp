// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/StatusNotifierItem.h"

#include "platform/linux/BusPixmap.h"
#include "platform/linux/BusProbe.h"
#include "platform/linux/DBusMenu.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace tovek {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemProperties = QStringLiteral("org.freedesktop.DBus.Properties");

using namespace std::chrono_literals;

constexpr auto ownBusLimit = 1s;
constexpr int iconSizes[]{16, 22, 24, 32, 44, 48};

} // namespace

/// The item as the bus sees it.
class StatusNotifierItem::Object : public QDBusVirtualObject
{
public:
    explicit Object(StatusNotifierItem &item) : m_item(item) { }

    QString introspect(const QString &) const override
    {
        return QStringLiteral(
            "<interface name=\"org.kde.StatusNotifierItem\">"
            "<property name=\"Category\" type=\"s\" access=\"read\"/>"
            "<property name=\"Id\" type=\"s\" access=\"read\"/>"
            "<property name=\"Title\" type=\"s\" access=\"read\"/>"
            "<property name=\"Status\" type=\"s\" access=\"read\"/>"
            "<property name=\"WindowId\" type=\"i\" access=\"read\"/>"
            "<property name=\"IconName\" type=\"s\" access=\"read\"/>"
            "<property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
            "<property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>"
            "<property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/>"
            "<property name=\"Menu\" type=\"o\" access=\"read\"/>"
            "<method name=\"Activate\"><arg type=\"i\" direction=\"in\"/>"
            "<arg type=\"i\" direction=\"in\"/></method>"
            "<method name=\"SecondaryActivate\"><arg type=\"i\" direction=\"in\"/>"
            "<arg type=\"i\" direction=\"in\"/></method>"
            "<method name=\"ContextMenu\"><arg type=\"i\" direction=\"in\"/>"
            "<arg type=\"i\" direction=\"in\"/></method>"
            "<method name=\"Scroll\"><arg type=\"i\" direction=\"in\"/>"
            "<arg type=\"s\" direction=\"in\"/></method>"
            "<signal name=\"NewIcon\"/><signal name=\"NewToolTip\"/>"
            "</interface>");
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const QVariantList arguments = message.arguments();
        if (message.interface() == itemProperties)
            return handleProperties(message, bus);
        if (message.interface() != itemInterface && !message.interface().isEmpty())
            return false;
        const QString method = message.member();
        if (method == QStringLiteral("Scroll")) {
            bus.send(message.createReply());
            return true;
        }
        if (method != QStringLiteral("Activate") && method != QStringLiteral("ContextMenu")
            && method != QStringLiteral("SecondaryActivate"))
            return false;
        // The host may hold its pointer until it has its answer.
        bus.send(message.createReply());
        m_item.chosen(arguments.value(0).toInt(), arguments.value(1).toInt());
        return true;
    }

private:
    bool handleProperties(const QDBusMessage &message, const QDBusConnection &bus)
    {
        const QString iconName = QStringLiteral("IconPixmap");
        QVariantMap all = plainProperties();
        if (message.member() == QStringLiteral("GetAll")) {
            all.insert(iconName, icon());
            bus.send(message.createReply(QVariant::fromValue(all)));
            return true;
        }
        if (message.member() != QStringLiteral("Get"))
            return false;
        const QString name = message.arguments().value(1).toString();
        if (name == iconName)
            all.insert(iconName, icon());
        if (all.contains(name)) {
            bus.send(message.createReply(QVariant::fromValue(QDBusVariant(all.value(name)))));
        } else {
            bus.send(message.createErrorReply(QDBusError::UnknownProperty,
                                              QStringLiteral("No property ") + name));
        }
        return true;
    }

    /// In all sizes, which takes too long for who asks for something else.
    QVariant icon() const
    {
        BusPixmaps icon;
        if (m_item.m_picture.paint) {
            for (const int side : iconSizes)
                icon << busPixmap(pictureFor(side), side);
        }
        return QVariant::fromValue(icon);
    }

    /// A menu that the host draws has no row for a picture: a tiny one is better than none there.
    const TrayPicture &pictureFor(int side) const
    {
        const TrayPicture &picture = m_item.m_picture;
        return m_item.drawsMenu() ? picture : shownIn(picture, {double(side), double(side)});
    }

    /// All but the icon.
    QVariantMap plainProperties() const
    {
        QVariantMap all{
            {QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
            {QStringLiteral("Id"), QStringLiteral("tovek")},
            {QStringLiteral("Title"), QStringLiteral("Tovek")},
            {QStringLiteral("Status"), QStringLiteral("Active")},
            {QStringLiteral("WindowId"), 0},
            {QStringLiteral("IconName"), QString()},
            {QStringLiteral("ToolTip"),
             QVariant::fromValue(BusToolTip{{}, {}, m_item.m_toolTip, {}})},
            {QStringLiteral("ItemIsMenu"), m_item.m_menu != nullptr},
        };
        if (m_item.m_menu)
            all.insert(QStringLiteral("Menu"),
                       QVariant::fromValue(QDBusObjectPath(QLatin1String(DBusMenu::path))));
        return all;
    }

    StatusNotifierItem &m_item;
};

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, Menu menu) : m_bus(std::move(bus))
{
    if (menu == Menu::ofHost) {
        m_menu = std::make_unique<DBusMenu>();
        m_menu->rows = [this] { return menuRows ? menuRows() : std::vector<TrayMenuRow>(); };
        m_menu->onChosen = [this](int row) {
            if (onMenuRow)
                onMenuRow(row);
        };
    }
    qDBusRegisterMetaType<BusPixmap>();
    qDBusRegisterMetaType<BusPixmaps>();
    qDBusRegisterMetaType<BusToolTip>();
    if (m_bus.isConnected())
        watchHosts();
}

StatusNotifierItem::~StatusNotifierItem()
{
    unregisterItem();
}

void StatusNotifierItem::setBus(const QDBusConnection &bus)
{
    unregisterItem();
    m_watcher.reset();
    m_bus = bus;
    setHasHost(false);
    if (m_bus.isConnected())
        watchHosts();
}

void StatusNotifierItem::setVisible(bool isVisible)
{
    m_isVisible = isVisible;
    if (isVisible)
        registerItem();
    else
        unregisterItem();
}

void StatusNotifierItem::setPicture(const TrayPicture &picture)
{
    m_picture = picture;
    if (!m_service.isEmpty())
        itemBus().send(
            QDBusMessage::createSignal(itemPath, itemInterface, QStringLiteral("NewIcon")));
}

void StatusNotifierItem::setToolTip(const QString &text)
{
    m_toolTip = text;
    if (!m_service.isEmpty())
        itemBus().send(
            QDBusMessage::createSignal(itemPath, itemInterface, QStringLiteral("NewToolTip")));
}

void StatusNotifierItem::watchHosts()
{
    m_watcher = std::make_unique<QDBusServiceWatcher>(watcherService, m_bus,
                                                      QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                unregisterItem();
                setHasHost(!owner.isEmpty());
                registerItem();
            });
    const QDBusMessage ask = [] {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
        message << watcherService;
        return message;
    }();
    m_isLooking = true;
    auto *reply = new QDBusPendingCallWatcher(m_bus.asyncCall(ask), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        const QDBusPendingReply<bool> answer = *reply;
        setHasHost(m_hasHost || (!answer.isError() && answer.value()));
        registerItem();
    });
}

void StatusNotifierItem::setHasHost(bool hasHost)
{
    if (m_hasHost == hasHost && !m_isLooking)
        return;
    m_hasHost = hasHost;
    m_isLooking = false;
    if (onHostChanged)
        onHostChanged();
}

void StatusNotifierItem::registerItem()
{
    if (!m_isVisible || !m_hasHost || !m_service.isEmpty())
        return;
    static int serial = 0;
    const QString number =
        QStringLiteral("%1-%2").arg(QCoreApplication::applicationPid()).arg(++serial);
    const QString service = itemInterface + QLatin1Char('-') + number;
    m_object = std::make_unique<Object>(*this);
    if (offerObjects(m_bus) && m_bus.registerService(service))
        m_service = service;
    else
        registerUnnamed(number);
    if (m_service.isEmpty()) {
        m_object.reset();
        return;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(
        watcherService, watcherPath, watcherService, QStringLiteral("RegisterStatusNotifierItem"));
    message << m_service;
    itemBus().asyncCall(message);
}

/// The bus of a sandbox gives no names away but the program's own, and hosts take the number of a
/// connection as well. It has to be the item's alone: to close it is what takes the item out of the
/// panel.
void StatusNotifierItem::registerUnnamed(const QString &number)
{
    withdrawObjects(m_bus);
    if (!m_bus.isConnected() || probeBus(sessionBusAddress(), ownBusLimit) != BusHealth::answers)
        return;
    const QString name = QStringLiteral("tovek-item-") + number;
    m_ownBus = QDBusConnection::connectToBus(QString::fromLatin1(sessionBusAddress()), name);
    if (m_ownBus->isConnected() && offerObjects(*m_ownBus))
        m_service = m_ownBus->baseService();
    else
        closeOwnBus();
}

/// Before the host hears of the name, since it reads them as soon as it does.
bool StatusNotifierItem::offerObjects(QDBusConnection &bus)
{
    if (m_menu)
        bus.registerVirtualObject(QLatin1String(DBusMenu::path), m_menu.get());
    return bus.registerVirtualObject(itemPath, m_object.get());
}

void StatusNotifierItem::withdrawObjects(QDBusConnection &bus)
{
    bus.unregisterObject(itemPath);
    bus.unregisterObject(QLatin1String(DBusMenu::path));
}

void StatusNotifierItem::closeOwnBus()
{
    QDBusConnection::disconnectFromBus(m_ownBus->name());
    m_ownBus.reset();
}

void StatusNotifierItem::unregisterItem()
{
    if (m_service.isEmpty())
        return;
    // Giving the name back is what takes the item out of the panel.
    if (!m_ownBus)
        m_bus.unregisterService(m_service);
    withdrawObjects(itemBus());
    if (m_ownBus)
        closeOwnBus();
    m_object.reset();
    m_service.clear();
}

void StatusNotifierItem::chosen(int x, int y)
{
    m_chosenAt = x > 0 || y > 0 ? QRect(x, y, 1, 1) : QRect();
    // From the main loop, not from inside the host's call.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (onMenuRequested)
                onMenuRequested();
        },
        Qt::QueuedConnection);
}

} // namespace tovek
