// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/BusPixmap.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QtEndian>

#include <cmath>

namespace tovek {

namespace {

constexpr int rimOpacity = 150; // of 255, of each of nine layers

/// A panel does not tell its colour. That of GNOME is dark in every theme; others follow the theme.
QColor panelTint()
{
    if (qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QStringLiteral("GNOME")))
        return Qt::white;
    return QGuiApplication::palette().color(QPalette::WindowText);
}

/// The panel may be of the other kind than its colour was taken for: a rim of the opposite colour
/// keeps the symbol legible there, and is not seen where the colour was right.
QImage rimmed(const QImage &symbol)
{
    QImage rim = symbol;
    {
        QPainter painter(&rim);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        const bool isDark = panelTint().lightness() < 128;
        painter.fillRect(rim.rect(),
                         isDark ? QColor(255, 255, 255, rimOpacity) : QColor(0, 0, 0, rimOpacity));
    }
    QImage result(symbol.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    for (int y = -1; y <= 1; ++y) {
        for (int x = -1; x <= 1; ++x)
            painter.drawImage(x, y, rim);
    }
    painter.drawImage(0, 0, symbol);
    return result;
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const BusPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const BusToolTip &tip)
{
    argument.beginStructure();
    argument << tip.iconName << tip.icon << tip.title << tip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusToolTip &tip)
{
    argument.beginStructure();
    argument >> tip.iconName >> tip.icon >> tip.title >> tip.text;
    argument.endStructure();
    return argument;
}

BusPixmap busPixmap(const TrayPicture &picture, int side)
{
    // The host draws squares only: a wide picture keeps its proportions and gets empty bands.
    const double shrink = std::min(side / picture.size.width, side / picture.size.height);
    const Size fitting{picture.size.width * shrink, picture.size.height * shrink};
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    {
        QPainter painter(&square);
        painter.drawImage(QPointF(std::floor((side - fitting.width) / 2),
                                  std::floor((side - fitting.height) / 2)),
                          picture.paint(fitting, panelTint(), 1));
    }
    square = rimmed(square).convertToFormat(QImage::Format_ARGB32);
    BusPixmap result{side, side, QByteArray(square.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(square.constBits(), side * side, result.bytes.data());
    return result;
}

} // namespace tovek
