// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Shortcut.h"

#include <QRectF>

#include <functional>

namespace KeyboardShortcuts {

/// An event while a recorder records. The place of a mouse event is in the recorder's coordinates.
struct RecorderEvent
{
    InputEvent input;
    QPointF at;
};

/// What a recorder asks about the world around it.
struct RecorderEnvironment
{
    int systemMajor = 0; ///< version of the operating system
    int systemMinor = 0;
    bool isSandboxed = false;
    /// The title of the item of the program's own menus that answers to the shortcut.
    std::function<std::optional<QString>(const Shortcut &)> menuItemTitle;
    /// The title of another field that has the shortcut.
    std::function<std::optional<QString>(const Shortcut &)> otherField;
    std::function<bool(const Shortcut &)> isSystemShortcut;
};

/// What becomes of an event.
struct RecorderDecision
{
    enum class Action {
        passOn, ///< the event is not for a recorder
        swallow,
        release, ///< end recording
        releaseAndPassOn,
        clear, ///< press the clear button
        beep,
        refuseForMenuItem,
        refuseAsDisallowed,
        askAboutField, ///< store, in the place of the other field, only when the user insists
        askAboutSystem, ///< store only when the user insists
        store,
    };

    Action action = Action::swallow;
    std::optional<Shortcut> shortcut; ///< that the last five are about
    QString title; ///< of the menu item or the other field

    bool operator==(const RecorderDecision &) const = default;
};

/// The recorder's rules, in their order. `bounds` is the recorder in its own coordinates.
RecorderDecision decide(const RecorderEvent &event, const QRectF &bounds,
                        const RecorderEnvironment &environment);
/// The rules from where there is a shortcut: what stands in its way.
RecorderDecision decide(const Shortcut &shortcut, const RecorderEnvironment &environment);

} // namespace KeyboardShortcuts
