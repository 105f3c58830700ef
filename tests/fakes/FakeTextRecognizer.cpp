// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeTextRecognizer.h"

namespace tovek {

QFuture<RecognitionResult> FakeTextRecognizer::recognize(const QImage &image, double scale,
                                                         TellPart tellPart, TellMissing tellMissing)
{
    images.push_back(image);
    scales.push_back(scale);
    auto promise = std::make_shared<QPromise<RecognitionResult>>();
    promise->start();
    m_held.push_back(promise);
    m_tellPart.push_back(std::move(tellPart));
    m_tellMissing = std::move(tellMissing);
    if (!m_isHeld)
        finish();
    return promise->future();
}

void FakeTextRecognizer::finish()
{
    const std::shared_ptr<QPromise<RecognitionResult>> promise = m_held.front();
    m_held.erase(m_held.begin());
    m_tellPart.erase(m_tellPart.begin());
    if (!promise->isCanceled())
        promise->addResult(result);
    promise->finish();
}

TextObservation FakeTextRecognizer::lineOf(const QString &text, double y)
{
    TextObservation observation{text, {}};
    qsizetype from = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text.at(i) != ' ' && text.at(i) != '\t')
            continue;
        if (i > from)
            observation.ranges.push_back(
                {from, i - from, QRectF(double(from) * 10, y, double(i - from) * 10, 20)});
        from = i + 1;
    }
    return observation;
}

} // namespace tovek
