// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "capture/SelectionText.h"

#include <QStringList>

namespace tovek {

/// The toast about a copied text. Where a package is missing without which the text was misread, it
/// asks for it, for each package once: at once, or, where that becomes known only after the copy,
/// as long as the toast is up. Main thread.
class TextCopyToast : public QObject
{
public:
    /// The feedback outlives it.
    explicit TextCopyToast(const CaptureFeedback &feedback);

    void show(const std::shared_ptr<MissingModels> &missing, const std::optional<Screen> &screen);

private:
    void learnedMore();
    /// Null when the copied text has none that was not told yet.
    const MissingModel *untold() const;

    const CaptureFeedback &m_feedback;
    std::shared_ptr<MissingModels> m_missing; ///< of the text that was copied last
    QStringList m_toldPackages;
};

} // namespace tovek
