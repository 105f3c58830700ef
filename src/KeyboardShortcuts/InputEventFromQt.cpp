// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/InputEventFromQt.h"

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>

#include <algorithm>
#include <iterator>

namespace KeyboardShortcuts {

using tovek::KeyFlag;
using tovek::KeyFlags;

namespace {

constexpr int modifierKeys[] = {
    Qt::Key_Shift,   Qt::Key_Control,  Qt::Key_Alt,         Qt::Key_AltGr,
    Qt::Key_Meta,    Qt::Key_Super_L,  Qt::Key_Super_R,     Qt::Key_Hyper_L,
    Qt::Key_Hyper_R, Qt::Key_CapsLock, Qt::Key_Mode_switch,
};

bool isModifier(int key)
{
    return std::find(std::begin(modifierKeys), std::end(modifierKeys), key)
        != std::end(modifierKeys);
}

KeyFlags flagsOf(Qt::KeyboardModifiers modifiers)
{
    KeyFlags flags;
    flags.setFlag(KeyFlag::shift, modifiers.testFlag(Qt::ShiftModifier));
    flags.setFlag(KeyFlag::control, modifiers.testFlag(Qt::ControlModifier));
    flags.setFlag(KeyFlag::option, modifiers.testFlag(Qt::AltModifier));
    flags.setFlag(KeyFlag::command, modifiers.testFlag(Qt::MetaModifier));
    flags.setFlag(KeyFlag::numericPad, modifiers.testFlag(Qt::KeypadModifier));
    return flags;
}

} // namespace

InputEvent inputEventFrom(const QKeyEvent &event, const tovek::KeyboardLayout &layout)
{
    using Type = InputEvent::Type;
    const tovek::KeyPress key{
        layout.keyCodeOfScanCode(event.nativeScanCode()), flagsOf(event.modifiers()), {}};
    if (isModifier(event.key()))
        return {Type::flagsChanged, key};
    if (event.type() == QEvent::KeyRelease)
        return {Type::keyUp, key};
    // A key that is held down was judged when it went down.
    return {event.isAutoRepeat() ? Type::flagsChanged : Type::keyDown, key};
}

} // namespace KeyboardShortcuts
