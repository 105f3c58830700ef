// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeMutter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QFile>

namespace tovek {

namespace {

const QString castPathOfFake = QStringLiteral("/org/gnome/Mutter/ScreenCast");
constexpr uint firstNode = 40;

struct MonitorId
{
    QString connector;
};

struct MonitorMode
{
    QSize size;
    bool isCurrent = false;
};

struct ListedMonitor
{
    MonitorId id;
    QList<MonitorMode> modes;
};

struct LogicalMonitor
{
    QPoint position;
    uint transform = 0;
    QList<MonitorId> monitors;
};

// Nobody reads them back but the program.
template <typename T>
const QDBusArgument &readNothing(const QDBusArgument &in, T &)
{
    return in;
}

QDBusArgument &operator<<(QDBusArgument &out, const MonitorId &id)
{
    out.beginStructure();
    out << id.connector << QString("vendor") << QString("product") << QString("serial");
    out.endStructure();
    return out;
}

QDBusArgument &operator<<(QDBusArgument &out, const MonitorMode &mode)
{
    QVariantMap properties;
    if (mode.isCurrent)
        properties.insert(QStringLiteral("is-current"), true);
    out.beginStructure();
    out << QString("mode") << mode.size.width() << mode.size.height() << 60.0 << 1.0
        << QList<double>{1.0, 2.0} << properties;
    out.endStructure();
    return out;
}

QDBusArgument &operator<<(QDBusArgument &out, const ListedMonitor &monitor)
{
    out.beginStructure();
    out << monitor.id << monitor.modes << QVariantMap{{QStringLiteral("is-builtin"), false}};
    out.endStructure();
    return out;
}

QDBusArgument &operator<<(QDBusArgument &out, const LogicalMonitor &monitor)
{
    out.beginStructure();
    out << monitor.position.x() << monitor.position.y() << 1.0 << monitor.transform << true
        << monitor.monitors << QVariantMap();
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, MonitorId &id)
{
    return readNothing(in, id);
}
const QDBusArgument &operator>>(const QDBusArgument &in, MonitorMode &mode)
{
    return readNothing(in, mode);
}
const QDBusArgument &operator>>(const QDBusArgument &in, ListedMonitor &monitor)
{
    return readNothing(in, monitor);
}
const QDBusArgument &operator>>(const QDBusArgument &in, LogicalMonitor &monitor)
{
    return readNothing(in, monitor);
}

} // namespace

FakeMutter::FakeMutter()
    : m_bus(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                          QStringLiteral("mutter of ") + m_folder.path()))
{
    qDBusRegisterMetaType<MonitorId>();
    qDBusRegisterMetaType<QList<MonitorId>>();
    qDBusRegisterMetaType<MonitorMode>();
    qDBusRegisterMetaType<QList<MonitorMode>>();
    qDBusRegisterMetaType<ListedMonitor>();
    qDBusRegisterMetaType<QList<ListedMonitor>>();
    qDBusRegisterMetaType<LogicalMonitor>();
    qDBusRegisterMetaType<QList<LogicalMonitor>>();
    m_bus.registerVirtualObject(QStringLiteral("/org/gnome/Mutter"), this,
                                QDBusConnection::SubPath);
    m_bus.registerService(QStringLiteral("org.gnome.Mutter.ScreenCast"));
    m_bus.registerService(QStringLiteral("org.gnome.Mutter.DisplayConfig"));
}

FakeMutter::~FakeMutter()
{
    // The bus may hear of the connection's end only after the next one asks for the names.
    for (const char *name : {"org.gnome.Mutter.ScreenCast", "org.gnome.Mutter.DisplayConfig"})
        m_bus.unregisterService(QLatin1String(name));
    QDBusConnection::disconnectFromBus(m_bus.name());
}

void FakeMutter::setPicture(size_t monitor, const QImage &picture)
{
    m_monitors[monitor].picture = picture.convertToFormat(QImage::Format_RGB32);
}

QString FakeMutter::program(const QString &script) const
{
    const QString path = m_folder.filePath(QStringLiteral("screencast"));
    const QString answering =
        QStringLiteral("dd if=%1/$node of=/proc/self/fd/$1 bs=65536 oflag=seek_bytes seek=$offset "
                       "conv=notrunc,nocreat 2>/dev/null; echo $node")
            .arg(m_folder.path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(QStringLiteral("#!/bin/sh\nwhile read node width height offset; do %1; done\n")
                       .arg(script.isEmpty() ? answering : script)
                       .toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

bool FakeMutter::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    const bool isRecording = message.member() == QLatin1String("RecordMonitor");
    calls << message.member()
            + (isRecording ? QLatin1Char(' ') + message.arguments().value(0).toString()
                           : QString());
    if (message.member() == refused)
        return m_bus.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("refused")));
    m_bus.send(message.createReply(answer(message)));
    if (message.member() == QLatin1String("Start"))
        start();
    return true;
}

QVariantList FakeMutter::answer(const QDBusMessage &message)
{
    const QString member = message.member();
    if (member == QLatin1String("GetCurrentState"))
        return state();
    if (member == QLatin1String("CreateSession")) {
        m_recorded.clear();
        return {
            QVariant::fromValue(QDBusObjectPath(castPathOfFake + QStringLiteral("/Session/u1")))};
    }
    if (member != QLatin1String("RecordMonitor"))
        return {};
    const QList<QVariant> arguments = message.arguments();
    options.push_back(qdbus_cast<QVariantMap>(arguments.value(1)));
    for (size_t i = 0; i < m_monitors.size(); ++i) {
        if (m_monitors[i].connector == arguments.value(0).toString())
            m_recorded.push_back(i);
    }
    return {QVariant::fromValue(QDBusObjectPath(
        castPathOfFake + QStringLiteral("/Stream/u%1").arg(m_recorded.size() - 1)))};
}

QVariantList FakeMutter::state() const
{
    QList<ListedMonitor> listed;
    QList<LogicalMonitor> logical;
    for (const Monitor &monitor : m_monitors) {
        const MonitorId id{monitor.connector};
        const QSize seen = monitor.picture.size();
        const QSize size = monitor.transform % 2 ? seen.transposed() : seen;
        listed.push_back({id, {{QSize(320, 200), false}, {size, true}}});
        logical.push_back({monitor.position, monitor.transform, {id}});
    }
    return {7u, QVariant::fromValue(listed), QVariant::fromValue(logical), QVariantMap()};
}

/// The last monitor's stream comes first: they come in any order.
void FakeMutter::start() const
{
    for (size_t stream = m_recorded.size(); stream-- > 0;) {
        const uint node = firstNode + uint(stream);
        const QImage &picture = m_monitors[m_recorded[stream]].picture;
        QFile frame(m_folder.filePath(QString::number(node)));
        if (frame.open(QIODevice::WriteOnly))
            frame.write(reinterpret_cast<const char *>(picture.constBits()), picture.sizeInBytes());
        frame.close();
        QDBusMessage added =
            QDBusMessage::createSignal(castPathOfFake + QStringLiteral("/Stream/u%1").arg(stream),
                                       QStringLiteral("org.gnome.Mutter.ScreenCast.Stream"),
                                       QStringLiteral("PipeWireStreamAdded"));
        added << node;
        m_bus.send(added);
    }
}

} // namespace tovek
