// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/compositor/CompositorState.h"
#include "xdg-output-unstable-v1-server.h"

#include <cmath>

namespace tovek {

namespace {

constexpr int outputVersion = 4;
constexpr int xdgVersion = 3;

const struct wl_output_interface outputRequests
{
    &destroyResource
};
const struct zxdg_output_v1_interface xdgRequests
{
    &destroyResource
};

void tellGeometry(OutputState &state, wl_resource *resource)
{
    const CompositorOutput &output = state.output;
    QSize mode = output.picture.size();
    if (output.transform & 1)
        mode.transpose();
    wl_output_send_geometry(resource, output.at.x(), output.at.y(), 300, 200, 0, "Tovek", "Test",
                            output.transform);
    wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, mode.width(), mode.height(), 60000);
    if (wl_resource_get_version(resource) >= WL_OUTPUT_SCALE_SINCE_VERSION)
        wl_output_send_scale(resource, int(std::ceil(output.scale)));
    if (wl_resource_get_version(resource) >= WL_OUTPUT_NAME_SINCE_VERSION) {
        wl_output_send_name(resource, output.name.toUtf8().constData());
        wl_output_send_description(resource, "an output of a test");
    }
}

void tellDone(wl_resource *resource)
{
    if (wl_resource_get_version(resource) >= WL_OUTPUT_DONE_SINCE_VERSION)
        wl_output_send_done(resource);
}

void tellLogical(OutputState &state, wl_resource *resource)
{
    const QRect logical = state.logical();
    zxdg_output_v1_send_logical_position(resource, logical.x(), logical.y());
    zxdg_output_v1_send_logical_size(resource, logical.width(), logical.height());
}

void bindOutput(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    auto *output = static_cast<OutputState *>(data);
    wl_resource *resource = wl_resource_create(client, &wl_output_interface, int(version), id);
    output->resources.push_back(resource);
    wl_resource_set_implementation(resource, &outputRequests, output, [](wl_resource *gone) {
        stateOf<OutputState>(gone).resources.remove(gone);
    });
    tellGeometry(*output, resource);
    tellDone(resource);
}

void getXdgOutput(wl_client *client, wl_resource *, uint32_t id, wl_resource *of)
{
    auto &output = stateOf<OutputState>(of);
    wl_resource *resource = wl_resource_create(client, &zxdg_output_v1_interface, xdgVersion, id);
    output.xdgResources.push_back(resource);
    wl_resource_set_implementation(resource, &xdgRequests, &output, [](wl_resource *gone) {
        stateOf<OutputState>(gone).xdgResources.remove(gone);
    });
    tellLogical(output, resource);
    zxdg_output_v1_send_name(resource, output.output.name.toUtf8().constData());
    tellDone(of);
}

const struct zxdg_output_manager_v1_interface managerRequests
{
    &destroyResource, &getXdgOutput
};

void bindManager(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *resource =
        wl_resource_create(client, &zxdg_output_manager_v1_interface, int(version), id);
    wl_resource_set_implementation(resource, &managerRequests, data, nullptr);
}

} // namespace

void tellOutput(OutputState &output)
{
    for (wl_resource *resource : output.resources)
        tellGeometry(output, resource);
    for (wl_resource *resource : output.xdgResources)
        tellLogical(output, resource);
    for (wl_resource *resource : output.resources)
        tellDone(resource);
}

void offerOutput(CompositorState &state, const CompositorOutput &output)
{
    OutputState &added = state.outputs.emplace_back();
    added.output = output;
    added.output.picture = output.picture.convertToFormat(QImage::Format_RGB32);
    added.compositor = &state;
    added.global =
        wl_global_create(state.display, &wl_output_interface, outputVersion, &added, &bindOutput);
}

void offerOutputs(CompositorState &state)
{
    for (const CompositorOutput &output : state.plan.outputs)
        offerOutput(state, output);
    state.offer(zxdg_output_manager_v1_interface, xdgVersion, &bindManager);
}

} // namespace tovek
