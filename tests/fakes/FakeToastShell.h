// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ToastWindow.h"

#include <vector>

namespace tovek {

class FakeToastShell;

/// A toast window that shows nothing and remembers what it was told.
class FakeToastWindow : public ToastWindow
{
public:
    FakeToastWindow(FakeToastShell &shell, QRect native, QString title);
    ~FakeToastWindow() override;
    void orderFront() override { isVisible = true; }
    void present(const QImage &picture) override
    {
        shown = picture;
        ++frames;
    }
    void vanish(const QImage &empty) override;

    const QRect native;
    const QString title;
    bool isVisible = false;
    QImage shown;
    int frames = 0;

private:
    FakeToastShell &m_shell;
};

class FakeToastShell : public ToastShell
{
public:
    std::unique_ptr<ToastWindow> create(QRect native, const QString &title) override
    {
        return std::make_unique<FakeToastWindow>(*this, native, title);
    }
    bool blends() const override { return canBlend; }
    QImage pixelsBelow(QRect native) override
    {
        QImage image(native.size(), QImage::Format_RGB32);
        image.fill(background);
        return image;
    }

    bool canBlend = true;
    QColor background = Qt::white;
    std::vector<FakeToastWindow *> windows; ///< alive, in order of creation
    std::vector<QImage> vanished; ///< what was left behind by each window that vanished
};

inline FakeToastWindow::FakeToastWindow(FakeToastShell &shell, QRect rect, QString text)
    : native(rect)
    , title(std::move(text))
    , m_shell(shell)
{
    m_shell.windows.push_back(this);
}

inline FakeToastWindow::~FakeToastWindow()
{
    std::erase(m_shell.windows, this);
}

inline void FakeToastWindow::vanish(const QImage &empty)
{
    isVisible = false;
    m_shell.vanished.push_back(empty);
}

} // namespace tovek
