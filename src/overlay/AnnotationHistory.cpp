// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/AnnotationHistory.h"

namespace tovek {

void AnnotationHistory::record(const State &state)
{
    Q_ASSERT(m_current < m_states.size());
    State unselected = state;
    for (Annotation &annotation : unselected)
        fieldsOf(annotation).isSelected = false;
    if (unselected == m_states[m_current])
        return;
    m_states.resize(m_current + 1);
    m_states.push_back(std::move(unselected));
    ++m_current;
}

std::optional<AnnotationHistory::State> AnnotationHistory::undo()
{
    if (m_current == 0)
        return std::nullopt;
    return m_states[--m_current];
}

std::optional<AnnotationHistory::State> AnnotationHistory::redo()
{
    if (m_current + 1 >= m_states.size())
        return std::nullopt;
    return m_states[++m_current];
}

} // namespace tovek
