// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "platform/TextRecognizer.h"
#include "text/TextRegion.h"

#include <QFuture>
#include <QObject>

#include <functional>
#include <vector>

namespace tovek {

/// Turns the picture of a selection into its words. Never fails loudly: what goes wrong is one log
/// line and an empty list. Main thread only; the work itself runs elsewhere.
class OCRService : public QObject
{
    Q_OBJECT

public:
    /// Gets words while others are still being read; see TextRecognizer::TellPart.
    using TellPart = std::function<void(const std::vector<TextRegion> &)>;
    using TellMissing = TextRecognizer::TellMissing;

    /// The recogniser must outlive the service.
    explicit OCRService(TextRecognizer &recognizer, QObject *parent = nullptr);

    /// A recognition is likely soon, for example because a capture has begun.
    void prepare();
    /// The future gets one list: lines in the recogniser's order, their words in the line's.
    /// Cancelling it stops the work; there is no list then, and no log line.
    [[nodiscard]] QFuture<std::vector<TextRegion>>
    recognizeText(const Image &image, const TellPart &tellPart = {},
                  const TellMissing &tellMissing = {});

private:
    TextRecognizer &m_recognizer;
};

} // namespace tovek
