// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/MutterMonitors.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QMap>

#include <algorithm>
#include <numeric>

namespace tovek {

namespace {

QString connectorFrom(const QDBusArgument &argument)
{
    QString connector, vendor, product, serial;
    argument.beginStructure();
    argument >> connector >> vendor >> product >> serial;
    argument.endStructure();
    return connector;
}

/// The pixels of a mode; nothing where it is not the current one.
QSize currentSizeFrom(const QDBusArgument &argument)
{
    QString id;
    int width = 0, height = 0;
    double rate = 0, scale = 0;
    QList<double> scales;
    QVariantMap properties;
    argument.beginStructure();
    argument >> id >> width >> height >> rate >> scale >> scales >> properties;
    argument.endStructure();
    return properties.value(QStringLiteral("is-current")).toBool() ? QSize(width, height) : QSize();
}

/// By connector, before they are turned.
QMap<QString, QSize> sizesFrom(const QDBusArgument &argument)
{
    QMap<QString, QSize> sizes;
    argument.beginArray();
    while (!argument.atEnd()) {
        argument.beginStructure();
        const QString connector = connectorFrom(argument);
        argument.beginArray();
        while (!argument.atEnd()) {
            if (const QSize size = currentSizeFrom(argument); size.isValid())
                sizes.insert(connector, size);
        }
        argument.endArray();
        QVariantMap properties;
        argument >> properties;
        argument.endStructure();
    }
    argument.endArray();
    return sizes;
}

MutterMonitor monitorFrom(const QDBusArgument &argument, const QMap<QString, QSize> &sizes)
{
    int x = 0, y = 0;
    double scale = 0;
    uint transform = 0;
    bool isPrimary = false;
    QStringList connectors;
    QVariantMap properties;
    argument.beginStructure();
    argument >> x >> y >> scale >> transform >> isPrimary;
    argument.beginArray();
    while (!argument.atEnd())
        connectors << connectorFrom(argument);
    argument.endArray();
    argument >> properties;
    argument.endStructure();
    const QSize size = sizes.value(connectors.value(0));
    // Odd ones are quarter turns.
    return {connectors.value(0), {x, y}, transform % 2 == 0 ? size : size.transposed()};
}

template <typename Screen>
std::vector<size_t> orderOf(const std::vector<Screen> &screens, QPoint (*place)(const Screen &))
{
    std::vector<size_t> order(screens.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        const QPoint first = place(screens[a]);
        const QPoint second = place(screens[b]);
        return std::pair(first.x(), first.y()) < std::pair(second.x(), second.y());
    });
    return order;
}

} // namespace

std::vector<MutterMonitor> mutterMonitors(const QDBusMessage &state)
{
    if (!state.signature().startsWith(
            QLatin1String("ua((ssss)a(siiddada{sv})a{sv})a(iiduba(ssss)a{sv})")))
        return {};
    const QMap<QString, QSize> sizes = sizesFrom(state.arguments().value(1).value<QDBusArgument>());
    const auto argument = state.arguments().value(2).value<QDBusArgument>();
    std::vector<MutterMonitor> monitors;
    argument.beginArray();
    while (!argument.atEnd())
        monitors.push_back(monitorFrom(argument, sizes));
    argument.endArray();
    return monitors;
}

QStringList connectorsOf(const std::vector<PortalDisplay> &displays,
                         std::vector<MutterMonitor> monitors)
{
    if (displays.size() != monitors.size())
        return {};
    const std::vector<size_t> shown = orderOf<PortalDisplay>(
        displays, [](const PortalDisplay &display) { return display.layout.topLeft(); });
    const std::vector<size_t> listed = orderOf<MutterMonitor>(
        monitors, [](const MutterMonitor &monitor) { return monitor.position; });
    QStringList connectors(qsizetype(displays.size()));
    for (size_t i = 0; i < shown.size(); ++i) {
        const MutterMonitor &monitor = monitors[listed[i]];
        if (displays[shown[i]].native.size() != monitor.native || monitor.connector.isEmpty())
            return {};
        connectors[qsizetype(shown[i])] = monitor.connector;
    }
    return connectors;
}

} // namespace tovek
