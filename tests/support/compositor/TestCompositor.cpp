// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/compositor/TestCompositor.h"

#include "support/compositor/CompositorState.h"
#include "wlr-layer-shell-unstable-v1-server.h"

#include <QFile>

#include <fcntl.h>
#include <future>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr const char socketName[] = "/wayland";

int takeCalls(int descriptor, uint32_t, void *data)
{
    auto &state = *static_cast<CompositorState *>(data);
    eventfd_t count;
    eventfd_read(descriptor, &count);
    std::vector<std::function<void()>> calls;
    {
        const std::lock_guard lock(state.callsMutex);
        calls.swap(state.calls);
    }
    for (const auto &call : calls)
        call();
    return 0;
}

} // namespace

TestCompositor::TestCompositor(CompositorPlan plan) : m_state(std::make_unique<CompositorState>())
{
    m_state->plan = std::move(plan);
}

TestCompositor::~TestCompositor()
{
    if (m_thread.joinable()) {
        inside([this] { m_state->isEnding = true; });
        m_thread.join();
    }
    if (m_state->wakeUp >= 0)
        close(m_state->wakeUp);
}

bool TestCompositor::start()
{
    CompositorState &state = *m_state;
    state.display = wl_display_create();
    if (!state.display || wl_display_add_socket(state.display, socket().constData()) != 0)
        return false;
    state.wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    wl_event_loop *loop = wl_display_get_event_loop(state.display);
    wl_event_loop_add_fd(loop, state.wakeUp, WL_EVENT_READABLE, &takeCalls, &state);
    wl_display_init_shm(state.display);
    for (const uint32_t format : state.plan.formats)
        wl_display_add_shm_format(state.display, format);
    offerSurfaces(state);
    offerLayers(state);
    offerFocus(state);
    offerOutputs(state);
    offerCaptures(state);
    offerClipboard(state);
    m_thread = std::thread([&state, loop] {
        while (!state.isEnding) {
            wl_display_flush_clients(state.display);
            wl_event_loop_dispatch(loop, -1);
        }
        wl_display_destroy_clients(state.display);
        wl_display_destroy(state.display);
    });
    return true;
}

QByteArray TestCompositor::socket() const
{
    return QFile::encodeName(m_state->folder.path()) + socketName;
}

void TestCompositor::inside(const std::function<void()> &call)
{
    std::promise<void> done;
    {
        const std::lock_guard lock(m_state->callsMutex);
        m_state->calls.push_back([&] {
            call();
            wl_display_flush_clients(m_state->display);
            done.set_value();
        });
    }
    eventfd_write(m_state->wakeUp, 1);
    done.get_future().wait();
}

void TestCompositor::beBusy(std::chrono::milliseconds duration)
{
    {
        const std::lock_guard lock(m_state->callsMutex);
        m_state->calls.push_back([duration] { std::this_thread::sleep_for(duration); });
    }
    eventfd_write(m_state->wakeUp, 1);
}

void TestCompositor::setCaptures(Captures captures)
{
    inside([&] { m_state->captures = captures; });
}

int TestCompositor::captureCount()
{
    int count = 0;
    inside([&] { count = m_state->captureCount; });
    return count;
}

void TestCompositor::setPicture(int output, const QImage &picture)
{
    inside([&] {
        m_state->outputAt(output)->output.picture = picture.convertToFormat(QImage::Format_RGB32);
    });
}

void TestCompositor::addOutput(const CompositorOutput &output)
{
    inside([&] { offerOutput(*m_state, output); });
}

void TestCompositor::removeOutput(int output)
{
    inside([&] {
        OutputState &gone = *m_state->outputAt(output);
        wl_global_remove(std::exchange(gone.global, nullptr));
    });
}

void TestCompositor::setScale(int output, double scale)
{
    inside([&] {
        m_state->outputAt(output)->output.scale = scale;
        tellOutput(*m_state->outputAt(output));
    });
}

void TestCompositor::withdraw(const char *interface)
{
    inside([&] {
        for (auto &[name, global] : m_state->globals) {
            if (name == interface)
                wl_global_remove(global);
        }
    });
}

void TestCompositor::hangUp()
{
    inside([&] { wl_display_destroy_clients(m_state->display); });
}

void TestCompositor::setFrames(Frames frames)
{
    inside([&] {
        m_state->holdsFrames = frames == Frames::hold;
        if (!m_state->holdsFrames)
            m_state->tellHeldFrames();
    });
}

void TestCompositor::closeLayers()
{
    inside([&] {
        for (LayerState *layer : m_state->layers)
            zwlr_layer_surface_v1_send_closed(layer->resource);
    });
}

QImage TestCompositor::look(int output)
{
    QImage image;
    inside([&] { image = m_state->compose(*m_state->outputAt(output), false); });
    return image;
}

QStringList TestCompositor::layers()
{
    QStringList names;
    inside([&] {
        for (const LayerState *layer : m_state->layers) {
            if (layer->surface && !layer->surface->content.isNull())
                names << layer->name;
        }
    });
    return names;
}

int TestCompositor::layerCount()
{
    int count = 0;
    inside([&] { count = m_state->layerCount; });
    return count;
}

QStringList TestCompositor::clipboardTypes()
{
    QStringList types;
    inside([&] {
        for (const QByteArray &type : m_state->clipboard.types)
            types << QString::fromUtf8(type);
    });
    types.sort();
    return types;
}

int TestCompositor::paste(const QByteArray &type)
{
    int ends[2]{-1, -1};
    inside([&] {
        if (!m_state->clipboard.send || !m_state->clipboard.types.contains(type)
            || pipe2(ends, O_CLOEXEC) != 0)
            return;
        m_state->clipboard.send(type, ends[1]);
        wl_display_flush_clients(m_state->display);
        close(ends[1]);
    });
    return ends[0];
}

void TestCompositor::takeClipboard()
{
    inside([&] { m_state->replaceClipboard(nullptr); });
}

void TestCompositor::overtakeCopies(int count)
{
    inside([&] { m_state->plan.overtakenCopies = count; });
}

bool TestCompositor::hasFocusedWindow()
{
    bool has = false;
    inside([&] { has = m_state->focus; });
    return has;
}

void CompositorState::replaceClipboard(const wl_resource *source)
{
    const ClipboardState before = std::exchange(clipboard, {});
    if (before.cancelled && before.source != source)
        before.cancelled();
}

OutputState *CompositorState::outputAt(int index)
{
    for (OutputState &output : outputs) {
        if (output.global && index-- == 0)
            return &output;
    }
    qFatal("the test's compositor has no such output");
}

void CompositorState::offer(const wl_interface &interface, int version, wl_global_bind_func_t bind)
{
    if (!plan.withheld.contains(QLatin1String(interface.name)))
        globals.emplace_back(interface.name,
                             wl_global_create(display, &interface, version, this, bind));
}

UseCompositor::UseCompositor(const TestCompositor &compositor)
    : m_before(qgetenv("WAYLAND_DISPLAY"))
{
    qputenv("WAYLAND_DISPLAY", compositor.socket());
}

UseCompositor::~UseCompositor()
{
    qputenv("WAYLAND_DISPLAY", m_before);
}

} // namespace tovek
