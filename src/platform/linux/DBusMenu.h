// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>

#include <vector>

namespace tovek {

/// A menu that somebody else draws, who reads its rows over the bus. Main thread only.
class DBusMenu : public QDBusVirtualObject
{
public:
    static constexpr const char *path = "/MenuBar"; ///< where hosts look for it by habit

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override;

    /// Asked each time that the menu is about to be shown.
    std::function<std::vector<TrayMenuRow>()> rows;
    std::function<void(int row)> onChosen;

private:
    QVariantList answer(const QString &method, const QVariantList &arguments,
                        const QDBusConnection &bus);
    QVariantList layout(const QVariantList &arguments);
    QVariantList groupProperties(const QVariantList &arguments) const;
    QVariantMap propertiesOf(int id) const;
    bool update(const QDBusConnection &bus);
    void happened(int id, const QString &event);

    std::vector<TrayMenuRow> m_rows; ///< as the host knows them; ids are one more than the index
    uint m_revision = 1;
};

} // namespace tovek
