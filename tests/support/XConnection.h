// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tovek {

struct FreeDeleter
{
    void operator()(void *memory) const { std::free(memory); }
};
/// A reply or an event of the X server.
template <typename T>
using XPtr = std::unique_ptr<T, FreeDeleter>;

/// A connection of a test's own to an X server, closed with this object.
class XConnection
{
public:
    explicit XConnection(const QString &displayName);
    ~XConnection();
    XConnection(const XConnection &) = delete;
    XConnection &operator=(const XConnection &) = delete;

    bool isOpen() const { return m_screen != nullptr && !xcb_connection_has_error(m_connection); }
    operator xcb_connection_t *() const { return m_connection; }
    xcb_screen_t *screen() const { return m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    xcb_atom_t atom(const char *name) const;
    /// The bytes of a property, at most 1 MB of them; empty when there is none.
    QByteArray property(xcb_window_t window, xcb_atom_t name) const;
    /// The same in two steps: several questions may be under way together.
    xcb_get_property_cookie_t askForProperty(xcb_window_t window, xcb_atom_t name) const;
    QByteArray property(xcb_get_property_cookie_t asked) const;
    /// Returns when the server has carried out everything sent before.
    void sync() const;

private:
    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen = nullptr;
    mutable std::map<std::string, xcb_atom_t> m_atoms; ///< asked for before; they never change
};

} // namespace tovek
