// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/WaylandScreens.h"

#include "platform/wayland/capture/WaylandScreenGrabber.h"

#include <cmath>

namespace tovek {

WaylandScreens::WaylandScreens(std::shared_ptr<WaylandOutputs> outputs)
    : m_outputs(std::move(outputs))
{
    connect(m_outputs.get(), &WaylandOutputs::changed, this, [this] {
        if (onChanged)
            onChanged();
    });
}

std::vector<Screen> WaylandScreens::all() const
{
    const std::vector<WaylandOutput> outputs = m_outputs->list();
    const std::vector<QRect> rects = nativeRects(outputs);
    std::vector<Screen> screens;
    for (size_t i = 0; i < outputs.size(); ++i) {
        const WaylandOutput &output = outputs[i];
        // Not the size in points that the compositor tells, which is rounded.
        const double width = output.native.width() / output.scale;
        const double height = output.native.height() / output.scale;
        const QPoint origin = outputs.front().logical.topLeft();
        const double firstHeight = outputs.front().native.height() / outputs.front().scale;
        const QPoint at = output.logical.topLeft() - origin;
        const Rect frame{double(at.x()), firstHeight - at.y() - height, width, height};
        screens.push_back({output.id, output.name, frame, frame, rects[i], output.scale,
                           int(std::ceil(output.scale))});
    }
    return screens;
}

std::optional<Screen> WaylandScreens::main() const
{
    const std::vector<Screen> screens = all();
    return screens.empty() ? std::nullopt : std::optional(screens.front());
}

Point WaylandScreens::mouseLocation() const
{
    const std::vector<Screen> screens = all();
    if (screens.empty())
        return {};
    const auto seen = std::find_if(screens.begin(), screens.end(), [this](const Screen &screen) {
        return screen.displayId == m_pointerScreen;
    });
    const Rect &frame = (seen == screens.end() ? screens.front() : *seen).frame;
    return {frame.x + frame.width / 2, frame.y + frame.height / 2};
}

} // namespace tovek
