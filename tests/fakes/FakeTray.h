// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QColor>
#include <QObject>

#include <optional>

namespace tovek {

/// A status item in a host that the test plays.
class FakeTray : public QObject, public Tray
{
public:
    void setVisible(bool visible) override { isVisible = visible; }
    void setPicture(const TrayPicture &newPicture) override
    {
        picture = newPicture;
        ++pictures;
    }
    void setToolTip(const QString &text) override { toolTip = text; }
    bool hasHost() const override { return host; }
    bool isLastResort() const override { return isPoor; }
    bool isLookingForHost() const override { return isLooking; }
    bool canDrag() const override { return host && drags; }
    bool drawsMenu() const override { return hostDraws; }
    QObject *dragSource() override { return this; }
    QRect geometry() const override { return place; }

    void press(QPointF at) { onPressed(at); }
    void moveTo(QPointF at) { onMoved(at); }
    void release(QPointF at) { onReleased(at); }
    void setHost(bool hasOne)
    {
        host = hasOne;
        isLooking = false;
        if (onHostChanged)
            onHostChanged();
    }
    QImage painted(double scale = 1) const { return picture.paint(picture.size, Qt::black, scale); }

    bool host = true;
    bool isPoor = false;
    bool isLooking = false;
    bool drags = true;
    bool hostDraws = false;
    QRect place{100, 0, 24, 24};
    std::optional<bool> isVisible;
    TrayPicture picture;
    int pictures = 0;
    QString toolTip;
};

} // namespace tovek
