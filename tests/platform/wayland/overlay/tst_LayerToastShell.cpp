// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandScreens.h"
#include "platform/wayland/overlay/LayerToastShell.h"
#include "support/Skip.h"
#include "support/WaylandDesktop.h"

#include <QJsonObject>

using namespace tovek;

namespace {

/// The part of a picture that is not as it was before.
QRect changed(const QImage &picture, const QImage &before)
{
    QRect part;
    for (int y = 0; y < picture.height(); ++y) {
        const auto *now = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        const auto *then = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            if (now[x] != then[x])
                part |= QRect(x, y, 1, 1);
        }
    }
    return part;
}

} // namespace

class TestLayerToastShell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void showsItsPictureInItsPlace_data()
    {
        QTest::addColumn<double>("scale");
        QTest::newRow("1") << 1.0;
        QTest::newRow("1.5") << 1.5;
        QTest::newRow("2") << 2.0;
    }
    void showsItsPictureInItsPlace()
    {
        QFETCH(double, scale);
        WaylandDesktop desktop({{{QSize(640, 480), 1}, {QSize(1200, 900), scale}}});
        const auto shell = makeShell(desktop);
        QVERIFY(shell);
        QVERIFY(shell->blends());
        // Not of one colour everywhere: at fractions of pixels, newer backgrounds are shaded.
        const std::array before{desktop.lookWhenStill(0), desktop.lookWhenStill(1)};
        const auto changedOn = [&](int monitor) {
            return changed(desktop.look(monitor), before[size_t(monitor)]);
        };
        for (const Screen &screen : m_screens->all()) {
            // In whole points, which is where compositors put surfaces.
            const QRect place(QPoint(60, 90) + screen.native.topLeft(), QSize(120, 60));
            QImage picture(place.size(), QImage::Format_ARGB32_Premultiplied);
            picture.fill(qRgb(200, 10, 20));
            const auto window = shell->create(place, QStringLiteral("a toast"));
            window->present(picture);
            window->orderFront();
            // They come in any order.
            const int monitor = screen.name == WaylandDesktop::monitorName(0) ? 0 : 1;
            const QRect expected = place.translated(-screen.native.topLeft());
            QTRY_COMPARE(changedOn(monitor), expected);
            QCOMPARE(desktop.look(monitor).pixel(expected.center()), qRgb(200, 10, 20));
            QCOMPARE(changedOn(1 - monitor), QRect());
            // A frame of its motion.
            picture.fill(qRgba(0, 0, 0, 0));
            window->present(picture);
            QTRY_COMPARE(changedOn(monitor), QRect());
        }
    }

    void isGoneWhenItHasVanished()
    {
        WaylandDesktop desktop;
        const auto shell = makeShell(desktop);
        QVERIFY(shell);
        const QImage before = desktop.lookWhenStill();
        QImage picture(100, 50, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::red);
        const auto window = shell->create({QPoint(10, 10), picture.size()}, QString());
        window->present(picture);
        window->orderFront();
        QTRY_VERIFY(!changed(desktop.look(), before).isEmpty());
        picture.fill(Qt::transparent);
        window->vanish(picture);
        QCOMPARE(changed(desktop.look(), before), QRect());
    }

    void endsWithItsWindow()
    {
        WaylandDesktop desktop;
        const auto shell = makeShell(desktop);
        QVERIFY(shell);
        const QImage before = desktop.lookWhenStill();
        QImage picture(100, 50, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::red);
        auto window = shell->create({QPoint(10, 10), picture.size()}, QString());
        window->present(picture);
        window->orderFront();
        QTRY_VERIFY(!changed(desktop.look(), before).isEmpty());
        window.reset();
        QTRY_COMPARE(changed(desktop.look(), before), QRect());
    }

private:
    std::unique_ptr<LayerToastShell> makeShell(WaylandDesktop &desktop)
    {
        if (!desktop.start())
            return nullptr;
        qputenv("WAYLAND_DISPLAY", desktop.socket().toLocal8Bit());
        const auto connection = WaylandConnection::open();
        connection->handleInMainLoop();
        const auto outputs = std::make_shared<WaylandOutputs>(connection);
        m_screens = std::make_unique<WaylandScreens>(outputs);
        return LayerToastShell::create(connection, outputs);
    }

    std::unique_ptr<WaylandScreens> m_screens;
};

QTEST_GUILESS_MAIN(TestLayerToastShell)
#include "tst_LayerToastShell.moc"
