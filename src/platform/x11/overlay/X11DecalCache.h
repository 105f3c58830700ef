// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "platform/x11/X11Connection.h"

#include <list>

namespace tovek {

/// Decals that have been brought to the server, by key; the longest unused ones go first.
class X11DecalCache
{
public:
    explicit X11DecalCache(std::shared_ptr<X11Connection> connection);
    ~X11DecalCache();
    X11DecalCache(const X11DecalCache &) = delete;
    X11DecalCache &operator=(const X11DecalCache &) = delete;

    /// The decal's pixels as a picture with alpha; stays valid until the next call.
    xcb_render_picture_t picture(const DisplayList::Decal &decal);
    size_t count() const { return m_entries.size(); }

private:
    struct Entry
    {
        quint64 key;
        xcb_render_picture_t picture;
        qsizetype bytes;
    };
    xcb_render_picture_t upload(const QImage &image);
    void evict();

    std::shared_ptr<X11Connection> m_connection;
    xcb_gcontext_t m_gc = 0; ///< of depth 32; made with the first decal
    std::list<Entry> m_entries; ///< most recently used first
    qsizetype m_bytes = 0;
};

} // namespace tovek
