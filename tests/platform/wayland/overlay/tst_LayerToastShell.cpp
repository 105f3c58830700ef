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

constexpr QRgb ground = qRgb(0x33, 0x66, 0x99); // of the test desktop

/// The part of a picture that is not as the desktop is.
QRect changed(const QImage &picture)
{
    QRect part;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != ground)
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
    void initTestCase() { skipBecause(WaylandDesktop::missing()); }
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
        for (const Screen &screen : m_screens->all()) {
            // In whole points, which is where compositors put surfaces.
            const QRect place(QPoint(60, 90) + screen.native.topLeft(), QSize(120, 60));
            QImage picture(place.size(), QImage::Format_ARGB32_Premultiplied);
            picture.fill(qRgb(200, 10, 20));
            const auto window = shell->create(place, QStringLiteral("a toast"));
            window->present(picture);
            window->orderFront();
            const int monitor = screen.displayId == m_screens->all().front().displayId ? 0 : 1;
            const QRect expected = place.translated(-screen.native.topLeft());
            QTRY_COMPARE(changed(desktop.look(monitor)), expected);
            QCOMPARE(desktop.look(monitor).pixel(expected.center()), qRgb(200, 10, 20));
            QCOMPARE(changed(desktop.look(1 - monitor)), QRect());
            // A frame of its motion.
            picture.fill(qRgba(0, 0, 0, 0));
            window->present(picture);
            QTRY_COMPARE(changed(desktop.look(monitor)), QRect());
        }
    }

    void isGoneWhenItHasVanished()
    {
        WaylandDesktop desktop;
        const auto shell = makeShell(desktop);
        QVERIFY(shell);
        QImage picture(100, 50, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::red);
        const auto window = shell->create({QPoint(10, 10), picture.size()}, QString());
        window->present(picture);
        window->orderFront();
        QTRY_VERIFY(!changed(desktop.look()).isEmpty());
        picture.fill(Qt::transparent);
        window->vanish(picture);
        QCOMPARE(changed(desktop.look()), QRect());
    }

    void endsWithItsWindow()
    {
        WaylandDesktop desktop;
        const auto shell = makeShell(desktop);
        QVERIFY(shell);
        QImage picture(100, 50, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::red);
        auto window = shell->create({QPoint(10, 10), picture.size()}, QString());
        window->present(picture);
        window->orderFront();
        QTRY_VERIFY(!changed(desktop.look()).isEmpty());
        window.reset();
        QTRY_COMPARE(changed(desktop.look()), QRect());
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
