// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/linux/KeyRepeatFilter.h"
#include "platform/linux/RawKeyFilter.h"
#include "platform/wayland/SwayIpc.h"

#include <QObject>
#include <QSocketNotifier>

#include <map>
#include <memory>

namespace tovek {

class KeyboardLayout;

/// Bindings that sway keeps for us as long as it runs, by key and not by what it types. They do
/// nothing; that they were pressed and released is among the events that sway tells. A binding of
/// the user's own to the same key gives way to ours until we let it go.
class SwayHotKeys : public HotKeys
{
public:
    /// Null where no sway listens at the path. Needs no application. The layout must outlive this.
    static std::unique_ptr<SwayHotKeys> create(const QString &socketPath,
                                               const KeyboardLayout &layout);
    ~SwayHotKeys() override;

    [[nodiscard]] int grab(quint32 id, KeyCombo combo) override;
    void release(quint32 id) override;
    void setWatchingRawKeys(bool isOn) override { m_rawKeys.setWatching(isOn); }
    bool reportsRelease() const override { return true; }
    /// What the user's configuration binds.
    bool isTaken(KeyCombo combo) override;

    /// Keys are told from the main loop from now on, those pressed since the grabs first. Needs
    /// the application.
    void startDispatching();

private:
    SwayHotKeys(QString socketPath, const KeyboardLayout &layout);
    bool connectToSway();
    void watchEvents();
    void reconnect();
    void lost();
    void dispatch();
    void handleBinding(const QString &command);
    void bindAll();
    bool run(const QString &command);
    struct Grab
    {
        KeyCombo combo;
        quint32 number; ///< of its binding; no two have the same
    };
    bool bind(const Grab &grab);
    void unbind(KeyCombo combo);
    void unbindLeaving(std::map<quint32, KeyCombo>::iterator leaving);
    bool isLeaving(KeyCombo combo) const;
    QString mark(quint32 number) const;
    bool isBoundInFile(const QString &text, KeyCombo combo, QHash<QString, QString> &variables,
                       int depth) const;

    const QString m_socketPath;
    const KeyboardLayout &m_layout;
    std::unique_ptr<SwayIpc> m_commands;
    std::unique_ptr<SwayIpc> m_events;
    std::map<quint32, Grab> m_grabs;
    std::map<quint32, KeyCombo> m_leaving; ///< by number: bound until their keys are up
    quint32 m_lastNumber = 0;
    KeyRepeatFilter m_repeats; ///< of numbers
    RawKeyFilter m_rawKeys;
    bool m_knowsNoRepeat = true; ///< since sway 1.8
    bool m_isDispatching = false;
    int m_attempts = 0; ///< to reach sway again
    QObject m_context; ///< of delayed calls
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tovek
