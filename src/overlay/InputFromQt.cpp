// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/InputFromQt.h"

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace tovek {

namespace {

int hardwareKeyCode(int key)
{
    switch (key) {
    case Qt::Key_Escape:
        return KeyCode::escape;
    case Qt::Key_Backspace:
        return KeyCode::backspace;
    case Qt::Key_Delete:
        return KeyCode::forwardDelete;
    case Qt::Key_Space:
        return KeyCode::space;
    case Qt::Key_Return:
        return KeyCode::returnKey;
    case Qt::Key_Enter:
        return KeyCode::keypadEnter;
    case Qt::Key_Tab:
        return KeyCode::tab;
    case Qt::Key_Left:
        return KeyCode::leftArrow;
    case Qt::Key_Right:
        return KeyCode::rightArrow;
    case Qt::Key_Up:
        return KeyCode::upArrow;
    case Qt::Key_Down:
        return KeyCode::downArrow;
    default:
        return KeyCode::none;
    }
}

KeyFlags flagsOf(Qt::KeyboardModifiers modifiers)
{
    KeyFlags flags;
    flags.setFlag(KeyFlag::shift, modifiers & Qt::ShiftModifier);
    flags.setFlag(KeyFlag::control, modifiers & Qt::ControlModifier);
    flags.setFlag(KeyFlag::option, modifiers & Qt::AltModifier);
    flags.setFlag(KeyFlag::command, modifiers & (Qt::ControlModifier | Qt::MetaModifier));
    flags.setFlag(KeyFlag::numericPad, modifiers & Qt::KeypadModifier);
    return flags;
}

QString latinCharacter(const QKeyEvent &event, const KeyboardLayout *layout)
{
    const int key = event.key();
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return QString(QChar(key)).toLower();
    if (layout && event.nativeScanCode() != 0) {
        if (const auto character = layout->characterOfScanCode(event.nativeScanCode()))
            return *character;
    }
    const QString text = event.text();
    return text.size() == 1 && text.at(0).isPrint() ? text.toLower() : QString();
}

} // namespace

KeyPress keyPressFrom(const QKeyEvent &event, const KeyboardLayout *layout)
{
    KeyPress press{hardwareKeyCode(event.key()), flagsOf(event.modifiers()), {}};
    if (press.keyCode == KeyCode::none || press.keyCode == KeyCode::space)
        press.charactersIgnoringModifiers = latinCharacter(event, layout);
    if (press.flags & KeyFlag::shift)
        press.charactersIgnoringModifiers = press.charactersIgnoringModifiers.toUpper();
    return press;
}

Point pointFrom(const QMouseEvent &event, const ViewSpace &space)
{
    // The toolkit rounds the positions inside a widget and on the screen to whole points, which
    // misses pixels at scales above 1. It keeps that in the window, which the view fills. Where
    // the mouse moves by less than a pixel, the nearest one is meant.
    const QPointF native = event.scenePosition() * space.scale;
    return space.pointFromWidget(QPointF(native.toPoint()) / space.scale);
}

} // namespace tovek
