// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"

#include <vector>

namespace tovek {

/// Remembers what was activated.
class FakeFrontmostApp : public FrontmostApp
{
public:
    std::optional<RunningApplication> frontmost() const override { return front; }
    void activate(const RunningApplication &application) override
    {
        activated.push_back(application);
    }
    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    ActivationPolicy activationPolicy() const override { return policy; }
    void bringForward(QWindow &window) override { broughtForward.push_back(&window); }

    std::optional<RunningApplication> front;
    std::vector<RunningApplication> activated;
    ActivationPolicy policy = ActivationPolicy::regular;
    std::vector<QWindow *> broughtForward;
};

} // namespace tovek
