// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/RunningTovek.h"

#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace tovek {

namespace {

// Hardware code of a key by its position, Command and Shift held with it.
QString storedShortcut(int keyCode)
{
    return QStringLiteral("{\"carbonKeyCode\":%1,\"carbonModifiers\":768}").arg(keyCode);
}

} // namespace

RunningTovek::RunningTovek(TestDesktop &desktop, const QString &path)
    : m_desktop(desktop)
    , m_path(path)
    , m_hand(desktop.displayName())
    , m_eye(desktop.displayName())
{
}

QJsonObject RunningTovek::settings(const QJsonObject &more)
{
    QJsonObject settings{// Words are found at any time, and their marks would change pixels.
                         {QStringLiteral("highlightText"), false},
                         // A notification would come into the pictures, too.
                         {QStringLiteral("toldOfNoStatusItem"), true},
                         {QStringLiteral("KeyboardShortcuts_captureScreenshot"), storedShortcut(8)},
                         {QStringLiteral("KeyboardShortcuts_captureImage"), storedShortcut(34)},
                         {QStringLiteral("KeyboardShortcuts_captureText"), storedShortcut(17)}};
    for (auto it = more.begin(); it != more.end(); ++it) {
        if (it.value().isNull())
            settings.remove(it.key());
        else
            settings.insert(it.key(), it.value());
    }
    return settings;
}

bool RunningTovek::writeSettings(const QByteArray &bytes) const
{
    const QString folder = m_desktop.configFolder() + QStringLiteral("/tovek");
    QFile file(folder + QStringLiteral("/defaults.json"));
    return QDir().mkpath(folder) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

bool RunningTovek::start(double scale, const QJsonObject &more)
{
    if (!writeSettings(QJsonDocument(settings(more)).toJson())) {
        m_error = QStringLiteral("cannot write the settings");
        return false;
    }
    return startAsItIs(scale) && waitUntil([&] {
               return holds(QLatin1String(captureScreenshot)) && holds(QLatin1String(captureImage));
           });
}

bool RunningTovek::startAsItIs(double scale)
{
    variables[QStringLiteral("QT_SCALE_FACTOR")] = QString::number(scale);
    if (!readsText)
        variables[QStringLiteral("TESSDATA_PREFIX")] = m_desktop.home() + "/no-models";
    m_program = m_desktop.run(m_path, {QStringLiteral("--background")}, variables);
    m_error =
        m_program ? QStringLiteral("the program does not hold its shortcuts") : m_desktop.error();
    return m_program != nullptr;
}

bool RunningTovek::holds(const QString &chord) const
{
    return m_hand.isTaken(chord);
}

bool RunningTovek::covers(const QList<QRect> &monitors) const
{
    const QList<SeenWindow> overlays = m_eye.overlays(QStringLiteral("tovek"));
    return std::all_of(monitors.begin(), monitors.end(), [&](QRect monitor) {
        return std::any_of(overlays.begin(), overlays.end(),
                           [&](const SeenWindow &window) { return window.native == monitor; });
    });
}

bool RunningTovek::isShownOn(const QRect &monitor) const
{
    const QList<SeenWindow> windows = m_eye.windows();
    return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow &window) {
        return window.isUnmanaged && window.native == monitor
            && window.windowClass.compare(QStringLiteral("tovek"), Qt::CaseInsensitive) == 0;
    });
}

bool RunningTovek::open(const QString &chord, const QList<QRect> &monitors)
{
    return m_hand.tap(chord) && waitUntil([&] { return covers(monitors); });
}

bool RunningTovek::waitUntilGone() const
{
    return waitUntil([&] {
        const QList<SeenWindow> windows = m_eye.windows();
        return std::none_of(windows.begin(), windows.end(), [](const SeenWindow &window) {
            return window.windowClass.compare(QStringLiteral("tovek"), Qt::CaseInsensitive) == 0;
        });
    });
}

} // namespace tovek
