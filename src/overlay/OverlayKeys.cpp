// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayKeys.h"

namespace tovek {

namespace {

struct ToolKey
{
    QLatin1String letter;
    OverlayKeyAction action;
};

constexpr ToolKey toolKeys[] = {
    {QLatin1String("v"), OverlayKeyAction::pointerTool},
    {QLatin1String("r"), OverlayKeyAction::rectangleTool},
    {QLatin1String("l"), OverlayKeyAction::lineTool},
    {QLatin1String("a"), OverlayKeyAction::arrowTool},
    {QLatin1String("t"), OverlayKeyAction::textTool},
};

bool isUndo(const KeyPress &key)
{
    return (key.flags & KeyFlag::command) && !(key.flags & KeyFlag::shift)
        && key.charactersIgnoringModifiers == QLatin1String("z");
}

bool isRedo(const KeyPress &key)
{
    if (!(key.flags & KeyFlag::command))
        return false;
    return key.charactersIgnoringModifiers == QLatin1String("Z")
        || key.charactersIgnoringModifiers == QLatin1String("y");
}

} // namespace

OverlayKeyAction overlayActionFor(const KeyPress &key, bool takesTools)
{
    if (key.keyCode == KeyCode::escape)
        return OverlayKeyAction::cancel;
    if (key.keyCode == KeyCode::backspace || key.keyCode == KeyCode::forwardDelete)
        return OverlayKeyAction::deleteAnnotation;
    if (key.flags & KeyFlag::command) {
        // Case matters here: with Shift the character is an upper-case letter and no command.
        if (key.charactersIgnoringModifiers == QLatin1String("s"))
            return OverlayKeyAction::save;
        if (key.charactersIgnoringModifiers == QLatin1String("c"))
            return OverlayKeyAction::copy;
    }
    if (isUndo(key))
        return OverlayKeyAction::undo;
    if (isRedo(key))
        return OverlayKeyAction::redo;
    if (key.keyCode == KeyCode::space || key.keyCode == KeyCode::returnKey
        || key.keyCode == KeyCode::keypadEnter)
        return OverlayKeyAction::copy;
    if (!takesTools)
        return OverlayKeyAction::none;
    if (key.keyCode >= KeyCode::leftArrow && key.keyCode <= KeyCode::upArrow)
        return OverlayKeyAction::nudge;
    const QString letter = key.charactersIgnoringModifiers.toLower();
    for (const ToolKey &tool : toolKeys) {
        if (letter == tool.letter)
            return tool.action;
    }
    return OverlayKeyAction::none;
}

} // namespace tovek
