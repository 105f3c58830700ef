// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageCrop.h"
#include "fuzz/FuzzInput.h"
#include "overlay/SelectionState.h"
#include "overlay/ToolbarPlacement.h"
#include "platform/Screens.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/x11/capture/X11Screens.h"

#include <array>
#include <cmath>

using namespace tovek;

namespace {

constexpr std::array scales{1.0, 1.25, 4 / 3.0, 1.5, 1.75, 2.0, 2.5, 3.0, 0.5, 8.0};

bool isFinite(const Rect &rect)
{
    return std::isfinite(rect.x) && std::isfinite(rect.y) && rect.width > 0 && rect.height > 0
        && std::isfinite(rect.maxX()) && std::isfinite(rect.maxY());
}

void checkScreen(const Screen &screen, FuzzInput &input)
{
    require(isFinite(screen.frame) && isFinite(screen.visibleFrame));
    const QRect whole(QPoint(), screen.native.size());
    // A part that begins and ends with whole pixels comes out as just those.
    const int x = input.take<uint16_t>() % whole.width();
    const int y = input.take<uint16_t>() % whole.height();
    const QRect part(x, y, 1 + input.take<uint16_t>() % (whole.width() - x),
                     1 + input.take<uint16_t>() % (whole.height() - y));
    const double s = screen.scale;
    const Rect points{part.x() / s, (whole.height() - part.y() - part.height()) / s,
                      part.width() / s, part.height() / s};
    require(cropRect(PixelRect::fromPoints(points, s), whole.size()) == part);

    const Size toolbar{300, 40};
    const auto placed = placedToolbar(points, screen.frame.size(), toolbar);
    require(isFinite(placed.frame));
    require(isFinite(snappedToPixels(placed.frame, screen.frame.size(), s)));
    // What the compositor says is the size in points, rounded.
    const QSize logical(int(std::lround(whole.width() / s)), int(std::lround(whole.height() / s)));
    if (!logical.isEmpty()) {
        const double scale = outputScale(whole.size(), logical);
        require(std::isfinite(scale) && scale > 0);
    }
}

} // namespace

/// Monitors anywhere, over each other too, with panels anywhere along and across them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const auto rect = [&](int most) {
        const int x = input.take<int16_t>(), y = input.take<int16_t>();
        return QRect(x, y, 1 + input.take<uint16_t>() % most, 1 + input.take<uint16_t>() % most);
    };
    std::vector<QRect> panels;
    for (int i = input.take<uint8_t>() % 5; i > 0; --i)
        panels.push_back(rect(4000));
    QPointF origin;
    std::vector<Screen> screens;
    for (int i = input.take<uint8_t>() % 6; i > 0 && !input.isAtEnd(); --i) {
        const QRect native = rect(16000);
        const double scale = scales.at(input.take<uint8_t>() % scales.size());
        if (screens.empty())
            origin = native.topLeft() + QPointF(0, native.height() / scale);
        const QRect visible = withoutPanels(native, panels);
        require(!visible.isEmpty() && native.contains(visible));
        Screen screen;
        screen.displayId = uint32_t(i);
        screen.frame = frameOf(native, native, scale, origin);
        screen.visibleFrame = frameOf(visible, native, scale, origin);
        screen.native = native;
        screen.scale = scale;
        screens.push_back(screen);
    }
    for (const Screen &screen : screens) {
        const Point middle{screen.frame.midX(), screen.frame.midY()};
        require(screenContaining(screens, middle).has_value());
        checkScreen(screen, input);
    }
    return 0;
}
