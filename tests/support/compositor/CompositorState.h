// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/compositor/TestCompositor.h"

#include <QRect>
#include <QTemporaryDir>

#include <list>
#include <mutex>
#include <optional>
#include <wayland-server.h>

namespace tovek {

struct OutputState
{
    CompositorOutput output;
    wl_global *global = nullptr;
    std::list<wl_resource *> resources, xdgResources;
    CompositorState *compositor = nullptr;

    QRect logical() const
    {
        return {output.at, (QSizeF(output.picture.size()) / output.scale).toSize()};
    }
};

struct SurfaceState
{
    wl_resource *resource = nullptr;
    CompositorState *compositor = nullptr;
    std::optional<wl_resource *> pendingBuffer; ///< null: to be taken away
    QImage content; ///< null: none
    int bufferScale = 1;
    QSize destination; ///< empty: that of the buffer
    std::vector<wl_resource *> pendingCallbacks;
    bool takesInput = true;
    SurfaceState *parent = nullptr; ///< of a subsurface
    QPoint position; ///< in the parent
    bool isAbove = true; ///< the parent
    std::vector<SurfaceState *> children;
    std::function<void()> onCommit, onGone; ///< of the role

    QSize points() const
    {
        return destination.isEmpty() ? content.size() / bufferScale : destination;
    }
};

struct LayerState
{
    CompositorState *compositor = nullptr;
    SurfaceState *surface = nullptr;
    wl_resource *resource = nullptr;
    OutputState *output = nullptr;
    QString name;
    QSize size{0, 0};
    uint32_t anchors = 0;
    QMargins margins;
    uint32_t keyboard = 0;
    bool isConfigured = false;
    bool hasPointer = false;

    QRect geometry() const; ///< points of its output
};

struct ClipboardState
{
    wl_resource *source = nullptr;
    QByteArrayList types;
    std::function<void(const QByteArray &type, int descriptor)> send;
    std::function<void()> cancelled;
};

/// All of it lives in the compositor's thread.
struct CompositorState
{
    CompositorPlan plan;
    QTemporaryDir folder;
    wl_display *display = nullptr;
    int wakeUp = -1;
    bool isEnding = false;
    std::mutex callsMutex;
    std::vector<std::function<void()>> calls;

    std::list<OutputState> outputs;
    std::vector<std::pair<QByteArray, wl_global *>> globals;
    TestCompositor::Captures captures = TestCompositor::Captures::work;
    int captureCount = 0;
    std::list<LayerState *> layers;
    int layerCount = 0; ///< ever
    std::vector<wl_resource *> pointers, keyboards;
    SurfaceState *focus = nullptr; ///< has the keyboard
    wl_resource *cursorOwner =
        nullptr; ///< the pointer of the client that it is over, if that is ours
    bool isCursorHidden = false;
    bool isCursorPainted = false; ///< for a picture, and since then, until it is set anew
    ClipboardState clipboard;
    uint32_t serial = 0;
    bool holdsFrames = false;
    std::vector<wl_resource *> heldFrames;

    void tellHeldFrames();
    void offer(const wl_interface &interface, int version, wl_global_bind_func_t bind);
    OutputState *outputAt(int index);
    QImage compose(const OutputState &output, bool withCursor) const;
    /// The pixels as the panel has them.
    QImage capture(const OutputState &output, bool withCursor);
    void updatePointer();
    void leaveKeyboard();
    /// Empties the clipboard, and tells its owner unless that is who copies now.
    void replaceClipboard(const wl_resource *source);
};

// Each file offers what it serves.
void offerOutputs(CompositorState &state);
void offerOutput(CompositorState &state, const CompositorOutput &output);
void tellOutput(OutputState &output);
void offerSurfaces(CompositorState &state);
void offerLayers(CompositorState &state);
void offerFocus(CompositorState &state);
void offerCaptures(CompositorState &state);
void offerClipboard(CompositorState &state);

/// The object that a resource stands for.
template <typename T>
T &stateOf(wl_resource *resource)
{
    return *static_cast<T *>(wl_resource_get_user_data(resource));
}

inline void destroyResource(wl_client *, wl_resource *resource)
{
    wl_resource_destroy(resource);
}

/// For what is bound to the whole compositor.
template <const wl_interface &interface, const auto &requests>
void bindPlain(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *resource = wl_resource_create(client, &interface, int(version), id);
    wl_resource_set_implementation(resource, &requests, data, nullptr);
}

} // namespace tovek
