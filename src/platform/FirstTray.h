// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Tray.h"

#include <QObject>

#include <memory>
#include <vector>

namespace tovek {

/// Several ways to the status area, of which the first that has a host shows the item; one that is
/// a last resort only once nobody else has any. With none there is no item. Main thread only.
class FirstTray : public QObject, public Tray
{
public:
    /// In order of preference; null ones are left out.
    explicit FirstTray(std::vector<std::unique_ptr<Tray>> trays);

    void setVisible(bool isVisible) override;
    void setPicture(const TrayPicture &picture) override;
    void setToolTip(const QString &text) override;
    bool hasHost() const override { return m_current != nullptr; }
    bool isLookingForHost() const override;
    bool canDrag() const override { return m_current && m_current->canDrag(); }
    bool drawsMenu() const override { return m_current && m_current->drawsMenu(); }
    QObject *dragSource() override { return m_current ? m_current->dragSource() : this; }
    QRect geometry() const override { return m_current ? m_current->geometry() : QRect(); }

private:
    Tray *best() const;
    void choose();
    void moveTo(Tray *tray);

    std::vector<std::unique_ptr<Tray>> m_trays;
    Tray *m_current = nullptr;
    bool m_isVisible = false;
    TrayPicture m_picture;
    QString m_toolTip;
};

} // namespace tovek
