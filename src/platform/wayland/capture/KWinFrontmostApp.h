// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"

#include <QRectF>

#include <memory>

namespace tovek {

class WaylandOutputs;

/// The active window as KWin tells it to a script that it runs: no protocol and no service of it
/// does. The focus goes back to that window by itself after a capture.
class KWinFrontmostApp : public FrontmostApp
{
public:
    /// Null without KWin.
    static std::unique_ptr<KWinFrontmostApp> create(std::shared_ptr<WaylandOutputs> outputs);
    std::optional<RunningApplication> frontmost() const override { return std::nullopt; }
    /// Waits for the answer, a second at most.
    std::optional<QRect> activeWindowFrame() const override;
    void activate(const RunningApplication &) override { }
    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void bringForward(QWindow &window) override;

private:
    explicit KWinFrontmostApp(std::shared_ptr<WaylandOutputs> outputs);

    std::shared_ptr<WaylandOutputs> m_outputs;
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};

} // namespace tovek
