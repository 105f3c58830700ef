// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"
#include "foundation/Image.h"

#include <QFuture>

#include <functional>

class QObject;

namespace tovek {

/// What somebody who copies or saves asks for.
struct SelectionResult
{
    QFuture<QImage> pixels; ///< of the frozen screen
    Size screen; ///< points
    Rect selection;
    std::vector<Annotation> annotations;
};

/// Passes the selection with its drawings on to `drawn` once it is rendered. Without drawings, at
/// once, or where no picture can be made of them, the selection goes to `plain`: a picture without
/// drawings is more than none, and whoever gets lost pixels tells so. The functions may be unset.
/// Nothing comes after the context's end.
void deliver(const SelectionResult &result, QObject *context,
             const std::function<void(const Rect &)> &plain,
             const std::function<void(const Image &)> &drawn);

} // namespace tovek
