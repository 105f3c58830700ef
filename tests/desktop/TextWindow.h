// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Eye.h"
#include "support/TestDesktop.h"

#include <chrono>
#include <vector>

namespace tovek {

/// A word on the screen, in pixels.
struct WordPlace
{
    QString text;
    QRect box;
};

/// Shows lines of text in a window there. Their words once they are painted; none when they did
/// not come.
inline std::vector<WordPlace> showText(TestDesktop &desktop, QRect native, int pixels, bool isDark,
                                       const QStringList &lines)
{
    QStringList arguments;
    for (int number : {native.x(), native.y(), native.width(), native.height()})
        arguments.append(QString::number(number));
    arguments += {QStringLiteral("DejaVu Sans"), QString::number(pixels),
                  isDark ? QStringLiteral("dark") : QStringLiteral("light")};
    Program *window = desktop.run(QStringLiteral(TOVEK_TEXT_WINDOW), arguments + lines);
    if (!window || !window->waitForLine(QStringLiteral("painted"), std::chrono::seconds(60)))
        return {};
    std::vector<WordPlace> words;
    for (const QString &line : window->lines()) {
        const QStringList parts = line.split(QLatin1Char(' '));
        if (parts.size() == 6 && parts[0] == QLatin1String("word"))
            words.push_back(
                {parts[5],
                 QRect(parts[1].toInt(), parts[2].toInt(), parts[3].toInt(), parts[4].toInt())});
    }
    return words;
}

/// Around all of them.
inline QRect boxAround(const std::vector<WordPlace> &words)
{
    QRect box;
    for (const WordPlace &word : words)
        box |= word.box;
    return box;
}

/// Whether the word has its blue highlight, which it gets once it is recognised. Dimming does not
/// change the hue.
inline bool isMarked(Eye &eye, const WordPlace &word)
{
    const QImage now = eye.look(word.box);
    int blue = 0;
    for (int y = 0; y < now.height(); ++y) {
        for (int x = 0; x < now.width(); ++x)
            blue += qBlue(now.pixel(x, y)) - qRed(now.pixel(x, y)) > 12;
    }
    return blue * 4 > now.width() * now.height();
}

} // namespace tovek
