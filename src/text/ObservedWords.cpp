// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/ObservedWords.h"

#include "platform/TextRecognizer.h"

#include <QRegularExpression>

namespace tovek {

namespace {

Rect normalised(const QRectF &pixels, QSize imageSize)
{
    const double width = imageSize.width();
    const double height = imageSize.height();
    return {pixels.x() / width, (height - pixels.bottom()) / height, pixels.width() / width,
            pixels.height() / height};
}

} // namespace

std::vector<TextRegion> wordsOf(const TextObservation &observation, QSize imageSize)
{
    static const QRegularExpression whiteSpace(QStringLiteral("[\\t\\p{Zs}]+"));
    std::vector<TextRegion> regions;
    qsizetype searchFrom = 0;
    const QStringList words = observation.text.split(whiteSpace, Qt::SkipEmptyParts);
    for (const QString &word : words) {
        // From where the word before ended, so that repeated words keep to their own places.
        const qsizetype at = observation.text.indexOf(word, searchFrom);
        searchFrom = at + word.size();
        if (const auto box = observation.boxOf(at, word.size()))
            regions.push_back({word, normalised(*box, imageSize)});
    }
    return regions;
}

} // namespace tovek
