// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A panel for desktop tests that draws status items from the pictures they send over the session
// bus, and tells them when they are clicked. It has one row at the top right of the screen.
//
// status_host HEIGHT COLOR
// Output: "ready" when it takes items; "item NAME" when one has been drawn; "gone NAME".

#include <QColor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>
#include <QtEndian>

#include <cstdio>

namespace {

const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");

void say(const char *what, const QString &name)
{
    std::printf("%s %s\n", what, qPrintable(name));
    std::fflush(stdout);
}

/// The picture that suits a height best: the smallest that is large enough.
QImage bestIcon(const QDBusArgument &pixmaps, int height)
{
    QImage best;
    pixmaps.beginArray();
    while (!pixmaps.atEnd()) {
        int width = 0, rows = 0;
        QByteArray bytes;
        pixmaps.beginStructure();
        pixmaps >> width >> rows >> bytes;
        pixmaps.endStructure();
        if (bytes.size() != width * rows * 4 || (best.height() >= height && rows > best.height()))
            continue;
        best = QImage(width, rows, QImage::Format_ARGB32);
        qFromBigEndian<quint32>(bytes.constData(), width * rows, best.bits());
    }
    pixmaps.endArray();
    return best;
}

} // namespace

/// The panel's window, and what items announce themselves to.
class StatusHost : public QRasterWindow
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    StatusHost(int height, const QColor &color) : m_height(height), m_color(color)
    {
        setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint
                 | Qt::WindowDoesNotAcceptFocus);
        m_watcher.setConnection(m_bus);
        m_watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &StatusHost::remove);
        arrange();
    }

    bool start()
    {
        return m_bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                                    QDBusConnection::ExportAllSlots
                                        | QDBusConnection::ExportAllProperties)
            && m_bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }
    bool isRegistered() const { return true; }
    int protocolVersion() const { return 0; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service)
    {
        m_watcher.addWatchedService(service);
        m_bus.connect(service, itemPath, itemInterface, QStringLiteral("NewIcon"), this,
                      SLOT(readAll()));
        m_items.append({service, {}});
        readAll();
    }
    void RegisterStatusNotifierHost(const QString &) { }
    void readAll()
    {
        for (const Item &item : std::as_const(m_items))
            read(item.service);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), m_color);
        for (int index = 0; index < m_items.size(); ++index) {
            const QImage &icon = m_items[index].icon;
            painter.drawImage(QRect(index * m_height + 1, 1, m_height - 2, m_height - 2), icon);
        }
    }
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        const int index = int(event->position().x()) / m_height;
        if (index < 0 || index >= m_items.size())
            return;
        const bool isMain = event->button() == Qt::LeftButton;
        QDBusMessage message = QDBusMessage::createMethodCall(
            m_items[index].service, itemPath, itemInterface,
            isMain ? QStringLiteral("Activate") : QStringLiteral("ContextMenu"));
        const QPoint at = event->globalPosition().toPoint();
        message << at.x() << at.y();
        m_bus.asyncCall(message);
    }

private:
    struct Item
    {
        QString service;
        QImage icon;
    };

    void read(const QString &service)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, itemPath, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"));
        message << itemInterface << QStringLiteral("IconPixmap");
        auto *reply = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
        connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply, service] {
            reply->deleteLater();
            const QDBusPendingReply<QDBusVariant> answer = *reply;
            for (Item &item : m_items) {
                if (item.service != service || answer.isError())
                    continue;
                item.icon = bestIcon(answer.value().variant().value<QDBusArgument>(), m_height - 2);
                arrange();
                say("item", service);
            }
        });
    }
    void remove(const QString &service)
    {
        m_items.removeIf([&](const Item &item) { return item.service == service; });
        arrange();
        say("gone", service);
    }
    void arrange()
    {
        const int width = std::max(1, int(m_items.size()) * m_height);
        setGeometry(screen()->geometry().width() - width, 0, width, m_height);
        update();
    }

    int m_height;
    QColor m_color;
    QDBusConnection m_bus = QDBusConnection::sessionBus();
    QDBusServiceWatcher m_watcher;
    QList<Item> m_items;
};

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    StatusHost host(arguments.value(1, QStringLiteral("24")).toInt(),
                    QColor(arguments.value(2, QStringLiteral("#303030"))));
    host.show();
    if (!host.start())
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    return QGuiApplication::exec();
}
#include "status_host.moc"
