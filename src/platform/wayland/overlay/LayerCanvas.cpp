// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerCanvas.h"

#include "foundation/MainThread.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/overlay/FramePainter.h"
#include "viewporter-client.h"

#include <QGuiApplication>

#include <cmath>
#include <cstring>
#include <numeric>
#include <utility>

namespace tovek {

namespace {

constexpr size_t mostFrames = 3; // one shown, one about to be, one to paint

/// The fewest points that cover so many pixels and are a whole number of pixels themselves.
int wholePoints(int native, double scale)
{
    const int numerator = int(std::lround(scale * scaleFractions));
    const int step = scaleFractions / std::gcd(numerator, scaleFractions);
    const int points = int(std::ceil(native / scale - 1e-6));
    // Where the desktop itself chooses scales that come out, they are no fractions of 120.
    if (std::abs(points * scale - native) < 1e-3)
        return points;
    return (points + step - 1) / step * step;
}

} // namespace

CanvasGlobals::CanvasGlobals(std::shared_ptr<WaylandConnection> toolkit)
    : connection(std::move(toolkit))
    , compositor(connection->bind<wl_compositor>(wl_compositor_interface, 4))
    , subcompositor(connection->bind<wl_subcompositor>(wl_subcompositor_interface, 1))
    , shm(connection->bind<wl_shm>(wl_shm_interface, 1))
    , viewporter(connection->bind<wp_viewporter>(wp_viewporter_interface, 1))
{
    // What they make is handled in the main loop.
    for (void *object : {static_cast<void *>(compositor), static_cast<void *>(subcompositor),
                         static_cast<void *>(shm), static_cast<void *>(viewporter)}) {
        if (object)
            connection->adopt(object);
    }
}

CanvasGlobals::~CanvasGlobals()
{
    if (!qApp) // the toolkit has closed the connection
        return;
    if (compositor)
        wl_compositor_destroy(compositor);
    if (subcompositor)
        wl_subcompositor_destroy(subcompositor);
    if (shm)
        wl_shm_destroy(shm);
    if (viewporter)
        wp_viewporter_destroy(viewporter);
}

/// One of the pictures that take turns.
struct LayerCanvas::Frame
{
    std::shared_ptr<SharedPixels> pixels;
    WaylandPtr<wl_buffer, wl_buffer_destroy> buffer;
    SharedList list = std::make_shared<DisplayList>(); ///< in it; new memory is clear
    bool isBusy = false; ///< the compositor may read it
};

/// Each directly below the parent, and so above those made before.
LayerCanvas::Layer::Layer(const CanvasGlobals &globals, wl_surface *parent, QSize points)
    : surface(wl_compositor_create_surface(globals.compositor))
    , subsurface(wl_subcompositor_get_subsurface(globals.subcompositor, surface, parent))
    , viewport(wp_viewporter_get_viewport(globals.viewporter, surface))
{
    wl_subsurface_place_below(subsurface, parent);
    // The pointer is the window's above.
    wl_region *nothing = wl_compositor_create_region(globals.compositor);
    wl_surface_set_input_region(surface, nothing);
    wl_region_destroy(nothing);
    wp_viewport_set_destination(viewport, points.width(), points.height());
}

LayerCanvas::Layer::~Layer()
{
    if (!qApp) // the toolkit has closed the connection
        return;
    wp_viewport_destroy(viewport);
    wl_subsurface_destroy(subsurface);
    wl_surface_destroy(surface);
}

LayerCanvas::LayerCanvas(std::shared_ptr<CanvasGlobals> globals, wl_surface *parent,
                         std::shared_ptr<SharedPixels> frozen, double scale)
    : m_globals(std::move(globals))
    , m_native(frozen->size())
    , m_points(wholePoints(m_native.width(), scale), wholePoints(m_native.height(), scale))
    , m_scale(scale)
    , m_frozen(fitted(std::move(frozen)))
    , m_frozenBuffer(m_frozen->makeBuffer(m_globals->shm, WL_SHM_FORMAT_XRGB8888))
    , m_below(*m_globals, parent, m_points)
    , m_above(*m_globals, parent, m_points)
{
    wl_surface_attach(m_below.surface, m_frozenBuffer.get(), 0, 0);
    wl_surface_damage_buffer(m_below.surface, 0, 0, m_frozen->size().width(),
                             m_frozen->size().height());
    wl_surface_commit(m_below.surface);
}

LayerCanvas::~LayerCanvas()
{
    if (m_callback && qApp)
        wl_callback_destroy(m_callback);
}

std::shared_ptr<SharedPixels> LayerCanvas::fitted(std::shared_ptr<SharedPixels> frozen)
{
    // A surface has whole points. Where the screen's last one would be cut by its edge, the
    // picture goes on beyond the edge: stretched, it would not be the same any more.
    const QSize whole(int(std::lround(m_points.width() * m_scale)),
                      int(std::lround(m_points.height() * m_scale)));
    if (whole == frozen->size())
        return frozen;
    auto padded = SharedPixels::create(whole);
    if (!padded)
        return frozen;
    for (int y = 0; y < frozen->size().height(); ++y)
        std::memcpy(padded->data() + y * padded->bytesPerLine(),
                    frozen->data() + y * frozen->bytesPerLine(), size_t(frozen->bytesPerLine()));
    return padded;
}

void LayerCanvas::becomeIndependent()
{
    wl_subsurface_set_desync(m_above.subsurface);
}

void LayerCanvas::present(const DisplayList &list)
{
    Q_ASSERT(isMainThread());
    m_waiting = std::make_shared<DisplayList>(list);
    // One frame a refresh: what comes in between would not be seen.
    if (!m_callback && freeFrame())
        show(std::exchange(m_waiting, nullptr));
}

LayerCanvas::Frame *LayerCanvas::freeFrame()
{
    for (const std::unique_ptr<Frame> &frame : m_frames) {
        if (!frame->isBusy)
            return frame.get();
    }
    if (m_frames.size() == mostFrames)
        return nullptr;
    auto pixels = SharedPixels::create(m_frozen->size());
    if (!pixels)
        return nullptr;
    m_frames.push_back(std::make_unique<Frame>());
    Frame &frame = *m_frames.back();
    frame.pixels = std::move(pixels);
    frame.buffer.reset(frame.pixels->makeBuffer(m_globals->shm, WL_SHM_FORMAT_ARGB8888));
    static constexpr wl_buffer_listener listener{&released};
    wl_buffer_add_listener(frame.buffer.get(), &listener, this);
    return &frame;
}

void LayerCanvas::show(SharedList list)
{
    const auto changed = joined(damagedRects(*m_shown, *list));
    const QRect bounds(QPoint(), m_frozen->size());
    if (std::none_of(changed.begin(), changed.end(),
                     [&bounds](const QRect &rect) { return rect.intersects(bounds); }))
        return;
    Frame &frame = *freeFrame();
    paintFrame(*frame.pixels, *list, joined(damagedRects(*frame.list, *list)));
    frame.list = list;
    frame.isBusy = true;
    wl_surface_attach(m_above.surface, frame.buffer.get(), 0, 0);
    // All of the first frame is new to the compositor.
    for (const QRect &rect : *m_shown == DisplayList() ? std::vector{bounds} : changed) {
        const QRect seen = rect & bounds;
        if (!seen.isEmpty())
            wl_surface_damage_buffer(m_above.surface, seen.x(), seen.y(), seen.width(),
                                     seen.height());
    }
    m_shown = std::move(list);
    m_callback = wl_surface_frame(m_above.surface);
    static constexpr wl_callback_listener listener{&frameDone};
    wl_callback_add_listener(m_callback, &listener, this);
    wl_surface_commit(m_above.surface);
    m_globals->connection->flush();
}

bool LayerCanvas::isReady() const
{
    return !m_callback
        && (m_frames.size() < mostFrames
            || std::any_of(m_frames.begin(), m_frames.end(),
                           [](const std::unique_ptr<Frame> &frame) { return !frame->isBusy; }));
}

void LayerCanvas::becameReady()
{
    if (!isReady())
        return;
    if (m_waiting && freeFrame())
        show(std::exchange(m_waiting, nullptr));
    else if (onReady)
        onReady();
}

void LayerCanvas::frameDone(void *data, wl_callback *callback, uint32_t)
{
    Q_ASSERT(isMainThread());
    auto &self = *static_cast<LayerCanvas *>(data);
    wl_callback_destroy(callback);
    self.m_callback = nullptr;
    self.becameReady();
}

void LayerCanvas::released(void *data, wl_buffer *buffer)
{
    auto &self = *static_cast<LayerCanvas *>(data);
    for (const std::unique_ptr<Frame> &frame : self.m_frames) {
        if (frame->buffer.get() == buffer)
            frame->isBusy = false;
    }
    self.becameReady();
}

} // namespace tovek
