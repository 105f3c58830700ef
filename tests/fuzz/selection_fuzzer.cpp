// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionState.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace tovek;

constexpr Size screenSize{320, 200};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// What must hold whatever the mouse did.
void check(const SelectionState &state)
{
    require(!state.isSelectionFinalized() || state.selectionRect());
    require(!state.isResizing() || state.isSelectionFinalized());
    if (!state.selectionRect())
        return;
    const Rect &rect = *state.selectionRect();
    for (const double value : {rect.x, rect.y, rect.width, rect.height})
        require(std::isfinite(value));
    require(rect.width >= 0 && rect.height >= 0);
    require(!state.isSelectionFinalized()
            || (rect.width > acceptedSelectionSide && rect.height > acceptedSelectionSide));
    const auto part = state.selectionOnScreen();
    require(part.has_value());
    require(part->minX() >= 0 && part->minY() >= 0 && part->maxX() <= screenSize.width
            && part->maxY() <= screenSize.height);
}

} // namespace

/// Three bytes are an event: what happens, and where, beyond the edges of the screen as well.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SelectionState state(ViewSpace{screenSize, 1});
    bool isDown = false;
    for (size_t i = 0; i + 2 < size; i += 3) {
        const Point at{double(data[i + 1]) * 1.5 - 20, double(data[i + 2]) - 20};
        switch (data[i] % 4) {
        case 0:
            if (!isDown)
                state.press(at);
            isDown = true;
            break;
        case 1:
            if (isDown)
                state.moveTo(at);
            else
                state.hover(at);
            break;
        case 2:
            if (isDown)
                state.release();
            isDown = false;
            break;
        default:
            state.hover(std::nullopt);
            break;
        }
        check(state);
    }
    return 0;
}
