// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"
#include "platform/portal/PermissionStore.h"
#include "platform/portal/PortalBus.h"

#include <memory>

namespace tovek {

/// The desktop's one question whether this program may take screenshots. GNOME puts it only while
/// a window of the program has the focus, so it is put from ours.
class PortalCapturePermission : public QObject, public CapturePermission
{
public:
    /// Who asks: other desktops than GNOME put the question themselves, with the first picture.
    enum class Asking { before, withTheFirstPicture };
    PortalCapturePermission(std::shared_ptr<PortalBus> bus, Asking asking);

    bool hasAccess() const override;
    /// Puts the question, also to somebody who has answered no before.
    void requestAccess() override;
    void openSettings() override { }
    std::optional<CaptureAdvice> advice() const override;
    bool isAsking() const override { return m_isAsking; }

private:
    StoredAnswer answer() const;
    void answered();

    std::shared_ptr<PortalBus> m_bus;
    const Asking m_asking;
    bool m_isAsking = false;
    bool m_isGranted = false; ///< by a desktop that keeps no answers
};

} // namespace tovek
