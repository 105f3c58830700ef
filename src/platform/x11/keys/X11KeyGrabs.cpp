// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11KeyGrabs.h"

#include "foundation/Log.h"
#include "platform/linux/KeyCodes.h"
#include "platform/x11/X11Reply.h"

#include <algorithm>

namespace tovek {

namespace {

constexpr int badAccess = 10;

} // namespace

X11KeyGrabs::X11KeyGrabs(xcb_connection_t *connection)
    : m_connection(connection)
    , m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    , m_modifiers(X11Modifiers::read(connection))
{
}

void X11KeyGrabs::readModifiers()
{
    const X11Modifiers modifiers = X11Modifiers::read(m_connection);
    if (modifiers == m_modifiers)
        return;
    for (const auto &[id, grab] : m_grabs)
        ungrabKeys(grab);
    m_modifiers = modifiers;
    for (auto &[id, grab] : m_grabs) {
        const auto resolved = resolve(grab.combo);
        const int status = resolved ? grabKeys(*resolved) : HotKeys::noSuchKey;
        if (status != 0)
            logLine(QStringLiteral("A shortcut does not work with the new keyboard map: %1")
                        .arg(status));
        // Without keys it fires no more, until another map has them.
        grab = status == 0 ? *resolved : Grab{grab.combo, {}, 0};
    }
}

int X11KeyGrabs::grab(quint32 id, KeyCombo combo)
{
    const auto grab = resolve(combo);
    if (!grab)
        return HotKeys::noSuchKey;
    // The server would let this connection grab a combination twice, and lose both at once.
    if (isOurs(combo))
        return badAccess;
    const int status = grabKeys(*grab);
    if (status == 0)
        m_grabs.insert_or_assign(id, *grab);
    return status;
}

bool X11KeyGrabs::release(quint32 id)
{
    const auto found = m_grabs.find(id);
    if (found == m_grabs.end())
        return false;
    ungrabKeys(found->second);
    m_grabs.erase(found);
    return true;
}

bool X11KeyGrabs::isTaken(KeyCombo combo)
{
    const auto grab = resolve(combo);
    if (!grab || isOurs(combo))
        return false;
    const int status = grabKeys(*grab);
    if (status == 0)
        ungrabKeys(*grab);
    return status != 0;
}

bool X11KeyGrabs::containsKey(xcb_keycode_t keycode) const
{
    return std::any_of(m_grabs.begin(), m_grabs.end(),
                       [keycode](const auto &entry) { return entry.second.hasKey(keycode); });
}

std::vector<xcb_keycode_t> X11KeyGrabs::keycodes(quint32 id) const
{
    const auto found = m_grabs.find(id);
    return found == m_grabs.end() ? std::vector<xcb_keycode_t>() : found->second.keycodes;
}

std::optional<quint32> X11KeyGrabs::find(xcb_keycode_t keycode, quint16 state) const
{
    const auto found = std::find_if(m_grabs.begin(), m_grabs.end(), [&](const auto &entry) {
        return entry.second.mask == m_modifiers.withoutLocks(state) && entry.second.hasKey(keycode);
    });
    return found == m_grabs.end() ? std::nullopt : std::optional(found->first);
}

bool X11KeyGrabs::Grab::hasKey(xcb_keycode_t keycode) const
{
    return std::find(keycodes.begin(), keycodes.end(), keycode) != keycodes.end();
}

std::optional<X11KeyGrabs::Grab> X11KeyGrabs::resolve(KeyCombo combo) const
{
    Grab grab{combo, {}, 0};
    for (const int evdev : evdevCodes(int(combo.keyCode))) {
        const int keycode = evdev + windowSystemKeyOffset;
        if (keycode <= xcb_get_setup(m_connection)->max_keycode)
            grab.keycodes.push_back(xcb_keycode_t(keycode));
    }
    const auto mask = m_modifiers.mask(combo.modifiers);
    if (grab.keycodes.empty() || !mask)
        return std::nullopt;
    grab.mask = *mask;
    return grab;
}

bool X11KeyGrabs::isOurs(KeyCombo combo) const
{
    return std::any_of(m_grabs.begin(), m_grabs.end(),
                       [combo](const auto &entry) { return entry.second.combo == combo; });
}

int X11KeyGrabs::grabKeys(const Grab &grab)
{
    std::vector<xcb_void_cookie_t> cookies;
    for (const xcb_keycode_t keycode : grab.keycodes) {
        for (const quint16 locks : m_modifiers.lockVariants())
            cookies.push_back(xcb_grab_key_checked(m_connection, 0, m_root, grab.mask | locks,
                                                   keycode, XCB_GRAB_MODE_ASYNC,
                                                   XCB_GRAB_MODE_ASYNC));
    }
    int status = 0;
    for (const xcb_void_cookie_t cookie : cookies) {
        const X11Reply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
        if (error && status == 0)
            status = error->error_code;
    }
    if (status != 0)
        ungrabKeys(grab);
    return status;
}

void X11KeyGrabs::ungrabKeys(const Grab &grab)
{
    for (const xcb_keycode_t keycode : grab.keycodes) {
        for (const quint16 locks : m_modifiers.lockVariants())
            xcb_ungrab_key(m_connection, keycode, m_root, grab.mask | locks);
    }
    xcb_flush(m_connection);
}

} // namespace tovek
