// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ToastWindow.h"

#include <memory>

namespace tovek {

class WaylandConnection;
class WaylandOutputs;

/// Toasts as surfaces of the layer shell, which take neither the keyboard nor the pointer and let
/// what lies below shine through. What that is, they are not told.
class LayerToastShell : public ToastShell
{
public:
    /// Null where the compositor offers no such surfaces.
    static std::unique_ptr<LayerToastShell> create(std::shared_ptr<WaylandConnection> connection,
                                                   std::shared_ptr<WaylandOutputs> outputs);
    ~LayerToastShell() override;

    std::unique_ptr<ToastWindow> create(QRect native, const QString &title) override;
    bool blends() const override { return true; }
    QImage pixelsBelow(QRect) override { return {}; }

    struct Globals; ///< of the compositor

private:
    explicit LayerToastShell(std::shared_ptr<Globals> globals);

    std::shared_ptr<Globals> m_globals;
};

} // namespace tovek
