// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"

#include <optional>
#include <utility>

namespace tovek {

/// The states of a list of annotations, to go back and forth between. Which annotation is selected
/// is no part of a state.
class AnnotationHistory
{
public:
    using State = std::vector<Annotation>;

    explicit AnnotationHistory(State first = {}) : m_states{std::move(first)} { }

    /// To be called with the list after every change; a state like the last is no step.
    void record(const State &state);
    std::optional<State> undo();
    std::optional<State> redo();

private:
    std::vector<State> m_states; ///< never empty
    size_t m_current = 0;
};

} // namespace tovek
