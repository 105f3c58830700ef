// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationEditor.h"

#include <QMetaType>

Q_DECLARE_METATYPE(tovek::Point)
Q_DECLARE_METATYPE(tovek::AnnotationTool)
Q_DECLARE_METATYPE(std::optional<tovek::AnnotationHandle>)

namespace tovek {

inline constexpr Rect selection{100, 100, 400, 300};

/// An editor with a person at the mouse.
struct Desk : AnnotationEditor
{
    Effect drag(Point from, Point to)
    {
        press(from, 1, selection);
        moveTo({(from.x + to.x) / 2, (from.y + to.y) / 2}, selection);
        moveTo(to, selection);
        return release();
    }
    void draw(AnnotationTool tool, Point from, Point to)
    {
        selectTool(tool);
        drag(from, to);
        selectTool(AnnotationTool::none);
    }
    Effect click(Point at, int count = 1)
    {
        const Effect effect = press(at, count, selection);
        release();
        return effect;
    }
    Effect commit(const QString &text)
    {
        setTypedText(text);
        return commitText();
    }
    void write(Point at, const QString &text)
    {
        selectTool(AnnotationTool::text);
        click(at);
        setTypedText(text);
        selectTool(AnnotationTool::none);
    }
    const AnnotationFields &at(size_t i) const { return fieldsOf(annotations().at(i)); }
    QString textAt(size_t i) const { return std::get<TextAnnotation>(annotations().at(i)).text; }
};

} // namespace tovek
