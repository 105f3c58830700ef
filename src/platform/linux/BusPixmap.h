// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QDBusArgument>

namespace tovek {

/// One size of an icon as it travels over the bus: ARGB, most significant byte first.
struct BusPixmap
{
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using BusPixmaps = QList<BusPixmap>;

/// An item's tool tip: the icon's name, the icon, a title and a text.
struct BusToolTip
{
    QString iconName;
    BusPixmaps icon;
    QString title;
    QString text;
};

QDBusArgument &operator<<(QDBusArgument &argument, const BusPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const BusToolTip &tip);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusToolTip &tip);

/// The picture for a panel that draws squares of `side` pixels: whole, in the colour that suits
/// the panel, and with a rim that keeps it legible on one of the other kind.
BusPixmap busPixmap(const TrayPicture &picture, int side);

} // namespace tovek

Q_DECLARE_METATYPE(tovek::BusPixmap)
Q_DECLARE_METATYPE(tovek::BusToolTip)
