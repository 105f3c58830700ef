// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "ext-data-control-v1-server.h"
#include "support/compositor/CompositorState.h"
#include "wlr-data-control-unstable-v1-server.h"

#include <unistd.h>

namespace tovek {

namespace {

/// What a source offers so far.
struct SourceState
{
    CompositorState *compositor;
    QByteArrayList types;
};

// Both protocols have the same messages in the same order.
struct Ext
{
    static constexpr const wl_interface &manager = ext_data_control_manager_v1_interface;
    static constexpr const wl_interface &device = ext_data_control_device_v1_interface;
    static constexpr const wl_interface &source = ext_data_control_source_v1_interface;
    static constexpr auto send = &ext_data_control_source_v1_send_send;
    static inline const auto cancelled = &ext_data_control_source_v1_send_cancelled;
    using ManagerRequests = struct ext_data_control_manager_v1_interface;
    using DeviceRequests = struct ext_data_control_device_v1_interface;
    using SourceRequests = struct ext_data_control_source_v1_interface;
    static constexpr int version = 1;
};

struct Wlr
{
    static constexpr const wl_interface &manager = zwlr_data_control_manager_v1_interface;
    static constexpr const wl_interface &device = zwlr_data_control_device_v1_interface;
    static constexpr const wl_interface &source = zwlr_data_control_source_v1_interface;
    static constexpr auto send = &zwlr_data_control_source_v1_send_send;
    static inline const auto cancelled = &zwlr_data_control_source_v1_send_cancelled;
    using ManagerRequests = struct zwlr_data_control_manager_v1_interface;
    using DeviceRequests = struct zwlr_data_control_device_v1_interface;
    using SourceRequests = struct zwlr_data_control_source_v1_interface;
    static constexpr int version = 2;
};

template <typename Protocol>
struct Served
{
    static void offerType(wl_client *, wl_resource *source, const char *type)
    {
        stateOf<SourceState>(source).types << type;
    }
    static void sourceGone(wl_resource *resource)
    {
        auto *source = &stateOf<SourceState>(resource);
        if (source->compositor->clipboard.source == resource)
            source->compositor->clipboard = {};
        delete source;
    }
    static void createSource(wl_client *client, wl_resource *manager, uint32_t id)
    {
        static const typename Protocol::SourceRequests requests{&offerType, &destroyResource};
        wl_resource *source = wl_resource_create(client, &Protocol::source, 1, id);
        wl_resource_set_implementation(source, &requests,
                                       new SourceState{&stateOf<CompositorState>(manager), {}},
                                       &sourceGone);
    }
    static void setSelection(wl_client *, wl_resource *device, wl_resource *source)
    {
        auto &state = stateOf<CompositorState>(device);
        state.replaceClipboard(source);
        if (!source)
            return;
        state.clipboard = {source, stateOf<SourceState>(source).types,
                           [source](const QByteArray &type, int descriptor) {
                               Protocol::send(source, type.constData(), descriptor);
                           },
                           [source] { Protocol::cancelled(source); }};
    }
    static void setPrimary(wl_client *, wl_resource *, wl_resource *) { }
    static void getDevice(wl_client *client, wl_resource *manager, uint32_t id, wl_resource *)
    {
        static const typename Protocol::DeviceRequests requests{&setSelection, &destroyResource,
                                                                &setPrimary};
        wl_resource *device =
            wl_resource_create(client, &Protocol::device, wl_resource_get_version(manager), id);
        wl_resource_set_implementation(device, &requests, &stateOf<CompositorState>(manager),
                                       nullptr);
    }
    static void bind(wl_client *client, void *data, uint32_t version, uint32_t id)
    {
        static const typename Protocol::ManagerRequests requests{&createSource, &getDevice,
                                                                 &destroyResource};
        wl_resource *manager = wl_resource_create(client, &Protocol::manager, int(version), id);
        wl_resource_set_implementation(manager, &requests, data, nullptr);
    }
};

} // namespace

void offerClipboard(CompositorState &state)
{
    state.offer(ext_data_control_manager_v1_interface, Ext::version, &Served<Ext>::bind);
    state.offer(zwlr_data_control_manager_v1_interface, Wlr::version, &Served<Wlr>::bind);
}

} // namespace tovek
