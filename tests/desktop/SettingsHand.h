// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/Launched.h"

#include <QColor>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace tovek {

/// Someone who uses the settings window at scale 1, by the places of its controls. Places in the
/// window count from the outer corner of its frame.
struct SettingsHand : Launched
{
    static constexpr QSize fieldSize{130, 26};
    static constexpr int rowHeight = 46;
    static constexpr int switchLeft = 388;

    bool openTab(const char *action, const char *title)
    {
        // After the first key of a new keyboard, window managers take their shortcuts anew; the
        // window comes after that.
        if (!hand->tap(QStringLiteral("Shift_L")) || !activateAction(action) || !isInFront(title))
            return false;
        settings = eye->activeWindow();
        return true;
    }
    bool openShortcuts()
    {
        if (!openTab("preferences", "General"))
            return false;
        hand->click(corner() + QPoint(223, 36));
        return isInFront("Shortcuts");
    }
    QPoint corner() const
    {
        for (const char *title : {"General", "Shortcuts", "About"}) {
            const QList<SeenWindow> found = windowsTitled(*eye, title);
            if (!found.isEmpty())
                return found.first().native.topLeft();
        }
        return {};
    }

    /// The field of a row of the tab Shortcuts, on the screen.
    QRect field(int row) const { return {corner() + QPoint(293, 92 + rowHeight * row), fieldSize}; }
    /// True while the field has the ring of the keyboard around it.
    bool isRecording(int row) const
    {
        const QRect rect = field(row);
        const QColor edge = eye->pixel(QPoint(rect.left() + 1, rect.center().y()));
        return edge.hsvSaturation() > 100;
    }
    bool startsRecording(int row)
    {
        hand->click(field(row).center());
        return waitUntil([&] { return isRecording(row); });
    }
    /// The keys, pressed once the recorder has settled; true when it has ended by them.
    bool endsRecording(int row, const char *chord)
    {
        return hand->tap(QLatin1String(chord)) && waitUntil([&] { return !isRecording(row); });
    }

    bool isAlertOpen()
    {
        return waitUntil([&] { return eye->activeWindow() && eye->activeWindow() != settings; });
    }
    bool isBack()
    {
        return waitUntil([&] { return eye->activeWindow() == settings; });
    }

    QJsonObject stored(const QString &file = QStringLiteral("defaults.json")) const
    {
        QFile store(desktop->configFolder() + QStringLiteral("/tovek/") + file);
        return store.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(store.readAll()).object()
                                               : QJsonObject();
    }
    /// Key code and modifiers as they are stored; empty when there is none.
    QString shortcut(const char *name) const
    {
        const QString text =
            stored().value(QStringLiteral("KeyboardShortcuts_") + QLatin1String(name)).toString();
        const QJsonObject keys = QJsonDocument::fromJson(text.toUtf8()).object();
        return keys.isEmpty() ? QString()
                              : QStringLiteral("%1 %2")
                                    .arg(keys.value(QStringLiteral("carbonKeyCode")).toInt())
                                    .arg(keys.value(QStringLiteral("carbonModifiers")).toInt());
    }
    bool comesToStore(const char *name, const char *expected)
    {
        return waitUntil([&] { return shortcut(name) == QLatin1String(expected); });
    }

    xcb_window_t settings = 0;
};

} // namespace tovek
