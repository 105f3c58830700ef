// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"
#include "platform/linux/SessionBus.h"

#include <QObject>

#include <memory>

namespace tovek {

bool isWaylandSession();

/// A black picture and overlays over a desktop that nobody can see would be worse than none.
std::unique_ptr<CapturePermission> refuseToCapture();

/// Before the process ends: what must not be cut short has five seconds.
void waitForUnfinished();
/// The same, and ends the process with 1. Nothing of the toolkit can be taken down in order without
/// its server.
[[noreturn]] void exitUnfinished();

/// A service that follows the bus.
template <typename Service, typename... More>
std::unique_ptr<Service> onBus(const SessionBus &bus, More... more)
{
    auto service = std::make_unique<Service>(bus.connection(), more...);
    QObject::connect(&bus, &SessionBus::changed, service.get(), &Service::setBus);
    return service;
}

} // namespace tovek
