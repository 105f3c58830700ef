// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/mutter/ScreenCastFrames.h"
#include "platform/portal/PictureCut.h"

#include <QDBusConnection>
#include <QTimer>

#include <chrono>

class QDBusMessage;

namespace tovek {

/// One recording of all monitors, as long as the first frame of each takes. Whatever of it is left
/// ends with this object: it has a connection of its own, without which mutter drops it. Main
/// thread only.
class MutterScreenCast : public QObject
{
    Q_OBJECT

public:
    /// Whether there is a mutter that offers it. Waits for the bus.
    static bool isOffered(const QDBusConnection &bus);

    /// Begins at once; `program` takes the frames. Nothing is called before it returns.
    MutterScreenCast(const QString &program, std::vector<PortalDisplay> displays,
                     std::chrono::milliseconds limit);
    ~MutterScreenCast() override;

    /// Called once: a picture of each display, or none and the reason.
    std::function<void(std::vector<QImage> images, const QString &error)> onFinished;

private Q_SLOTS:
    void streamAdded(uint node, const QDBusMessage &signal);

private:
    using Use = std::function<void(const QDBusMessage &)>;
    void send(const QDBusMessage &call, Use use);
    void listMonitors();
    void openSession();
    void recordWhenKnown();
    void addFrame(size_t index, const QImage &frame);
    void finish(const QString &error);

    const std::vector<PortalDisplay> m_displays;
    const QString m_connectionName;
    QDBusConnection m_connection;
    ScreenCastFrames m_frames;
    QTimer m_limit;
    QStringList m_connectors; ///< of each display, once known
    QString m_session; ///< its path, once known
    std::map<QString, size_t> m_streams; ///< by path
    std::vector<QImage> m_images;
    size_t m_missing;
    bool m_isFinished = false;
};

} // namespace tovek
