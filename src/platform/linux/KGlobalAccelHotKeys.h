// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/linux/KeyRepeatFilter.h"
#include "platform/linux/RawKeyFilter.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <map>
#include <memory>
#include <vector>

namespace tovek {

class KeyboardLayout;

/// The shortcuts of KDE's own table, where its Wayland window manager keeps them. It tells of
/// presses and releases, and refuses what another program has.
class KGlobalAccelHotKeys : public QObject, public HotKeys
{
    Q_OBJECT

public:
    /// Null unless KDE's window manager is the one that keeps the table: on other desktops its
    /// service may run, but sees no key. Needs no application. The layout must outlive this.
    static std::unique_ptr<KGlobalAccelHotKeys> create(const QDBusConnection &bus,
                                                       const KeyboardLayout &layout);
    ~KGlobalAccelHotKeys() override;

    [[nodiscard]] int grab(quint32 id, KeyCombo combo) override;
    void release(quint32 id) override;
    void setWatchingRawKeys(bool isOn) override { m_rawKeys.setWatching(isOn); }
    bool reportsRelease() const override { return true; }
    bool isTaken(KeyCombo combo) override;

    /// Another connection from now on, on which all keys are taken again.
    void setBus(const QDBusConnection &bus);

private Q_SLOTS:
    void shortcutPressed(const QString &component, const QString &action, qlonglong time);
    void shortcutReleased(const QString &component, const QString &action, qlonglong time);

private:
    KGlobalAccelHotKeys(const QDBusConnection &bus, const KeyboardLayout &layout);
    bool isOurs(KeyCombo combo) const;
    bool isKeptByTheWindowManager() const;
    bool connectSignals();
    bool registerKeys(quint32 id, const QList<int> &keys);
    void registerAgain();

    const KeyboardLayout &m_layout;
    QDBusConnection m_bus;
    std::map<quint32, KeyCombo> m_grabs;
    KeyRepeatFilter m_repeats;
    RawKeyFilter m_rawKeys;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
};

} // namespace tovek
