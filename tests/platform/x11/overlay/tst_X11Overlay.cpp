// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/PaintedList.h"
#include "platform/x11/overlay/X11OverlayFixture.h"
#include "platform/x11/overlay/X11ToastShell.h"

#include <xcb/xtest.h>

using namespace tovek;

namespace {

class Button : public QWidget
{
public:
    using QWidget::QWidget;
    int paints = 0;

private:
    void paintEvent(QPaintEvent *) override
    {
        ++paints;
        QPainter(this).fillRect(rect(), Qt::green);
    }
};

int largestDifference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 256;
    const QImage one = a.convertToFormat(QImage::Format_RGB32);
    const QImage other = b.convertToFormat(QImage::Format_RGB32);
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto *left = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *right = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            const QRgb p = left[x];
            const QRgb q = right[x];
            if (p == q)
                continue;
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)),
                                std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

} // namespace

class TestX11Overlay : public QObject, protected X11OverlayFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        setUp();
    }

    void opensWithoutChangingAPixelOrPaintingOne()
    {
        const auto frozen = freeze();
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, frozen);
        QCOMPARE(overlay.size(), overlay.screen()->size());
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        QTest::qWait(50);
        desktop->fill(desktop->window(), QRect(0, 0, 20, 20), 0x00123456);
        desktop->fill(desktop->screen().root, QRect(300, 300, 20, 20), 0x00123456);
        QCOMPARE(desktop->look(), m_before);
        QVERIFY(overlay.painted.isEmpty());
        QCOMPARE(geometryOf(*overlay.windowHandle()), m_screen.native);
        surface->orderOut();
    }

    void paintsChildWidgetsAloneInsideOfTheCoveredPart()
    {
        const auto frozen = freeze();
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, frozen);
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        QTest::qWait(20);
        auto *button = new Button(&overlay);
        button->setGeometry(60, 60, 40, 20);
        const QRect native = nativeOf(button->geometry());
        surface->setCovered(native);
        button->show();
        QTRY_COMPARE(desktop->look(native.adjusted(2, 2, -2, -2)).pixelColor(3, 3),
                     QColor(Qt::green));
        QVERIFY((overlay.painted - QRegion(button->geometry().adjusted(-1, -1, 1, 1))).isEmpty());
        // Presenting leaves the widget's pixels alone.
        DisplayList list;
        list.veil = 0.5;
        QVERIFY(surface->present(list));
        QTest::qWait(30);
        QCOMPARE(desktop->look(native.adjusted(2, 2, -2, -2)).pixelColor(3, 3), QColor(Qt::green));
        button->hide();
        surface->setCovered({});
        surface->present(list);
        QTest::qWait(30);
        surface->setCovered({});
    }

    void presentsWhatAPainterWouldDraw_data()
    {
        QTest::addColumn<DisplayList>("list");
        QTest::newRow("nothing") << DisplayList{};
        QTest::newRow("veil") << DisplayList{0.5, {}, {}};
        QTest::newRow("veil of an odd strength with a hole")
            << DisplayList{0.37, QRect(50, 70, 200, 133), {}};
        QTest::newRow("opaque and translucent fills")
            << DisplayList{0.3,
                           QRect(50, 70, 200, 133),
                           {DisplayList::Fill{QRect(50, 70, 200, 2), 0xffffffff},
                            DisplayList::Fill{QRect(60, 60, 90, 90), 0x80400010},
                            DisplayList::Fill{QRect(70, 50, 40, 90), 0x80400010}}};
        std::vector<QRect> many;
        for (int i = 0; i < 5000; ++i)
            many.emplace_back(i % 100 * 4 - 20, i / 100 * 7 - 20, 3, 5);
        QTest::newRow("more fills than go into one request, and overlapping ones")
            << DisplayList{0.3,
                           QRect(50, 70, 200, 133),
                           {fillsOf(0x20000020, many),
                            fillsOf(0x80004000, {QRect(60, 60, 90, 90), QRect(90, 90, 90, 90)})}};
        QImage decal(37, 21, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < decal.height(); ++y) {
            for (int x = 0; x < decal.width(); ++x)
                decal.setPixel(x, y, qPremultiply(qRgba(x * 6, y * 12, 90, x * 255 / 36)));
        }
        QTest::newRow("decals, one clipped, one over the edge")
            << DisplayList{0.3,
                           QRect(),
                           {DisplayList::Decal{1, QPoint(90, 90), decal, {}},
                            DisplayList::Decal{1, QPoint(200, 90), decal, QRect(205, 92, 9, 9)},
                            DisplayList::Decal{2, QPoint(-10, -5), decal, {}}}};
    }
    void presentsWhatAPainterWouldDraw()
    {
        QFETCH(DisplayList, list);
        const auto frozen = freeze();
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, frozen);
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        // By way of another list, so that what lay there before must go.
        DisplayList other{0.6, QRect(0, 0, 120, 120), {}};
        other.items.push_back(DisplayList::Fill{QRect(30, 30, 300, 40), 0xff00ff00});
        QVERIFY(surface->present(other));
        QVERIFY(surface->present(list));
        const QImage expected = painted(frozen->pixels().result(), list);
        // Five bits a channel round by up to 8 with each of the two layers that meet here.
        const int limit = m_connection->screen().root_depth == 16 ? 17 : 1;
        QTRY_VERIFY(largestDifference(desktop->look(m_screen.native), expected) <= limit);
        if (list == DisplayList{})
            QCOMPARE(desktop->look(), m_before);
        // What another window covered for a moment comes back as it was.
        const xcb_window_t visitor = desktop->openWindow(QRect(0, 0, 300, 300), 0xffffff);
        xcb_destroy_window(desktop->client(), visitor);
        desktop->sync();
        QTRY_VERIFY(largestDifference(desktop->look(m_screen.native), expected) <= limit);
    }

    /// Else what lit up below the mouse stays lit.
    void hearsWhereTheMouseWentAsItBeganToListen()
    {
        const auto moveTo = [](int x, int y) {
            xcb_test_fake_input(desktop->client(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
                                desktop->screen().root, int16_t(x), int16_t(y), 0);
            desktop->sync();
        };
        moveTo(100, 100);
        Overlay overlay;
        overlay.setMouseTracking(true);
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        surface->setFollowsPointer(true);
        QTest::qWait(50);
        overlay.pointer = {};
        moveTo(300, 200);
        QTest::qWait(50);
        QCOMPARE(overlay.pointer, QPointF());
        surface->setFollowsPointer(false);
        // The toolkit tells widgets of moves in whole points.
        QTRY_COMPARE(overlay.pointer.toPoint(), (QPointF(300, 200) / m_screen.scale).toPoint());
        surface->orderOut();
    }

    void staysAboveWhatComesLater()
    {
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        const xcb_window_t visitor = desktop->openWindow(QRect(0, 0, 300, 300), 0xffffff);
        QTRY_COMPARE(desktop->look(), m_before);
        // Once: a program that insists wins.
        const uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(desktop->client(), visitor, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        desktop->sync();
        QTest::qWait(50);
        QVERIFY(desktop->look() != m_before);
        xcb_destroy_window(desktop->client(), visitor);
        desktop->sync();
    }

    void answersAWindowThatGotTheNumberOfOneBefore()
    {
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        const xcb_window_t first = desktop->openWindow(QRect(0, 0, 300, 300), 0xffffff);
        QTRY_COMPARE(desktop->look(), m_before);
        xcb_destroy_window(desktop->client(), first);
        desktop->openWindow(QRect(0, 0, 300, 300), 0xffffff, first);
        QTRY_COMPARE(desktop->look(), m_before);
        xcb_destroy_window(desktop->client(), first);
        desktop->sync();
    }

    void leavesToastsAboveItself()
    {
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        X11ToastShell shell;
        const QRect place(100, 100, 60, 40);
        const auto toast = shell.create(place, QStringLiteral("toast"));
        QImage picture(place.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::green);
        toast->present(picture);
        toast->orderFront();
        const auto isSeen = [&] { return desktop->look(place).pixelColor(30, 20) == Qt::green; };
        QTRY_VERIFY(isSeen());
        QTest::qWait(100);
        QVERIFY(isSeen());
        // What comes over both goes below both.
        const xcb_window_t visitor = desktop->openWindow(QRect(90, 90, 300, 300), 0xffffff);
        QTRY_VERIFY(isSeen());
        QCOMPARE(desktop->look(QRect(200, 200, 50, 50)), m_before.copy(200, 200, 50, 50));
        xcb_destroy_window(desktop->client(), visitor);
        desktop->sync();
    }

    void leavesWithItsScreen()
    {
        QVERIFY(desktop->setMonitor("Right", "300/200x300/200+700+100"));
        const auto right = [this] {
            const std::vector<Screen> all = m_screens->all();
            const auto found = std::find_if(all.begin(), all.end(), [](const Screen &candidate) {
                return candidate.name == QStringLiteral("Right");
            });
            return found == all.end() ? std::nullopt : std::optional(*found);
        };
        QTRY_VERIFY(right());
        const Screen screen = *right();
        const auto content = m_grabber->shareableContent();
        Overlay overlay;
        const auto surface = m_shell->create(
            *overlay.windowHandle(), screen,
            m_grabber->capture(*content, {*screen.displayId, screen.native}, {}).result().frozen);
        bool isGone = false;
        surface->onScreenGone = [&isGone] { isGone = true; };
        overlay.open(*surface);
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        QVERIFY(desktop->removeMonitor("Right"));
        QTRY_VERIFY(isGone);
        QVERIFY(!surface->isVisible());
        QTRY_COMPARE(desktop->look(), m_before);
    }

private:
    QRect nativeOf(QRect logical) const
    {
        const double s = m_screen.scale;
        return QRectF(logical.x() * s, logical.y() * s, logical.width() * s, logical.height() * s)
            .toAlignedRect();
    }
    QRect geometryOf(QWindow &window) const
    {
        const X11Reply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(
            desktop->client(), xcb_get_geometry(desktop->client(), xcb_drawable_t(window.winId())),
            nullptr));
        return QRect(reply->x, reply->y, reply->width, reply->height);
    }
};

int main(int argc, char **argv)
{
    return runOnTestDesktop<TestX11Overlay>(argc, argv);
}
#include "tst_X11Overlay.moc"
