// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/RecorderRules.h"

#include "KeyboardShortcuts/SpecialKey.h"

namespace KeyboardShortcuts {

using tovek::KeyFlag;
using tovek::KeyFlags;
using Action = RecorderDecision::Action;

namespace {

/// How far beside the recorder a click still counts as one on it.
constexpr double margin = 3;

bool isMouseUp(InputEvent::Type type)
{
    return type == InputEvent::Type::leftMouseUp || type == InputEvent::Type::rightMouseUp;
}

/// Unlike QRectF::contains, not the right and bottom edges: two neighbours share no point.
bool contains(const QRectF &rect, QPointF point)
{
    return point.x() >= rect.left() && point.x() < rect.right() && point.y() >= rect.top()
        && point.y() < rect.bottom();
}

bool isFunctionKey(int keyCode)
{
    const auto key = specialKey(keyCode);
    return key && *key >= SpecialKey::f1 && *key <= SpecialKey::f20;
}

bool isDelete(int keyCode)
{
    return keyCode == tovek::KeyCode::backspace || keyCode == tovek::KeyCode::forwardDelete;
}

/// The system versions that never deliver a hot key with no other modifier to a sandboxed program.
bool isDisallowed(const Shortcut &shortcut, const RecorderEnvironment &environment)
{
    const bool isAffected = environment.systemMajor == 15 && environment.systemMinor < 2;
    const KeyFlags regarded = KeyFlag::capsLock | KeyFlag::control | KeyFlag::option
        | KeyFlag::command | KeyFlag::function;
    return isAffected && environment.isSandboxed
        && (shortcut.flags() & regarded) == KeyFlags(KeyFlag::option);
}

RecorderDecision decideKey(const InputEvent &input, const RecorderEnvironment &environment)
{
    const int keyCode = input.key.keyCode;
    const KeyFlags flags = input.key.flags & ~(KeyFlag::capsLock | KeyFlag::numericPad);
    if (!flags) {
        if (keyCode == tovek::KeyCode::tab)
            return {Action::releaseAndPassOn, {}, {}};
        if (keyCode == tovek::KeyCode::escape)
            return {Action::release, {}, {}};
        if (isDelete(keyCode))
            return {Action::clear, {}, {}};
    }
    const KeyFlags strong = KeyFlag::control | KeyFlag::option | KeyFlag::command;
    if (!(flags & strong) && !isFunctionKey(keyCode))
        return {Action::beep, {}, {}};
    const auto shortcut = Shortcut::fromEvent(input);
    return shortcut ? decide(*shortcut, environment) : RecorderDecision{Action::beep, {}, {}};
}

} // namespace

RecorderDecision decide(const RecorderEvent &event, const QRectF &bounds,
                        const RecorderEnvironment &environment)
{
    const InputEvent::Type type = event.input.type;
    if (isMouseUp(type)) {
        const QRectF wide = bounds.adjusted(-margin, -margin, margin, margin);
        return {contains(wide, event.at) ? Action::swallow : Action::releaseAndPassOn, {}, {}};
    }
    if (type != InputEvent::Type::keyDown)
        return {type == InputEvent::Type::other ? Action::passOn : Action::swallow, {}, {}};
    return decideKey(event.input, environment);
}

RecorderDecision decide(const Shortcut &shortcut, const RecorderEnvironment &environment)
{
    if (environment.menuItemTitle) {
        if (const auto title = environment.menuItemTitle(shortcut))
            return {Action::refuseForMenuItem, shortcut, *title};
    }
    if (isDisallowed(shortcut, environment))
        return {Action::refuseAsDisallowed, shortcut, {}};
    if (environment.otherField) {
        if (const auto title = environment.otherField(shortcut))
            return {Action::askAboutField, shortcut, *title};
    }
    // F12 alone is listed by systems that do not use it.
    const bool isPlainF12 = shortcut == Shortcut{tovek::KeyCode::f12, 0};
    if (!isPlainF12 && environment.isSystemShortcut && environment.isSystemShortcut(shortcut))
        return {Action::askAboutSystem, shortcut, {}};
    return {Action::store, shortcut, {}};
}

} // namespace KeyboardShortcuts
