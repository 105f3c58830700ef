// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Pictures.h"

#include <QPainter>

#include <cmath>
#include <random>

namespace tovek::bench {

namespace {

int toByte(float value)
{
    return int(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

} // namespace

QImage photographicNoise(QSize size)
{
    constexpr quint32 mask = 0xffff;
    std::mt19937 random(7);
    std::normal_distribution<float> normal(0, 1);
    std::vector<float> noise(mask + 1);
    for (float &value : noise)
        value = normal(random);

    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *const line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const float v = float(y) / float(size.height());
        for (int x = 0; x < size.width(); ++x) {
            const float u = float(x) / float(size.width());
            const quint32 a = quint32(random());
            const quint32 b = quint32(random());
            const float luminance = 3 * noise[a & mask];
            const float red = 128 + 90 * std::sin(5 * u + 3 * v) + luminance + 2 * noise[a >> 16];
            const float green =
                120 + 80 * std::sin(3 * u - 4 * v + 1) + luminance + 1.5F * noise[b & mask];
            const float blue =
                110 + 70 * std::cos(4 * u + 2 * v) + luminance + 2.5F * noise[b >> 16];
            line[x] = qRgb(toByte(red), toByte(green), toByte(blue));
        }
    }
    return image;
}

QImage windowsWithText(QSize size)
{
    constexpr int titleHeight = 28;
    constexpr int lineHeight = 17;
    std::mt19937 random(5);
    const auto below = [&](int limit) { return int(random() % quint32(std::max(1, limit))); };
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor(0x1d3b53));
    gradient.setColorAt(1, QColor(0x7fdbca));
    painter.fillRect(image.rect(), gradient);
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setPixelSize(13);
    painter.setFont(font);
    for (int window = 0; window < 5; ++window) {
        const bool isLight = window % 2;
        const QRect rect(below(size.width() / 2), below(size.height() / 2),
                         size.width() / 3 + below(size.width() / 4),
                         size.height() / 3 + below(size.height() / 4));
        painter.fillRect(rect, isLight ? QColor(250, 250, 250) : QColor(40, 42, 54));
        painter.fillRect(rect.x(), rect.y(), rect.width(), titleHeight, QColor(220, 220, 225));
        painter.setPen(isLight ? QColor(30, 30, 30) : QColor(220, 220, 220));
        for (int y = rect.y() + 46; y < rect.bottom() - 6; y += lineHeight) {
            QString line;
            for (int length = 20 + below((rect.width() - 200) / 8); length > 0; --length)
                line += below(6) ? QLatin1Char(char('a' + below(26))) : QLatin1Char(' ');
            painter.drawText(rect.x() + 10, y, line);
        }
    }
    return image;
}

QImage pageOfText(QSize size)
{
    constexpr int margin = 24;
    constexpr int lineHeight = 22;
    const QStringList words =
        QStringLiteral("the harbour lights went out before anyone could read what was written on "
                       "a board beside every second boat so they waited quietly for morning")
            .split(' ');
    std::mt19937 random(11);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(14);
    painter.setFont(font);
    painter.setPen(QColor(25, 25, 25));
    const QFontMetrics metrics(font);
    for (int y = margin + lineHeight; y < size.height() - margin; y += lineHeight) {
        QString line;
        for (;;) {
            const QString longer = line + words[qsizetype(random() % quint32(words.size()))] + ' ';
            if (metrics.horizontalAdvance(longer) > size.width() - 2 * margin)
                break;
            line = longer;
        }
        painter.drawText(margin, y, line);
    }
    return image;
}

} // namespace tovek::bench
