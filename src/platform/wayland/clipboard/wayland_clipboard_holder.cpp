// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Holds the clipboard after the program that filled it has ended. Started by the program itself
// only; see ClipboardHolder.h.

#include "ext-data-control-v1-client.h"
#include "platform/linux/clipboard/ClipboardHolderProtocol.h"
#include "platform/linux/clipboard/HolderProcess.h"
#include "platform/wayland/clipboard/DataControlSelection.h"
#include "wlr-data-control-unstable-v1-client.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>

using namespace tovek;

namespace {

using namespace std::chrono_literals;

constexpr int stalledCheckMs = 10000;
constexpr auto patience = 60s;

using Globals = DataControlSelection::Globals;

template <typename T>
void bindTo(T *&place, wl_registry *registry, uint32_t name, const wl_interface &interface,
            uint32_t version)
{
    if (!place)
        place = static_cast<T *>(wl_registry_bind(registry, name, &interface, version));
}

void added(void *data, wl_registry *registry, uint32_t name, const char *interface,
           uint32_t version)
{
    auto &globals = *static_cast<Globals *>(data);
    const auto is = [interface](const wl_interface &other) {
        return std::strcmp(interface, other.name) == 0;
    };
    if (is(wl_seat_interface))
        bindTo(globals.seat, registry, name, wl_seat_interface, 1);
    else if (is(ext_data_control_manager_v1_interface))
        bindTo(globals.ext, registry, name, ext_data_control_manager_v1_interface,
               DataControlSelection::extVersion);
    else if (is(zwlr_data_control_manager_v1_interface))
        bindTo(globals.wlr, registry, name, zwlr_data_control_manager_v1_interface,
               std::min(version, DataControlSelection::wlrVersion));
}

void removed(void *, wl_registry *, uint32_t) { }

constexpr wl_registry_listener listener{&added, &removed};

/// Handles events of the compositor and writes to readers. False when the compositor is gone.
bool serveOnce(wl_display *display, PipeWriters &writers)
{
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0)
            return false;
    }
    wl_display_flush(display);
    std::vector<pollfd> descriptors{{wl_display_get_fd(display), POLLIN, 0}};
    for (const int descriptor : writers.descriptors())
        descriptors.push_back({descriptor, POLLOUT, 0});
    poll(descriptors.data(), descriptors.size(), writers.isEmpty() ? -1 : stalledCheckMs);
    if (descriptors.front().revents)
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    writers.write();
    writers.drop(patience);
    return wl_display_dispatch_pending(display) >= 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return HolderProtocol::failed;
    const auto bytes = heldBytes();
    wl_display *display = wl_display_connect(*argv[1] ? argv[1] : nullptr);
    if (!bytes || !display)
        return HolderProtocol::failed;
    Globals globals;
    globals.display = display;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, &globals);
    if (wl_display_roundtrip(display) < 0)
        return HolderProtocol::failed;
    const auto selection = DataControlSelection::create(globals);
    if (!selection || !selection->take(heldContent(argv[2], *bytes), Selection::Readiness::ready)
        || wl_display_roundtrip(display) < 0)
        return HolderProtocol::failed;
    std::vector<int> kept = selection->writers().descriptors();
    kept.push_back(wl_display_get_fd(display));
    return stayBehind(kept, [&] {
        while (selection->isOwner() || selection->isTransferring()) {
            if (!serveOnce(display, selection->writers()))
                return;
        }
    });
}
