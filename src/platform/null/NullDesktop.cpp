// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/null/NullDesktop.h"

#include "foundation/WhenReady.h"

#include <QWindow>

namespace tovek {

namespace {

class ImageDisplay : public FrozenDisplay
{
public:
    explicit ImageDisplay(QImage image) : m_image(std::move(image)) { }
    QSize size() const override { return m_image.size(); }
    QFuture<QImage> pixels() override { return readyFuture(m_image); }

private:
    QImage m_image;
};

class ToolkitSurface : public OverlaySurface
{
public:
    explicit ToolkitSurface(QWindow &window) : m_window(window) { }
    void orderFrontRegardless() override { m_window.show(); }
    void orderOut() override { m_window.hide(); }
    bool isVisible() const override { return m_window.isVisible(); }
    void makeKey() override { m_window.requestActivate(); }
    bool isKey() const override { return m_window.isActive(); }
    bool present(const DisplayList &) override { return false; }
    void setCovered(const QRegion &) override { }
    void setFollowsPointer(bool) override { }

private:
    QWindow &m_window;
};

} // namespace

QFuture<ScreenGrabber::Result> NullScreenGrabber::capture(const ShareableContent &,
                                                          const CaptureDisplay &,
                                                          const std::vector<quint32> &)
{
    return readyFuture(Result{nullptr, QStringLiteral("this session cannot be captured")});
}

std::shared_ptr<FrozenDisplay> NullScreenGrabber::frozenFromImage(const QImage &image)
{
    return std::make_shared<ImageDisplay>(image.convertToFormat(QImage::Format_RGB32));
}

std::unique_ptr<OverlaySurface> NullOverlayShell::create(QWindow &window, const Screen &,
                                                         std::shared_ptr<FrozenDisplay>)
{
    return std::make_unique<ToolkitSurface>(window);
}

void NullFrontmostApp::bringForward(QWindow &window)
{
    window.raise();
    window.requestActivate();
}

} // namespace tovek
