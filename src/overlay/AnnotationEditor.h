// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"
#include "overlay/AnnotationHandles.h"
#include "overlay/AnnotationHistory.h"

#include <optional>

namespace tovek {

/// What a chosen colour is for: without a selected annotation always for new ones.
enum class ColorTarget { newAnnotations, selectedAnnotation };

/// Drawing, selecting, dragging and removing annotations over a finalised selection. Knows no
/// widget: the view forwards points (y up) once the toolbar, the text box and the selection's
/// handles have had their chance, and does what the effect says. Text needs a QGuiApplication.
class AnnotationEditor
{
public:
    /// The text box that the view has to open, its top left corner at the position.
    struct TextBox
    {
        Point position;
        QColor color;
        QString text; ///< shown with all of it selected
        double fontSize = TextAnnotation().fontSize; ///< points
    };
    /// What the view has to do, in this order.
    struct Effect
    {
        bool isHandled = false;
        bool needsRedraw = false;
        bool closesTextBox = false;
        std::optional<TextBox> opensTextBox = std::nullopt;
    };
    /// Drawings that are there from the start cannot be undone.
    explicit AnnotationEditor(std::vector<Annotation> annotations = {});

    enum class ArrowKey { left, right, down, up };
    enum class Step { single, large }; ///< 1 or 10 points

    Effect press(Point at, int clickCount, const Rect &selection);
    Effect moveTo(Point at, const Rect &selection);
    Effect release();

    /// A tool key; never toggles.
    Effect selectTool(AnnotationTool tool);
    /// A tool button: pressing that of the active tool goes back to the pointer.
    Effect toggleTool(AnnotationTool tool);
    Effect chooseColor(const QColor &color, ColorTarget target);
    /// Something else is pointed at.
    Effect deselect();
    Effect deleteSelected();
    Effect nudgeSelected(ArrowKey key, Step step);
    /// Handled only when there was something to undo; not during a drag or in an open text box,
    /// which has an undo of its own.
    Effect undo();
    Effect redo();

    /// Every change of the open box's text, so that whatever commits the box has what was typed.
    void setTypedText(const QString &text);
    Effect commitText();
    /// One that a press there would select or drag.
    bool hasAnnotationAt(Point at) const { return annotationAt(at).has_value(); }
    bool isTextBoxOpen() const { return m_openText.has_value(); }

    /// All annotations in drawing order, the one being drawn last; without the text that is being
    /// edited, which would show through what is typed over it.
    std::vector<Annotation> drawnAnnotations() const;

    AnnotationTool currentTool() const { return m_currentTool; }
    /// In drawing order, without the one being drawn.
    const std::vector<Annotation> &annotations() const { return m_annotations; }
    const std::optional<Annotation> &currentAnnotation() const { return m_currentAnnotation; }
    std::optional<size_t> selectedAnnotationIndex() const { return m_selectedAnnotationIndex; }
    QColor selectedAnnotationColor() const { return m_selectedAnnotationColor; }
    bool isDraggingAnnotation() const { return m_drag.has_value(); }
    /// Where the pointer was at the last step of the drag; absent without one.
    std::optional<Point> annotationDragStartPoint() const;
    /// Absent without a drag, and while the whole annotation moves.
    std::optional<AnnotationHandle> draggingHandle() const;
    std::optional<size_t> editingTextAnnotationIndex() const;

private:
    struct Drag
    {
        Point at; ///< the pointer, at the last step
        std::optional<GrabbedHandle> handle; ///< absent: all of it moves
    };
    struct OpenText
    {
        Point position;
        QString typed;
        std::optional<size_t> editedIndex; ///< absent for a new annotation
    };

    std::optional<size_t> annotationAt(Point at) const;
    void select(std::optional<size_t> index);
    void remove(size_t index);
    void startDrag(size_t index, Point at);
    Effect pressWithTool(Point at);
    Effect beginText(Point at);
    Effect editText(size_t index);
    Effect restore(std::optional<std::vector<Annotation>> state);
    bool isDrawingOrDragging() const { return m_currentAnnotation || m_drag; }
    void record();

    AnnotationTool m_currentTool = AnnotationTool::none;
    std::vector<Annotation> m_annotations;
    std::optional<Annotation> m_currentAnnotation; ///< being drawn
    std::optional<size_t> m_selectedAnnotationIndex; ///< the only one whose `isSelected` is set
    QColor m_selectedAnnotationColor;
    std::optional<Drag> m_drag; ///< goes on without effect where its annotation is deselected
    std::optional<OpenText> m_openText;
    AnnotationHistory m_history;
};

} // namespace tovek
