// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"

#include <memory>

class QJsonObject;

namespace tovek {

class WaylandOutputs;

/// The active window as sway tells it over its socket. The focus goes back to it by itself after a
/// capture. A window of ours that is open is brought to the workspace that is looked at; sway does
/// that for a new one by itself.
class SwayFrontmostApp : public FrontmostApp
{
public:
    /// Null where sway does not answer.
    static std::unique_ptr<SwayFrontmostApp> create(const QString &socketPath,
                                                    std::shared_ptr<WaylandOutputs> outputs);
    std::optional<RunningApplication> frontmost() const override { return std::nullopt; }
    std::optional<QRect> activeWindowFrame() const override;
    void activate(const RunningApplication &) override { }
    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void bringForward(QWindow &window) override;

private:
    SwayFrontmostApp(QString socketPath, std::shared_ptr<WaylandOutputs> outputs);

    QString m_socketPath;
    std::shared_ptr<WaylandOutputs> m_outputs;
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};

/// The frame of the focused window in sway's tree, with a title bar of its own: points of the
/// desktop, y down. Absent where no window is focused.
std::optional<QRect> focusedSwayWindow(const QJsonObject &tree);

} // namespace tovek
