// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "fakes/FakePortal.h"
#include "support/Skip.h"
#include "support/TestBus.h"

#include <QDBusConnection>

#include <memory>

namespace tovek {

/// What tests of the portal's services share: a message bus of their own with a portal on it whose
/// answers the test decides, and the program's connection to it.
class PortalTest : public QObject
{
protected:
    /// For initTestCase.
    static void needBus()
    {
        SKIP_BECAUSE(TestBus::isInstalled() ? QString() : QStringLiteral("no dbus-daemon"));
    }
    /// `appId`: what the portal takes the program for; empty for what it registers as.
    void begin(const QString &appId = QString())
    {
        m_bus = std::make_unique<TestBus>();
        QVERIFY(m_bus->start());
        m_session = QStringLiteral("test of ") + m_bus->address();
        QDBusConnection::connectToBus(m_bus->address(), m_session);
        m_portal = std::make_unique<FakePortal>(m_bus->address(), appId);
        m_portalBus = std::make_shared<PortalBus>(QDBusConnection(m_session));
    }
    /// After what uses the connection has gone.
    void end()
    {
        m_portalBus.reset();
        m_portal.reset();
        QDBusConnection::disconnectFromBus(m_session);
        m_bus.reset();
    }

    std::unique_ptr<TestBus> m_bus;
    QString m_session; ///< name of the program's connection
    std::unique_ptr<FakePortal> m_portal;
    std::shared_ptr<PortalBus> m_portalBus;
};

} // namespace tovek
