// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationEditor.h"

#include "foundation/SystemColors.h"

#include <utility>

namespace tovek {

namespace {

constexpr double hitTolerance = 10;
constexpr double largeStep = 10;

using Effect = AnnotationEditor::Effect;

Point clamped(Point p, const Rect &r)
{
    return {std::clamp(p.x, r.minX(), r.maxX()), std::clamp(p.y, r.minY(), r.maxY())};
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

AnnotationEditor::AnnotationEditor(std::vector<Annotation> annotations)
    : m_annotations(std::move(annotations))
    , m_selectedAnnotationColor(SystemColors::red)
{
    select(std::nullopt);
    m_history = AnnotationHistory(m_annotations);
}

Effect AnnotationEditor::press(Point at, int clickCount, const Rect &selection)
{
    if (const std::optional<size_t> hit = annotationAt(at)) {
        if (clickCount == 2 && std::holds_alternative<TextAnnotation>(m_annotations[*hit]))
            return editText(*hit);
        const bool isNew = m_selectedAnnotationIndex != hit;
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
    if (m_currentTool == AnnotationTool::text)
        return beginText(at);
    if (m_currentTool != AnnotationTool::none)
        m_currentAnnotation = newAnnotation(m_currentTool, at, m_selectedAnnotationColor);
    return {.isHandled = true, .needsRedraw = true};
}

void AnnotationEditor::startDrag(size_t index, Point at)
{
    m_drag = Drag{at, handleAt(at, m_annotations[index])};
}

Effect AnnotationEditor::moveTo(Point at, const Rect &selection)
{
    if (m_currentAnnotation) {
        fieldsOf(*m_currentAnnotation).endPoint = clamped(at, selection);
        return {.isHandled = true, .needsRedraw = true};
    }
    if (!m_drag || !m_selectedAnnotationIndex)
        return {};
    if (m_drag->handle) {
        dragHandle(m_annotations[*m_selectedAnnotationIndex], *m_drag->handle,
                   clamped(at, selection));
    } else {
        moveBy(m_annotations[*m_selectedAnnotationIndex], at.x - m_drag->at.x, at.y - m_drag->at.y);
        m_drag->at = at;
    }
    return {.isHandled = true, .needsRedraw = true};
}

Effect AnnotationEditor::release()
{
    if (m_currentAnnotation) {
        if (fieldsOf(*m_currentAnnotation).startPoint != fieldsOf(*m_currentAnnotation).endPoint)
            m_annotations.push_back(*m_currentAnnotation);
        m_currentAnnotation.reset();
        record();
        return {.isHandled = true, .needsRedraw = true};
    }
    if (!m_drag)
        return {};
    m_drag.reset();
    record();
    return {.isHandled = true};
}

Effect AnnotationEditor::selectTool(AnnotationTool tool)
{
    m_currentTool = tool;
    select(std::nullopt);
    Effect effect;
    if (tool != AnnotationTool::text)
        effect = commitText();
    effect.isHandled = effect.needsRedraw = true;
    return effect;
}

Effect AnnotationEditor::toggleTool(AnnotationTool tool)
{
    return selectTool(tool == m_currentTool ? AnnotationTool::none : tool);
}

Effect AnnotationEditor::chooseColor(const QColor &color, ColorTarget target)
{
    if (target == ColorTarget::selectedAnnotation && m_selectedAnnotationIndex) {
        fieldsOf(m_annotations[*m_selectedAnnotationIndex]).color = color;
        record();
        return {.isHandled = true, .needsRedraw = true};
    }
    m_selectedAnnotationColor = color;
    return {.isHandled = true};
}

Effect AnnotationEditor::deselect()
{
    const bool hadOne = m_selectedAnnotationIndex.has_value();
    select(std::nullopt);
    return {.isHandled = hadOne, .needsRedraw = hadOne};
}

Effect AnnotationEditor::deleteSelected()
{
    if (!m_selectedAnnotationIndex)
        return {};
    Effect effect{.isHandled = true, .needsRedraw = true};
    if (editingTextAnnotationIndex() == m_selectedAnnotationIndex) {
        effect.closesTextBox = true;
        m_openText.reset();
    }
    remove(*m_selectedAnnotationIndex);
    record();
    return effect;
}

Effect AnnotationEditor::nudgeSelected(ArrowKey key, Step step)
{
    if (!m_selectedAnnotationIndex || isDrawingOrDragging())
        return {};
    const double by = step == Step::large ? largeStep : 1;
    Annotation &annotation = m_annotations[*m_selectedAnnotationIndex];
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
    record();
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
    if (m_selectedAnnotationIndex)
        selected = fieldsOf(m_annotations[*m_selectedAnnotationIndex]).id;
    m_annotations = std::move(*state);
    m_selectedAnnotationIndex.reset();
    for (size_t i = 0; i < m_annotations.size(); ++i) {
        if (fieldsOf(m_annotations[i]).id == selected)
            select(i);
    }
    return {.isHandled = true, .needsRedraw = true};
}

Effect AnnotationEditor::beginText(Point at)
{
    Effect effect = commitText();
    m_openText = OpenText{at, {}, {}};
    effect.isHandled = effect.needsRedraw = true;
    effect.opensTextBox = TextBox{at, m_selectedAnnotationColor, {}};
    return effect;
}

Effect AnnotationEditor::editText(size_t index)
{
    // Committing can remove an annotation before this one.
    const QUuid id = fieldsOf(m_annotations[index]).id;
    Effect effect = commitText();
    effect.isHandled = effect.needsRedraw = true;
    for (size_t i = 0; i < m_annotations.size(); ++i) {
        const auto *text = std::get_if<TextAnnotation>(&m_annotations[i]);
        if (!text || text->id != id)
            continue;
        m_openText = OpenText{text->startPoint, text->text, i};
        effect.opensTextBox = TextBox{text->startPoint, text->color, text->text, text->fontSize};
    }
    return effect;
}

void AnnotationEditor::setTypedText(const QString &text)
{
    if (m_openText)
        m_openText->typed = text;
}

Effect AnnotationEditor::commitText()
{
    if (!m_openText)
        return {};
    const OpenText open = *std::exchange(m_openText, std::nullopt);
    const QString text = open.typed.trimmed();
    if (open.editedIndex && text.isEmpty()) {
        remove(*open.editedIndex);
    } else if (open.editedIndex) {
        std::get<TextAnnotation>(m_annotations[*open.editedIndex]).text = text;
    } else if (!text.isEmpty()) {
        Annotation annotation =
            newAnnotation(AnnotationTool::text, open.position, m_selectedAnnotationColor);
        std::get<TextAnnotation>(annotation).text = text;
        m_annotations.push_back(annotation);
    }
    record();
    return {.isHandled = true, .needsRedraw = true, .closesTextBox = true};
}

std::optional<Point> AnnotationEditor::annotationDragStartPoint() const
{
    return m_drag ? std::optional(m_drag->at) : std::nullopt;
}

std::optional<AnnotationHandle> AnnotationEditor::draggingHandle() const
{
    return m_drag && m_drag->handle ? std::optional(m_drag->handle->which) : std::nullopt;
}

std::optional<size_t> AnnotationEditor::editingTextAnnotationIndex() const
{
    return m_openText ? m_openText->editedIndex : std::nullopt;
}

std::vector<Annotation> AnnotationEditor::drawnAnnotations() const
{
    std::vector<Annotation> drawn = m_annotations;
    if (const auto edited = editingTextAnnotationIndex())
        drawn.erase(drawn.begin() + std::ptrdiff_t(*edited));
    if (m_currentAnnotation)
        drawn.push_back(*m_currentAnnotation);
    return drawn;
}

std::optional<size_t> AnnotationEditor::annotationAt(Point at) const
{
    for (size_t i = m_annotations.size(); i-- > 0;) {
        if (hitTest(m_annotations[i], at, hitTolerance))
            return i;
    }
    return std::nullopt;
}

void AnnotationEditor::select(std::optional<size_t> index)
{
    m_selectedAnnotationIndex = index;
    for (size_t i = 0; i < m_annotations.size(); ++i)
        fieldsOf(m_annotations[i]).isSelected = i == index;
}

void AnnotationEditor::remove(size_t index)
{
    m_annotations.erase(m_annotations.begin() + std::ptrdiff_t(index));
    const auto shift = [index](std::optional<size_t> &other) {
        if (other == index)
            other.reset();
        else if (other > index)
            --*other;
    };
    shift(m_selectedAnnotationIndex);
    if (m_openText)
        shift(m_openText->editedIndex);
}

/// A step of the history, and the place where all changes meet.
void AnnotationEditor::record()
{
    Q_ASSERT(!m_selectedAnnotationIndex || *m_selectedAnnotationIndex < m_annotations.size());
    Q_ASSERT(
        !editingTextAnnotationIndex()
        || std::holds_alternative<TextAnnotation>(m_annotations[*editingTextAnnotationIndex()]));
    m_history.record(m_annotations);
}

} // namespace tovek
