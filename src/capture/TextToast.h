// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/CaptureFeedback.h"
#include "capture/SelectionText.h"

#include <QStringList>

namespace tovek {

/// The toast about what became of a text: it was copied, or none was found. Where a package is
/// missing without which the text was misread, or not seen at all, it asks for it, for each package
/// once: at once, or, where that becomes known only afterwards, as long as the toast is up. Main
/// thread.
class TextToast : public QObject
{
public:
    /// The feedback outlives it.
    explicit TextToast(const CaptureFeedback &feedback);

    void copied(const std::shared_ptr<MissingModels> &missing, const std::optional<Screen> &screen);
    void noneFound(const std::shared_ptr<MissingModels> &missing,
                   const std::optional<Screen> &screen);

private:
    void show(const QString &symbol, const std::shared_ptr<MissingModels> &missing,
              const std::optional<Screen> &screen);
    void learnedMore();
    QString withAdvice(const MissingModel &model) const;
    /// Null when the text has none that was not told yet.
    const MissingModel *untold() const;

    const CaptureFeedback &m_feedback;
    QString m_message; ///< of the last toast, without advice
    std::shared_ptr<MissingModels> m_missing; ///< of its text
    QStringList m_toldPackages;
};

} // namespace tovek
