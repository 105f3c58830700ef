// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandOutputs.h"

#include "foundation/MainThread.h"
#include "xdg-output-unstable-v1-client.h"

#include <QTimer>

#include <cmath>
#include <cstdlib>

namespace tovek {

namespace {

bool agrees(int native, int logical, int numerator)
{
    return std::abs(double(native) * scaleFractions / numerator - logical) < 1;
}

bool isTurnedAside(int32_t transform)
{
    return transform & 1;
}

} // namespace

double outputScale(QSize native, QSize logical)
{
    if (native.isEmpty() || logical.isEmpty())
        return 1;
    const double ratio = double(native.width() + native.height())
        / (logical.width() + logical.height()) * scaleFractions;
    // Whole scales first, then halves, quarters and so on: what people set.
    for (const int step : {120, 60, 30, 24, 20, 15, 12, 10, 6, 5, 4, 3, 2, 1}) {
        const int numerator = int(std::round(ratio / step)) * step;
        if (numerator > 0 && agrees(native.width(), logical.width(), numerator)
            && agrees(native.height(), logical.height(), numerator))
            return double(numerator) / scaleFractions;
    }
    return ratio / scaleFractions;
}

struct WaylandOutputs::Entry
{
    WaylandOutputs &owner;
    WaylandOutput output;
    QSize mode;
    int wholeScale = 1;
    bool isKnown = false; ///< the first description is complete
    zxdg_output_v1 *xdg = nullptr;
};

/// What the compositor tells of one output.
struct OutputEvents
{
    using Entry = WaylandOutputs::Entry;
    static Entry &entry(void *data) { return *static_cast<Entry *>(data); }

    static void geometry(void *data, wl_output *, int32_t x, int32_t y, int32_t, int32_t, int32_t,
                         const char *make, const char *model, int32_t transform)
    {
        WaylandOutput &output = entry(data).output;
        if (!entry(data).xdg)
            output.logical.moveTo(x, y);
        output.transform = transform;
        if (output.description.isEmpty())
            output.description =
                QStringLiteral("%1 %2").arg(QString::fromUtf8(make), QString::fromUtf8(model));
    }
    static void mode(void *data, wl_output *, uint32_t flags, int32_t width, int32_t height,
                     int32_t)
    {
        if (flags & WL_OUTPUT_MODE_CURRENT)
            entry(data).mode = QSize(width, height);
    }
    static void scale(void *data, wl_output *, int32_t factor) { entry(data).wholeScale = factor; }
    static void done(void *data, wl_output *)
    {
        entry(data).isKnown = true;
        entry(data).owner.announce();
    }
    static void name(void *data, wl_output *, const char *name)
    {
        entry(data).output.name = QString::fromUtf8(name);
    }
    static void description(void *data, wl_output *, const char *text)
    {
        entry(data).output.description = QString::fromUtf8(text);
    }
    static void position(void *data, zxdg_output_v1 *, int32_t x, int32_t y)
    {
        entry(data).output.logical.moveTo(x, y);
        entry(data).owner.announce();
    }
    static void size(void *data, zxdg_output_v1 *, int32_t width, int32_t height)
    {
        entry(data).output.logical.setSize(QSize(width, height));
        entry(data).owner.announce();
    }
    static void xdgDone(void *data, zxdg_output_v1 *) { entry(data).owner.announce(); }
    static void xdgName(void *data, zxdg_output_v1 *, const char *name)
    {
        entry(data).output.name = QString::fromUtf8(name);
    }
    static void xdgDescription(void *data, zxdg_output_v1 *, const char *text)
    {
        entry(data).output.description = QString::fromUtf8(text);
    }
};

namespace {

constexpr wl_output_listener outputListener{&OutputEvents::geometry, &OutputEvents::mode,
                                            &OutputEvents::done,     &OutputEvents::scale,
                                            &OutputEvents::name,     &OutputEvents::description};
constexpr zxdg_output_v1_listener xdgListener{&OutputEvents::position, &OutputEvents::size,
                                              &OutputEvents::xdgDone, &OutputEvents::xdgName,
                                              &OutputEvents::xdgDescription};

} // namespace

WaylandOutputs::WaylandOutputs(std::shared_ptr<WaylandConnection> connection)
    : m_connection(std::move(connection))
    , m_manager(m_connection->bind<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface, 3))
{
    for (const WaylandGlobal &global : m_connection->globals())
        add(global);
    m_connection->listen({this, [this](const WaylandGlobal &global) { add(global); },
                          [this](const WaylandGlobal &global) { remove(global); }});
    // Nothing is news yet; and there may be no main loop either.
    m_isAnnouncing = true;
    m_connection->roundtrip();
    m_isAnnouncing = false;
    m_announced = list();
}

