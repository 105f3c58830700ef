// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationKeys.h"

namespace tovek {

namespace {

AnnotationEditor::ArrowKey arrowOf(int keyCode)
{
    switch (keyCode) {
    case KeyCode::leftArrow:
        return AnnotationEditor::ArrowKey::left;
    case KeyCode::rightArrow:
        return AnnotationEditor::ArrowKey::right;
    case KeyCode::downArrow:
        return AnnotationEditor::ArrowKey::down;
    default:
        return AnnotationEditor::ArrowKey::up;
    }
}

} // namespace

AnnotationEditor::Effect editWithKey(AnnotationEditor &editor, OverlayKeyAction action,
                                     const KeyPress &key)
{
    const bool isLarge = key.flags & KeyFlag::shift;
    switch (action) {
    case OverlayKeyAction::pointerTool:
        return editor.selectTool(AnnotationTool::none);
    case OverlayKeyAction::rectangleTool:
        return editor.selectTool(AnnotationTool::rectangle);
    case OverlayKeyAction::lineTool:
        return editor.selectTool(AnnotationTool::line);
    case OverlayKeyAction::arrowTool:
        return editor.selectTool(AnnotationTool::arrow);
    case OverlayKeyAction::textTool:
        return editor.selectTool(AnnotationTool::text);
    case OverlayKeyAction::deleteAnnotation:
        return editor.deleteSelected();
    case OverlayKeyAction::undo:
        return editor.undo();
    case OverlayKeyAction::redo:
        return editor.redo();
    case OverlayKeyAction::nudge:
        return editor.nudgeSelected(arrowOf(key.keyCode),
                                    isLarge ? AnnotationEditor::Step::large
                                            : AnnotationEditor::Step::single);
    case OverlayKeyAction::none:
    case OverlayKeyAction::cancel:
    case OverlayKeyAction::save:
    case OverlayKeyAction::copy:
        break;
    }
    return {};
}

} // namespace tovek
