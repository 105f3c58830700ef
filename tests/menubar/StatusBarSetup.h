// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "fakes/FakeClock.h"
#include "fakes/FakeTray.h"
#include "foundation/UserDefaults.h"
#include "menubar/StatusBarController.h"

#include <QAction>
#include <QTemporaryDir>

namespace tovek {

/// A status item whose desktop is a fake, and what came of what was done to it.
struct StatusBarSetup
{
    StatusBarSetup()
    {
        const auto record = [this](const char *name) {
            return [this, name] { chosen << QString::fromLatin1(name); };
        };
        controller.rows.actions = {record("start"),  record("image"),       record("text"),
                                   record("update"), record("preferences"), record("about"),
                                   record("quit")};
        controller.rows.bindShortcut = [](QAction &item, const QString &name) {
            if (name != QStringLiteral("captureText"))
                item.setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+2")));
            item.setObjectName(name);
        };
        controller.performDrag = [this](const DragOut &out) {
            drags.push_back(out);
            droppedBytes = QImage(out.file.toLocalFile());
        };
    }
    void start() { controller.setup(); }
    void preview(QSize size = QSize(1600, 400))
    {
        Image image{QImage(size, QImage::Format_RGB32),
                    {double(size.width()), double(size.height())}};
        image.bitmap.fill(Qt::blue);
        controller.showPreview(image, std::chrono::seconds(20));
    }
    bool showsIcon() const { return tray.picture.size == Size{18, 18}; }

    QTemporaryDir home;
    UserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
    FakeClock clock;
    FakeTray tray;
    QStringList symbols;
    StatusBarController controller{
        tray, clock, defaults, [this](const QString &name, const QColor &c, double, double s) {
            symbols << name;
            QImage image(qRound(16 * s), qRound(16 * s), QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(s);
            image.fill(c);
            return image;
        }};
    QStringList chosen;
    std::vector<DragOut> drags;
    QImage droppedBytes;
};

} // namespace tovek