WaylandOutputs::~WaylandOutputs()
{
    m_connection->forget(this);
    while (!m_entries.empty())
        remove({m_entries.back()->output.id, {}, 0});
    if (m_manager)
        zxdg_output_manager_v1_destroy(m_manager);
}

void WaylandOutputs::add(const WaylandGlobal &global)
{
    if (global.interface != wl_output_interface.name)
        return;
    m_entries.push_back(std::unique_ptr<Entry>(new Entry{*this, {}, {}, 1, false, nullptr}));
    Entry &entry = *m_entries.back();
    entry.output.id = global.name;
    entry.output.handle =
        static_cast<wl_output *>(m_connection->bindGlobal(global, wl_output_interface, 4));
    wl_output_add_listener(entry.output.handle, &outputListener, &entry);
    if (!m_manager)
        return;
    entry.xdg = zxdg_output_manager_v1_get_xdg_output(m_manager, entry.output.handle);
    zxdg_output_v1_add_listener(entry.xdg, &xdgListener, &entry);
}

void WaylandOutputs::remove(const WaylandGlobal &global)
{
    const auto gone =
        std::find_if(m_entries.begin(), m_entries.end(), [&](const std::unique_ptr<Entry> &entry) {
            return entry->output.id == global.name;
        });
    if (gone == m_entries.end())
        return;
    const std::unique_ptr<Entry> entry = std::move(*gone);
    m_entries.erase(gone);
    if (entry->xdg)
        zxdg_output_v1_destroy(entry->xdg);
    if (wl_output_get_version(entry->output.handle) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release(entry->output.handle);
    else
        wl_output_destroy(entry->output.handle);
    announce();
}

std::vector<WaylandOutput> WaylandOutputs::list() const
{
    std::vector<WaylandOutput> known;
    for (const std::unique_ptr<Entry> &entry : m_entries) {
        if (!entry->isKnown || entry->mode.isEmpty())
            continue;
        WaylandOutput output = entry->output;
        output.native = isTurnedAside(output.transform) ? entry->mode.transposed() : entry->mode;
        // Where a desktop lays out its screens in pixels (mutter 43), what it calls logical are
        // these, and windows are told another size.
        const bool isInPixels = output.logical.size() == output.native && entry->wholeScale > 1;
        output.layout = output.logical;
        if (output.logical.isEmpty() || isInPixels)
            output.logical.setSize(output.native / entry->wholeScale);
        if (output.layout.isEmpty())
            output.layout = output.logical;
        if (output.name.isEmpty())
            output.name = QStringLiteral("screen%1").arg(output.id);
        output.scale = outputScale(output.native, output.logical.size());
        known.push_back(output);
    }
    return known;
}

void WaylandOutputs::announce()
{
    Q_ASSERT(isMainThread());
    if (m_isAnnouncing)
        return;
    // One change comes as several events.
    m_isAnnouncing = true;
    QTimer::singleShot(0, this, [this] {
        m_isAnnouncing = false;
        std::vector<WaylandOutput> now = list();
        if (now == m_announced)
            return;
        m_announced = std::move(now);
        Q_EMIT changed();
    });
}

} // namespace tovek
