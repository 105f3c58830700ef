// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/wayland/SharedPixels.h"
#include "platform/wayland/WaylandConnection.h"

#include <QRegion>

struct wp_viewport;
struct wp_viewporter;

namespace tovek {

/// What a canvas is made with, on the toolkit's connection.
struct CanvasGlobals
{
    explicit CanvasGlobals(std::shared_ptr<WaylandConnection> toolkit);
    ~CanvasGlobals();
    bool isComplete() const { return compositor && subcompositor && shm && viewporter; }

    std::shared_ptr<WaylandConnection> connection;
    wl_compositor *compositor;
    wl_subcompositor *subcompositor;
    wl_shm *shm;
    wp_viewporter *viewporter;
};

/// Shows a frozen display below a transparent surface, pixel for pixel: the captured memory itself,
/// and over it, for the compositor to blend, frames of what lies over it, of which only what
/// changed is painted. Main thread only.
class LayerCanvas
{
public:
    /// Becomes visible with the parent's next commit. `scale`: native pixels per point.
    LayerCanvas(std::shared_ptr<CanvasGlobals> globals, wl_surface *parent,
                std::shared_ptr<SharedPixels> frozen, double scale);
    ~LayerCanvas();
    LayerCanvas(const LayerCanvas &) = delete;
    LayerCanvas &operator=(const LayerCanvas &) = delete;

    /// The parent has been shown: what is presented from now on needs no commit of its.
    void becomeIndependent();
    /// Shows the list, at once or as soon as the compositor is ready for another frame.
    void present(const DisplayList &list);
    bool isReady() const;

    /// The compositor is ready for another frame, and nothing waits to be shown.
    std::function<void()> onReady;

private:
    using SharedList = std::shared_ptr<const DisplayList>; ///< never null but where it waits
    struct Frame;
    /// A part of the parent that lies below it and takes no input.
    struct Layer
    {
        Layer(const CanvasGlobals &globals, wl_surface *parent, QSize points);
        ~Layer();
        Layer(const Layer &) = delete;
        Layer &operator=(const Layer &) = delete;

        wl_surface *surface;
        wl_subsurface *subsurface;
        wp_viewport *viewport;
    };
    static void frameDone(void *data, wl_callback *callback, uint32_t time);
    static void released(void *data, wl_buffer *buffer);
    Frame *freeFrame();
    void show(SharedList list);
    void becameReady();
    std::shared_ptr<SharedPixels> fitted(std::shared_ptr<SharedPixels> frozen);

    std::shared_ptr<CanvasGlobals> m_globals;
    QSize m_native; ///< what is to be seen
    QSize m_points; ///< what the surface covers; a little more where the scale leaves a fraction
    double m_scale;
    std::shared_ptr<SharedPixels> m_frozen;
    WaylandPtr<wl_buffer, wl_buffer_destroy> m_frozenBuffer;
    wl_callback *m_callback = nullptr; ///< of the last frame, while the compositor has it to show
    std::vector<std::unique_ptr<Frame>> m_frames;
    Layer m_below; ///< the frozen display
    Layer m_above; ///< what lies over it; not there before something does
    SharedList m_shown = std::make_shared<DisplayList>();
    SharedList m_waiting; ///< null where nothing waits to be shown
};

} // namespace tovek
