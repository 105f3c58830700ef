// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationEditor.h"

#include "foundation/SystemColors.h"

#include <array>
#include <cmath>

namespace tovek {

namespace {

constexpr double hitTolerance = 10;
constexpr double grabRadius = 12;
constexpr double largeStep = 10;

using Effect = AnnotationEditor::Effect;

bool isWithinReach(Point a, Point b)
{
    return std::hypot(a.x - b.x, a.y - b.y) <= grabRadius;
}

Point clamped(Point p, const Rect &r)
{
    return {std::clamp(p.x, r.minX(), r.maxX()), std::clamp(p.y, r.minY(), r.maxY())};
}

struct Corner
{
    AnnotationHandle handle;
    Point at;
    Point opposite;
};

/// The corners of a rectangle in the order in which they are tested.
std::array<Corner, 4> cornersOf(const RectangleAnnotation &rectangle)
{
    const Rect r = Rect::spanning(rectangle.startPoint, rectangle.endPoint);
    const Point bottomLeft{r.minX(), r.minY()};
    const Point bottomRight{r.maxX(), r.minY()};
    const Point topLeft{r.minX(), r.maxY()};
    const Point topRight{r.maxX(), r.maxY()};
    return {{{AnnotationHandle::bottomLeft, bottomLeft, topRight},
             {AnnotationHandle::bottomRight, bottomRight, topLeft},
             {AnnotationHandle::topLeft, topLeft, bottomRight},
             {AnnotationHandle::topRight, topRight, bottomLeft}}};
}

std::optional<AnnotationHandle> handleAt(Point at, const Annotation &annotation)
{
    if (std::holds_alternative<TextAnnotation>(annotation))
        return std::nullopt;
    if (const auto *rectangle = std::get_if<RectangleAnnotation>(&annotation)) {
        for (const Corner &corner : cornersOf(*rectangle)) {
            if (isWithinReach(at, corner.at))
                return corner.handle;
        }
        return std::nullopt;
    }
    if (isWithinReach(at, fieldsOf(annotation).startPoint))
        return AnnotationHandle::start;
    if (isWithinReach(at, fieldsOf(annotation).endPoint))
        return AnnotationHandle::end;
    return std::nullopt;
}

Annotation newAnnotation(AnnotationTool tool, Point at, const QColor &color)
{
    Annotation annotation;
    switch (tool) {
    case AnnotationTool::rectangle:
        annotation = RectangleAnnotation();
        break;
    case AnnotationTool::line:
        annotation = LineAnnotation();
        break;
    case AnnotationTool::text:
        annotation = TextAnnotation();
        break;
    case AnnotationTool::arrow:
    case AnnotationTool::none:
        annotation = ArrowAnnotation();
        break;
    }
    AnnotationFields &fields = fieldsOf(annotation);
    fields.startPoint = fields.endPoint = at;
    fields.color = color;
    return annotation;
}

} // namespace

AnnotationEditor::AnnotationEditor() : selectedAnnotationColor(SystemColors::red) { }

Effect AnnotationEditor::press(Point at, int clickCount, const Rect &selection)
{
    if (const std::optional<size_t> hit = annotationAt(at)) {
        if (clickCount == 2 && std::holds_alternative<TextAnnotation>(annotations[*hit]))
            return editText(*hit);
        const bool isNew = selectedAnnotationIndex != hit;
        if (isNew)
            select(hit);
        startDrag(*hit, at);
        return {.isHandled = true, .needsRedraw = isNew};
    }
    if (!selection.contains(at))
        return {};
    return pressWithTool(at);
}

Effect AnnotationEditor::pressWithTool(Point at)
{
    select(std::nullopt);
    if (currentTool == AnnotationTool::text)
        return beginText(at);
    if (currentTool != AnnotationTool::none)
        currentAnnotation = newAnnotation(currentTool, at, selectedAnnotationColor);
    return {.isHandled = true, .needsRedraw = true};
}

void AnnotationEditor::startDrag(size_t index, Point at)
{
    draggingHandle = handleAt(at, annotations[index]);
    isDraggingAnnotation = true;
    annotationDragStartPoint = at;
    if (const auto *rectangle = std::get_if<RectangleAnnotation>(&annotations[index])) {
        for (const Corner &corner : cornersOf(*rectangle)) {
            if (corner.handle == draggingHandle)
                m_fixedCorner = corner.opposite;
        }
    }
}

Effect AnnotationEditor::moveTo(Point at, const Rect &selection)
{
    if (currentAnnotation) {
        fieldsOf(*currentAnnotation).endPoint = clamped(at, selection);
        return {.isHandled = true, .needsRedraw = true};
    }
    if (!isDraggingAnnotation || !selectedAnnotationIndex)
        return {};
    if (draggingHandle) {
        dragHandle(clamped(at, selection));
    } else {
        moveBy(annotations[*selectedAnnotationIndex], at.x - annotationDragStartPoint->x,
               at.y - annotationDragStartPoint->y);
        annotationDragStartPoint = at;
    }
    return {.isHandled = true, .needsRedraw = true};
}

void AnnotationEditor::dragHandle(Point to)
{
    AnnotationFields &fields = fieldsOf(annotations[*selectedAnnotationIndex]);
    const Point fixed = m_fixedCorner;
    switch (*draggingHandle) {
    case AnnotationHandle::start:
        fields.startPoint = to;
        break;
    case AnnotationHandle::end:
        fields.endPoint = to;
        break;
    case AnnotationHandle::topLeft:
        fields.startPoint = {to.x, fixed.y};
        fields.endPoint = {fixed.x, to.y};
        break;
    case AnnotationHandle::bottomRight:
        fields.startPoint = {fixed.x, to.y};
        fields.endPoint = {to.x, fixed.y};
        break;
    case AnnotationHandle::bottomLeft:
        fields.startPoint = to;
        fields.endPoint = fixed;
        break;
    case AnnotationHandle::topRight:
        fields.startPoint = fixed;
        fields.endPoint = to;
        break;
    }
}

Effect AnnotationEditor::release()
{
    if (currentAnnotation) {
        if (fieldsOf(*currentAnnotation).startPoint != fieldsOf(*currentAnnotation).endPoint)
            annotations.push_back(*currentAnnotation);
        currentAnnotation.reset();
        m_history.record(annotations);
        return {.isHandled = true, .needsRedraw = true};
    }
    if (!isDraggingAnnotation)
        return {};
    isDraggingAnnotation = false;
    annotationDragStartPoint.reset();
    draggingHandle.reset();
    m_history.record(annotations);
    return {.isHandled = true};
}

Effect AnnotationEditor::selectTool(AnnotationTool tool)
{
    currentTool = tool;
    select(std::nullopt);
    Effect effect;
    if (tool != AnnotationTool::text)
        effect = commitText();
    effect.isHandled = effect.needsRedraw = true;
    return effect;
}

Effect AnnotationEditor::toggleTool(AnnotationTool tool)
{
    return selectTool(tool == currentTool ? AnnotationTool::none : tool);
}

Effect AnnotationEditor::chooseColor(const QColor &color, ColorTarget target)
{
    if (target == ColorTarget::selectedAnnotation && selectedAnnotationIndex) {
        fieldsOf(annotations[*selectedAnnotationIndex]).color = color;
        m_history.record(annotations);
        return {.isHandled = true, .needsRedraw = true};
    }
    selectedAnnotationColor = color;
    return {.isHandled = true};
}

Effect AnnotationEditor::deselect()
{
    const bool hadOne = selectedAnnotationIndex.has_value();
    select(std::nullopt);
    return {.isHandled = hadOne, .needsRedraw = hadOne};
}

Effect AnnotationEditor::deleteSelected()
{
    if (!selectedAnnotationIndex)
        return {};
    Effect effect{.isHandled = true, .needsRedraw = true};
    if (editingTextAnnotationIndex == selectedAnnotationIndex) {
        effect.closesTextBox = true;
        textAnnotationPosition.reset();
        editingTextAnnotationIndex.reset();
    }
    remove(*selectedAnnotationIndex);
    m_history.record(annotations);
    return effect;
}

Effect AnnotationEditor::nudgeSelected(ArrowKey key, Step step)
{
    if (!selectedAnnotationIndex || isDrawingOrDragging())
        return {};
    const double by = step == Step::large ? largeStep : 1;
    Annotation &annotation = annotations[*selectedAnnotationIndex];
    switch (key) {
    case ArrowKey::left:
        moveBy(annotation, -by, 0);
        break;
    case ArrowKey::right:
        moveBy(annotation, by, 0);
        break;
    case ArrowKey::down:
        moveBy(annotation, 0, -by);
        break;
    case ArrowKey::up:
        moveBy(annotation, 0, by);
        break;
    }
    m_history.record(annotations);
    return {.isHandled = true, .needsRedraw = true};
}

Effect AnnotationEditor::undo()
{
    if (isDrawingOrDragging() || isTextBoxOpen())
        return {};
    return restore(m_history.undo());
}

Effect AnnotationEditor::redo()
{
    if (isDrawingOrDragging() || isTextBoxOpen())
        return {};
    return restore(m_history.redo());
}

Effect AnnotationEditor::restore(std::optional<std::vector<Annotation>> state)
{
    if (!state)
        return {};
    // The selected annotation stays selected as long as it exists, wherever it is in the list.
    std::optional<QUuid> selected;
    if (selectedAnnotationIndex)
        selected = fieldsOf(annotations[*selectedAnnotationIndex]).id;
    annotations = std::move(*state);
    selectedAnnotationIndex.reset();
    for (size_t i = 0; i < annotations.size(); ++i) {
        if (fieldsOf(annotations[i]).id == selected)
            select(i);
    }
    return {.isHandled = true, .needsRedraw = true};
}

Effect AnnotationEditor::beginText(Point at)
{
    Effect effect = commitText();
    textAnnotationPosition = at;
    m_typedText.clear();
    effect.isHandled = effect.needsRedraw = true;
    effect.opensTextBox = TextBox{at, selectedAnnotationColor, {}};
    return effect;
}

Effect AnnotationEditor::editText(size_t index)
{
    // Committing can remove an annotation before this one.
    const QUuid id = fieldsOf(annotations[index]).id;
    Effect effect = commitText();
    effect.isHandled = effect.needsRedraw = true;
    for (size_t i = 0; i < annotations.size(); ++i) {
        const auto *text = std::get_if<TextAnnotation>(&annotations[i]);
        if (!text || text->id != id)
            continue;
        editingTextAnnotationIndex = i;
        textAnnotationPosition = text->startPoint;
        m_typedText = text->text;
        effect.opensTextBox = TextBox{text->startPoint, text->color, text->text, text->fontSize};
    }
    return effect;
}

Effect AnnotationEditor::commitText()
{
    if (!textAnnotationPosition)
        return {};
    const QString text = m_typedText.trimmed();
    if (editingTextAnnotationIndex && text.isEmpty()) {
        remove(*editingTextAnnotationIndex);
    } else if (editingTextAnnotationIndex) {
        std::get<TextAnnotation>(annotations[*editingTextAnnotationIndex]).text = text;
    } else if (!text.isEmpty()) {
        Annotation annotation =
            newAnnotation(AnnotationTool::text, *textAnnotationPosition, selectedAnnotationColor);
        std::get<TextAnnotation>(annotation).text = text;
        annotations.push_back(annotation);
    }
    textAnnotationPosition.reset();
    editingTextAnnotationIndex.reset();
    m_typedText.clear();
    m_history.record(annotations);
    return {.isHandled = true, .needsRedraw = true, .closesTextBox = true};
}

std::vector<Annotation> AnnotationEditor::drawnAnnotations() const
{
    std::vector<Annotation> drawn = annotations;
    if (editingTextAnnotationIndex)
        drawn.erase(drawn.begin() + std::ptrdiff_t(*editingTextAnnotationIndex));
    if (currentAnnotation)
        drawn.push_back(*currentAnnotation);
    return drawn;
}

std::optional<size_t> AnnotationEditor::annotationAt(Point at) const
{
    for (size_t i = annotations.size(); i-- > 0;) {
        if (hitTest(annotations[i], at, hitTolerance))
            return i;
    }
    return std::nullopt;
}

void AnnotationEditor::select(std::optional<size_t> index)
{
    selectedAnnotationIndex = index;
    for (size_t i = 0; i < annotations.size(); ++i)
        fieldsOf(annotations[i]).isSelected = i == index;
}

void AnnotationEditor::remove(size_t index)
{
    annotations.erase(annotations.begin() + std::ptrdiff_t(index));
    for (std::optional<size_t> *other : {&selectedAnnotationIndex, &editingTextAnnotationIndex}) {
        if (*other == index)
            other->reset();
        else if (*other > index)
            --**other;
    }
}

} // namespace tovek
