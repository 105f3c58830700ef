// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/FrontmostApp.h"
#include "platform/OverlaySurface.h"
#include "platform/ScreenGrabber.h"

namespace tovek {

/// What a session without a usable window system has: no screens, so that no capture starts.
class NullScreens : public Screens
{
public:
    std::vector<Screen> all() const override { return {}; }
    std::optional<Screen> main() const override { return std::nullopt; }
    Point mouseLocation() const override { return {}; }
};

/// Has nothing to capture and says so.
class NullScreenGrabber : public ScreenGrabber
{
public:
    void prepare() override { }
    std::optional<ShareableContent> shareableContent() override { return std::nullopt; }
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    QImage captureFallback(QRect, const std::vector<quint32> &) override { return {}; }
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override;
};

/// Shows the window as the toolkit does and draws nothing itself: the widget paints.
class NullOverlayShell : public OverlayShell
{
public:
    void prepare() override { }
    std::unique_ptr<OverlaySurface> create(QWindow &window, const Screen &screen,
                                           std::shared_ptr<FrozenDisplay> frozen) override;
};

/// Knows no other program; brings our own windows forward as far as the toolkit can.
class NullFrontmostApp : public FrontmostApp
{
public:
    std::optional<RunningApplication> frontmost() const override { return std::nullopt; }
    void activate(const RunningApplication &) override { }
    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void bringForward(QWindow &window) override;

private:
    ActivationPolicy m_policy = ActivationPolicy::accessory;
};

} // namespace tovek
