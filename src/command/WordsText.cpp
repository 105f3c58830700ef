// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/WordsText.h"

#include "text/TextLines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tovek {

namespace {

QRect pixelsOf(const Rect &box, QSize picture)
{
    const ViewSpace unit{{1, 1}, 1};
    const QRectF flipped = unit.pixelsFromRect(box);
    return QRectF(flipped.x() * picture.width(), flipped.y() * picture.height(),
                  flipped.width() * picture.width(), flipped.height() * picture.height())
        .toRect();
}

QString plainText(const WordLines &lines)
{
    std::vector<TextRegion> words;
    for (const auto &line : lines)
        words.insert(words.end(), line.begin(), line.end());
    return words.empty() ? QString() : joinedLines(words) + '\n';
}

} // namespace

QString wordsText(const WordLines &lines, QSize picture, WordsFormat format)
{
    if (format == WordsFormat::text)
        return plainText(lines);
    QString table;
    QJsonArray array;
    int number = 0;
    for (const auto &line : lines) {
        ++number;
        for (const TextRegion &word : line) {
            const QRect box = pixelsOf(word.boundingBox, picture);
            table += QStringLiteral("%1\t%2\t%3\t%4\t%5\t")
                         .arg(box.x())
                         .arg(box.y())
                         .arg(box.width())
                         .arg(box.height())
                         .arg(number)
                + word.text + '\n';
            array.append(QJsonObject{{QStringLiteral("left"), box.x()},
                                     {QStringLiteral("top"), box.y()},
                                     {QStringLiteral("width"), box.width()},
                                     {QStringLiteral("height"), box.height()},
                                     {QStringLiteral("line"), number},
                                     {QStringLiteral("text"), word.text}});
        }
    }
    return format == WordsFormat::json
        ? QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact)) + '\n'
        : table;
}

} // namespace tovek
