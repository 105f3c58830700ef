// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QImage>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantMap>

#include <vector>

namespace tovek {

/// What mutter tells of its monitors and gives as their recordings, on the session bus, with a
/// stand-in for the program that takes the frames out of them: it takes the pictures here. Answers
/// from the main loop.
class FakeMutter : public QDBusVirtualObject
{
public:
    struct Monitor
    {
        QString connector;
        QPoint position;
        QImage picture; ///< upright, as a person sees it
        uint transform = 0; ///< as mutter counts them
    };

    /// On the bus that the environment names.
    FakeMutter();
    ~FakeMutter() override;

    void setMonitors(std::vector<Monitor> monitors) { m_monitors = std::move(monitors); }
    const std::vector<Monitor> &monitors() const { return m_monitors; }
    void setPicture(size_t monitor, const QImage &picture);
    /// The stand-in. `script` is what it does with a line of its input in place of answering it,
    /// with the variables node, width, height and offset.
    QString program(const QString &script = {}) const;

    QString refused; ///< the method that fails
    QStringList calls; ///< the methods, those of recordings with their connector
    std::vector<QVariantMap> options; ///< of each recording

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override;

private:
    QVariantList answer(const QDBusMessage &message);
    QVariantList state() const;
    void start() const;

    std::vector<Monitor> m_monitors;
    std::vector<size_t> m_recorded; ///< index of the monitor of each stream
    QTemporaryDir m_folder;
    QDBusConnection m_bus;
};

} // namespace tovek
