// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/RawKeyFilter.h"

#include "platform/linux/KeyCodes.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWindow>

namespace tovek {

namespace {

quint32 modifiersOf(Qt::KeyboardModifiers modifiers)
{
    return (modifiers.testFlag(Qt::ControlModifier) ? ComboModifier::control : 0U)
        | (modifiers.testFlag(Qt::AltModifier) ? ComboModifier::option : 0U)
        | (modifiers.testFlag(Qt::ShiftModifier) ? ComboModifier::shift : 0U)
        | (modifiers.testFlag(Qt::MetaModifier) ? ComboModifier::command : 0U);
}

} // namespace

RawKeyFilter::RawKeyFilter(Callback callback) : m_callback(std::move(callback)) { }

void RawKeyFilter::setWatching(bool isOn)
{
    if (m_isWatching == isOn || !QCoreApplication::instance())
        return;
    m_isWatching = isOn;
    m_down.clear();
    if (isOn)
        QCoreApplication::instance()->installEventFilter(this);
    else
        QCoreApplication::instance()->removeEventFilter(this);
}

bool RawKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    // Windows get a key first, and pass it on to what is in them.
    if (!isKey || !qobject_cast<QWindow *>(watched))
        return false;
    const auto &key = static_cast<QKeyEvent &>(*event);
    return event->type() == QEvent::KeyPress ? press(key) : release(key);
}

bool RawKeyFilter::press(const QKeyEvent &event)
{
    if (const auto held = m_down.find(event.nativeScanCode()); held != m_down.end())
        return held->second.isSwallowed;
    const int keyCode = hardwareKeyCode(int(event.nativeScanCode()) - windowSystemKeyOffset);
    if (keyCode == KeyCode::none)
        return false;
    const KeyCombo combo{quint32(keyCode), modifiersOf(event.modifiers())};
    const bool isSwallowed = m_callback(combo, true);
    if (m_isWatching)
        m_down.insert_or_assign(event.nativeScanCode(), Press{combo, isSwallowed});
    return isSwallowed;
}

bool RawKeyFilter::release(const QKeyEvent &event)
{
    const auto found = m_down.find(event.nativeScanCode());
    if (found == m_down.end())
        return false;
    if (event.isAutoRepeat())
        return found->second.isSwallowed;
    // With the modifiers of the press, since these may have been let go first.
    const Press press = found->second;
    m_down.erase(found);
    m_callback(press.combo, false);
    return press.isSwallowed;
}

} // namespace tovek
