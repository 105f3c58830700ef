// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/SwayFrontmostApp.h"

#include "platform/wayland/SwayIpc.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandScreenGrabber.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QWindow>

#include <unistd.h>

namespace tovek {

namespace {

QRect rectOf(const QJsonValue &value)
{
    const QJsonObject rect = value.toObject();
    return {rect.value(QLatin1String("x")).toInt(), rect.value(QLatin1String("y")).toInt(),
            rect.value(QLatin1String("width")).toInt(),
            rect.value(QLatin1String("height")).toInt()};
}

struct Focused
{
    QJsonObject window, parent;
};

std::optional<Focused> focusedIn(const QJsonObject &node, const QJsonObject &parent)
{
    // A workspace without windows has the focus itself.
    if (node.value(QLatin1String("focused")).toBool() && node.contains(QLatin1String("pid")))
        return Focused{node, parent};
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(QLatin1String(children)).toArray()) {
            if (auto found = focusedIn(child.toObject(), node))
                return found;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<QRect> focusedSwayWindow(const QJsonObject &tree)
{
    const auto focused = focusedIn(tree, {});
    if (!focused)
        return std::nullopt;
    QRect frame = rectOf(focused->window.value(QLatin1String("rect")));
    // The titles of windows that share a place belong to all of them.
    const QString layout = focused->parent.value(QLatin1String("layout")).toString();
    if (layout != QLatin1String("tabbed") && layout != QLatin1String("stacked"))
        frame.setTop(frame.top()
                     - rectOf(focused->window.value(QLatin1String("deco_rect"))).height());
    return frame;
}

std::unique_ptr<SwayFrontmostApp> SwayFrontmostApp::create(const QString &socketPath,
                                                           std::shared_ptr<WaylandOutputs> outputs)
{
    if (!SwayIpc::create(socketPath))
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<SwayFrontmostApp>(new SwayFrontmostApp(socketPath, std::move(outputs)));
}

SwayFrontmostApp::SwayFrontmostApp(QString socketPath, std::shared_ptr<WaylandOutputs> outputs)
    : m_socketPath(std::move(socketPath))
    , m_outputs(std::move(outputs))
{
}

std::optional<QRect> SwayFrontmostApp::activeWindowFrame() const
{
    const auto sway = SwayIpc::create(m_socketPath);
    const auto tree = sway ? sway->ask(SwayIpc::Type::tree) : std::nullopt;
    const auto window = tree ? focusedSwayWindow(tree->object()) : std::nullopt;
    return window ? nativeRectOf(*window, m_outputs->list()) : std::nullopt;
}

void SwayFrontmostApp::bringForward(QWindow &window)
{
    if (!window.isVisible())
        return;
    if (const auto sway = SwayIpc::create(m_socketPath))
        sway->run(
            QStringLiteral("[pid=%1] move container to workspace current, focus").arg(getpid()));
}

} // namespace tovek
