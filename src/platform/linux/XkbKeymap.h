// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <memory>
#include <optional>

struct xkb_context;
struct xkb_keymap;

namespace tovek {

/// A keyboard map and the one of its layouts whose characters name the keys: the active one, or,
/// where that types no Latin letters, the first that does, or else the American one.
class XkbKeymap
{
public:
    XkbKeymap();
    ~XkbKeymap();

    xkb_context *context() const { return m_context.get(); }
    /// Takes the map over; null for none.
    void set(xkb_keymap *keymap, quint32 activeGroup);
    /// From its text form, as compositors pass it. False when that cannot be understood.
    bool setText(const char *text, quint32 activeGroup);
    /// Of a common American keyboard.
    void setAmerican();
    void clear() { set(nullptr, 0); }
    bool isEmpty() const { return !m_keymap; }
    /// True when another layout names the keys now.
    bool activate(quint32 group);

    /// The one character that the key types without modifiers, or with Shift alone. Absent for a
    /// dead key and for one without a character.
    enum class Level { plain, shifted };
    std::optional<QString> character(quint32 keycode, Level level = Level::plain) const;

private:
    struct Free
    {
        void operator()(xkb_context *context) const;
        void operator()(xkb_keymap *keymap) const;
    };

    std::unique_ptr<xkb_context, Free> m_context;
    std::unique_ptr<xkb_keymap, Free> m_keymap; ///< the user's
    std::unique_ptr<xkb_keymap, Free> m_american; ///< instead of a map without Latin letters
    quint32 m_group = 0;
};

} // namespace tovek
