// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/DeferredHotKeys.h"
#include "platform/portal/PortalBus.h"

#include <QDBusObjectPath>
#include <QTimer>

#include <memory>

namespace tovek {

struct PortalAnswer;

/// Keys over the portal for shortcuts, which shows the user those that it has not seen, once, and
/// tells of presses and releases. It goes by names: under one that it knows, it keeps the key that
/// the user chose in its settings, so that the names have our keys in them.
class PortalHotKeys : public DeferredHotKeys
{
    Q_OBJECT

public:
    /// Null where the portal has none. Waits for it, a second at most. The layout must outlive
    /// this.
    /// KDE knows Shift with a key that types another sign then as that sign without Shift. GNOME
    /// (48) tells of no release where a modifier is let go first, and of a held key again and
    /// again: there a key counts as let go after a quarter of a second.
    enum class Desktop { gnome, kde, other };
    static std::unique_ptr<PortalHotKeys> create(std::shared_ptr<PortalBus> bus,
                                                 const KeyboardLayout &layout,
                                                 Desktop desktop = Desktop::other);
    ~PortalHotKeys() override;

    bool reportsRelease() const override { return true; }

protected:
    void ask() override;

private Q_SLOTS:
    void activated(const QDBusObjectPath &session, const QString &name, qulonglong time,
                   const QVariantMap &options);
    void deactivated(const QDBusObjectPath &session, const QString &name, qulonglong time,
                     const QVariantMap &options);

private:
    PortalHotKeys(std::shared_ptr<PortalBus> bus, const KeyboardLayout &layout, Desktop desktop);
    void listen();
    void openSession();
    void bind();
    void bound(const PortalAnswer &answer);
    void closeSession();
    QString triggerOf(KeyCombo combo) const;
    QString nameOf(KeyCombo combo) const;
    void fellSilent();
    std::optional<quint32> idOf(const QString &session, const QString &name) const;

    std::shared_ptr<PortalBus> m_bus;
    const Desktop m_desktop;
    QString m_session; ///< empty while there is none
    std::map<QString, KeyCombo> m_asked; ///< by name, in this session
    bool m_isBusy = false; ///< between a question and its answer
    bool m_isOutdated = false;
    // On GNOME:
    QString m_held; ///< the shortcut whose release is awaited, or whose repeats are passed over
    bool m_isReleaseTold = false;
    QTimer m_silence; ///< since it was last told of
};

} // namespace tovek
