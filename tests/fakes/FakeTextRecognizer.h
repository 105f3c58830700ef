// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/TextRecognizer.h"

#include <QPromise>

#include <memory>

namespace tovek {

/// Recognises what the test gave it, at once or when the test says so.
class FakeTextRecognizer : public TextRecognizer
{
public:
    void prepare() override { ++preparations; }
    using TextRecognizer::recognize;
    QFuture<RecognitionResult> recognize(const QImage &image, double scale, TellPart tellPart,
                                         TellMissing tellMissing) override;

    /// While held, recognitions stay under way; `finish` completes the oldest one.
    void hold() { m_isHeld = true; }
    void finish();
    /// A part of the oldest one that is under way.
    void tell(const std::vector<TextObservation> &lines) { m_tellPart.front()(lines); }
    /// Of the last one, under way or not.
    void miss(const MissingModel &model) { m_tellMissing(model); }
    int underWay() const { return int(m_held.size()); }
    QFuture<RecognitionResult> underWayFuture() const { return m_held.front()->future(); }

    /// A line of words side by side, each 10 pixels a character wide, 20 high, at the given y.
    static TextObservation lineOf(const QString &text, double y = 0);

    RecognitionResult result;
    int preparations = 0;
    std::vector<QImage> images;
    std::vector<double> scales;

private:
    bool m_isHeld = false;
    std::vector<std::shared_ptr<QPromise<RecognitionResult>>> m_held;
    std::vector<TellPart> m_tellPart; ///< as many
    TellMissing m_tellMissing;
};

} // namespace tovek
