// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What child widgets show over a frozen screen.

#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "platform/wayland/capture/WaylandScreens.h"
#include "platform/wayland/overlay/LayerOverlayShell.h"
#include "support/compositor/RunOnCompositor.h"

#include <QApplication>
#include <QBackingStore>
#include <QWidget>
#include <QWindow>

using namespace tovek;

namespace {

constexpr QSize size(640, 480);
constexpr QRect childRect(100, 200, 120, 40);
constexpr QRgb frozenColor = 0xff203040;
constexpr int deadline = 20000;

TestCompositor *compositor = nullptr;

QImage frozenPicture()
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(frozenColor);
    return image;
}

QRgb shown(QPoint at)
{
    return compositor->look(0).pixel(at);
}

/// Paints nothing but its child, which comes later.
struct OverlaidWindow : QWidget
{
    OverlaidWindow() : child(new QWidget(this))
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_NoSystemBackground);
        child->setGeometry(childRect);
        child->setAutoFillBackground(true);
        paintChild(Qt::red);
        child->hide();
        winId();
    }
    void paintChild(const QColor &color) const { child->setPalette(color); }

    QWidget *child;
};

} // namespace

class TestLayerOverlayShell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsWhatWasPaintedWhileTheCompositorWasBusy()
    {
        const auto connection = WaylandConnection::open();
        QVERIFY(connection);
        connection->handleInMainLoop();
        const auto outputs = std::make_shared<WaylandOutputs>(connection);
        const WaylandScreens screens(outputs);
        const auto shell = LayerOverlayShell::create(outputs, nullptr);
        QVERIFY(shell);
        OverlaidWindow window;
        const auto surface = shell->create(
            *window.windowHandle(), screens.all().front(),
            std::make_shared<WaylandFrozenDisplay>(SharedPixels::fromImage(frozenPicture())));
        window.setAttribute(Qt::WA_UpdatesDisabled);
        surface->orderFrontRegardless();
        QCoreApplication::removePostedEvents(&window, QEvent::UpdateLater);
        window.setAttribute(Qt::WA_UpdatesDisabled, false);
        window.backingStore()->resize(window.size());
        QTRY_VERIFY_WITH_TIMEOUT(window.windowHandle()->isExposed(), deadline);
        surface->setCovered(childRect);
        window.child->show();
        const QPoint inChild = childRect.center();
        QTRY_COMPARE_WITH_TIMEOUT(shown(inChild), 0xffff0000, deadline);
        QCOMPARE(shown({5, 5}), frozenColor);
        compositor->setFrames(TestCompositor::Frames::hold);
        window.paintChild(Qt::green);
        QTRY_COMPARE_WITH_TIMEOUT(shown(inChild), 0xff00ff00, deadline);
        // The toolkit gives up on the compositor.
        QTRY_VERIFY_WITH_TIMEOUT(!window.windowHandle()->isExposed(), deadline);
        window.paintChild(Qt::blue);
        QCoreApplication::processEvents();
        compositor->setFrames(TestCompositor::Frames::release);
        QTRY_COMPARE_WITH_TIMEOUT(shown(inChild), 0xff0000ff, deadline);
        QCOMPARE(shown({5, 5}), frozenColor);
    }
};

int main(int argc, char **argv)
{
    return runOnCompositor<QApplication, TestLayerOverlayShell>(
        argc, argv, {{{QStringLiteral("Only"), frozenPicture()}}}, compositor);
}

#include "tst_LayerOverlayShell.moc"
