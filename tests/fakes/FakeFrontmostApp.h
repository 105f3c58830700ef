// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"

#include <QCoreApplication>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace tovek {

/// Programs that are there because the test says so; remembers what it was asked for.
class FakeFrontmostApp : public FrontmostApp
{
public:
    std::optional<RunningApplication> frontmost() const override { return front; }
    std::optional<QRect> activeWindowFrame() const override { return frame; }
    void activate(const RunningApplication &application) override
    {
        activated.push_back(application);
        if (std::find(running.begin(), running.end(), application) != running.end())
            front = application;
    }
    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    ActivationPolicy activationPolicy() const override { return policy; }
    void bringForward(QWindow &window) override
    {
        broughtForward.push_back(&window);
        front = {window.winId(), 0, QCoreApplication::applicationPid()};
    }

    std::vector<RunningApplication> running; ///< those whose windows can come to the front
    std::optional<RunningApplication> front;
    std::optional<QRect> frame; ///< of what is in front
    std::vector<RunningApplication> activated; ///< whether or not it had an effect
    ActivationPolicy policy = ActivationPolicy::accessory;
    std::vector<QWindow *> broughtForward;
};

} // namespace tovek
