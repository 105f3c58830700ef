// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Recognises the pictures named on the command line, one after the other, and prints one JSON line
// a picture: its path, the words with their boxes in pixels, and the wall time in milliseconds.
// The first picture is read twice and the first time not counted: the engines are warm then, as
// they are in the resident program from the second capture on. "--cold" counts it.

#include "platform/linux/TesseractRecognizer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

using namespace tovek;

namespace {

QJsonArray wordsOf(const RecognitionResult &result)
{
    QJsonArray words;
    for (const TextObservation &line : result.observations) {
        for (const RecognizedRange &range : line.ranges) {
            const QRectF &box = range.box;
            words.append(
                QJsonObject{{"text", line.text.mid(range.from, range.length)},
                            {"box", QJsonArray{box.x(), box.y(), box.width(), box.height()}}});
        }
    }
    return words;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStringList paths = app.arguments().mid(1);
    const bool isCold = paths.removeAll(QStringLiteral("--cold")) > 0;
    TesseractRecognizer recognizer;
    bool isFirst = !isCold;
    for (const QString &path : paths) {
        const QImage image = QImage(path).convertToFormat(QImage::Format_RGB32);
        QElapsedTimer timer;
        RecognitionResult result;
        for (int i = isFirst ? 0 : 1; i < 2; ++i) {
            timer.start();
            result = recognizer.recognize(image, 1).result();
        }
        isFirst = false;
        if (!result.error.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(result.error));
            return 1;
        }
        const QJsonObject line{{"image", path},
                               {"words", wordsOf(result)},
                               {"ms", double(timer.nsecsElapsed()) / 1e6}};
        std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    }
    return 0;
}
