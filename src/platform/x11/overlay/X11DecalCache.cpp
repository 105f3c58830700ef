// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11DecalCache.h"

#include "platform/x11/X11Requests.h"

#include <algorithm>

namespace tovek {

namespace {

/// A session's toolbar, handles and recent labels; not every label that ever showed.
constexpr qsizetype maximumBytes = 8 << 20;
constexpr size_t maximumCount = 256;

} // namespace

X11DecalCache::X11DecalCache(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
}

X11DecalCache::~X11DecalCache()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (!xcb)
        return;
    for (const Entry &entry : m_entries)
        xcb_render_free_picture(xcb, entry.picture);
    if (m_gc)
        xcb_free_gc(xcb, m_gc);
}

xcb_render_picture_t X11DecalCache::picture(const DisplayList::Decal &decal)
{
    const auto known = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&decal](const Entry &e) { return e.key == decal.key; });
    if (known != m_entries.end()) {
        m_entries.splice(m_entries.begin(), m_entries, known);
        return m_entries.front().picture;
    }
    m_entries.push_front({decal.key, upload(decal.image), decal.image.sizeInBytes()});
    m_bytes += decal.image.sizeInBytes();
    evict();
    return m_entries.front().picture;
}

xcb_render_picture_t X11DecalCache::upload(const QImage &image)
{
    Q_ASSERT(image.format() == QImage::Format_ARGB32_Premultiplied);
    xcb_connection_t *xcb = m_connection->xcb();
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, 32, pixmap, m_connection->root(), uint16_t(image.width()),
                      uint16_t(image.height()));
    if (!m_gc) {
        m_gc = xcb_generate_id(xcb);
        xcb_create_gc(xcb, m_gc, pixmap, 0, nullptr);
    }
    x11PutImage(xcb, pixmap, m_gc, 32, image);
    const xcb_render_picture_t picture = xcb_generate_id(xcb);
    xcb_render_create_picture(xcb, picture, pixmap, m_connection->renderFormats()->argb32, 0,
                              nullptr);
    xcb_free_pixmap(xcb, pixmap); // the picture keeps it
    return picture;
}

void X11DecalCache::evict()
{
    while (m_entries.size() > 1 && (m_bytes > maximumBytes || m_entries.size() > maximumCount)) {
        xcb_render_free_picture(m_connection->xcb(), m_entries.back().picture);
        m_bytes -= m_entries.back().bytes;
        m_entries.pop_back();
    }
}

} // namespace tovek
