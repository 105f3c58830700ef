// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/PictureWords.h"

#include "foundation/WhenReady.h"
#include "platform/TextRecognizer.h"
#include "text/ObservedWords.h"

#include <QEventLoop>
#include <QImageReader>
#include <QPainter>

namespace tovek {

namespace {

constexpr int mostMegabytes = 1024;

} // namespace

QImage readPicture(QIODevice &device, QString &error)
{
    QImageReader::setAllocationLimit(mostMegabytes);
    QImageReader reader(&device);
    reader.setAutoTransform(true);
    const QImage read = reader.read();
    if (read.isNull()) {
        error = reader.errorString();
        return {};
    }
    QImage picture(read.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter(&picture).drawImage(0, 0, read);
    return picture;
}

WordLines recognizeWords(const QImage &picture, TextRecognizer &recognizer, QString &error)
{
    QEventLoop loop;
    RecognitionResult result;
    QFuture<RecognitionResult> recognition = recognizer.recognize(picture, 1);
    whenFinished(recognition, &loop, [&](const RecognitionResult &recognized) {
        result = recognized;
        loop.quit();
    });
    if (!recognition.isFinished())
        loop.exec();
    error = result.error;
    WordLines lines;
    for (const TextObservation &observation : result.observations) {
        const std::vector<TextRegion> words = wordsOf(observation, picture.size());
        if (!words.empty())
            lines.push_back(words);
    }
    return lines;
}

} // namespace tovek
