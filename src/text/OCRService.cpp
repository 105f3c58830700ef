// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/OCRService.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"
#include "text/ObservedWords.h"

#include <QFutureWatcher>

namespace tovek {

namespace {

std::vector<TextRegion> regionsOf(const std::vector<TextObservation> &observations, QSize imageSize)
{
    std::vector<TextRegion> regions;
    for (const TextObservation &observation : observations) {
        std::vector<TextRegion> words = wordsOf(observation, imageSize);
        regions.insert(regions.end(), words.begin(), words.end());
    }
    return regions;
}

std::vector<TextRegion> regionsOf(const RecognitionResult &result, QSize imageSize)
{
    if (!result.error.isEmpty())
        logLine(QStringLiteral("OCR failed: ") + result.error);
    return regionsOf(result.observations, imageSize);
}

} // namespace

OCRService::OCRService(TextRecognizer &recognizer, QObject *parent)
    : QObject(parent)
    , m_recognizer(recognizer)
{
}

void OCRService::prepare()
{
    m_recognizer.prepare();
}

QFuture<std::vector<TextRegion>> OCRService::recognizeText(const Image &image,
                                                           const TellPart &tellPart,
                                                           const TellMissing &tellMissing)
{
    Q_ASSERT(isMainThread());
    using Regions = std::vector<TextRegion>;
    if (image.isEmpty())
        return readyFuture(Regions{});
    const QSize imageSize = image.bitmap.size();
    TextRecognizer::TellPart tellLines;
    if (tellPart) {
        tellLines = [=](const std::vector<TextObservation> &lines) {
            tellPart(regionsOf(lines, imageSize));
        };
    }
    QFuture<RecognitionResult> recognition =
        m_recognizer.recognize(image.bitmap, image.scale(), tellLines, tellMissing);
    QFuture<Regions> regions =
        recognition.then([imageSize](const QFuture<RecognitionResult> &finished) {
            return finished.resultCount() > 0 ? regionsOf(finished.result(), imageSize) : Regions{};
        });
    // A continuation does not cancel what it continues.
    auto *watcher = new QFutureWatcher<Regions>(this);
    connect(watcher, &QFutureWatcher<Regions>::canceled, this,
            [recognition]() mutable { recognition.cancel(); });
    connect(watcher, &QFutureWatcher<Regions>::finished, watcher, &QObject::deleteLater);
    watcher->setFuture(regions);
    return regions;
}

} // namespace tovek
