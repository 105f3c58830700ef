// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// No mouse cursor in a picture, whoever draws it.

#include "platform/wayland/capture/WlrScreenGrabber.h"
#include "support/Pixels.h"
#include "support/compositor/TestCompositor.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr int comparisonMs = 4000; // by then it is done

} // namespace

class TestCursorHider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void leavesTheCursorOut_data()
    {
        QTest::addColumn<bool>("isHardware");
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 1.5, 2.0}) {
            QTest::addRow("drawn by the compositor, scale %.1f", scale) << false << scale;
            QTest::addRow("drawn by hardware, scale %.1f", scale) << true << scale;
        }
    }
    void leavesTheCursorOut()
    {
        QFETCH(bool, isHardware);
        QFETCH(double, scale);
        start(isHardware, scale);
        for (int count = 0; count < 2; ++count)
            QCOMPARE(differentPixels(captured(), m_compositor->look(0)), 0);
        QCOMPARE(m_compositor->layers(), QStringList());
    }

    void findsOutWhoDrawsIt_data()
    {
        QTest::addColumn<bool>("isHardware");
        QTest::newRow("the compositor") << false;
        QTest::newRow("hardware") << true;
    }
    void findsOutWhoDrawsIt()
    {
        QFETCH(bool, isHardware);
        start(isHardware, 1);
        // Both kinds of picture are compared once the program has started, and after a capture
        // unless it is clear by then that nothing has to be hidden.
        QTRY_COMPARE_WITH_TIMEOUT(m_compositor->captureCount(), 2, 10000);
        QCOMPARE(differentPixels(captured(), m_compositor->look(0)), 0);
        QTest::qWait(comparisonMs);
        QCOMPARE(m_compositor->captureCount(), isHardware ? 3 : 5);
        QCOMPARE(differentPixels(captured(), m_compositor->look(0)), 0);
    }

    void stopsWhereThePointerStays()
    {
        start(false, 1, true);
        for (const int tries : {1, 2, 3, 3, 3}) {
            QVERIFY(!captured().isNull());
            QCOMPARE(m_compositor->layerCount(), tries);
        }
    }

private:
    void start(bool isHardware, double scale, bool keepsPointer = false)
    {
        m_grabber.reset();
        m_outputs.reset();
        m_connection.reset();
        QImage image(480, 300, QImage::Format_RGB32);
        image.fill(0xff336699);
        CompositorPlan plan;
        plan.outputs = {{QStringLiteral("ONE"), image, scale}};
        plan.cursor = QPoint(50, 40);
        plan.hasCursorHardware = isHardware;
        plan.keepsPointer = keepsPointer;
        m_compositor = std::make_unique<TestCompositor>(plan);
        QVERIFY(m_compositor->start());
        const UseCompositor use(*m_compositor);
        m_connection = WaylandConnection::open();
        QVERIFY(m_connection);
        m_outputs = std::make_shared<WaylandOutputs>(m_connection);
        m_connection->handleInMainLoop();
        m_grabber = WlrScreenGrabber::create(m_connection, m_outputs);
        QVERIFY(m_grabber);
    }
    QImage captured()
    {
        const auto content = m_grabber->shareableContent();
        if (!content)
            return {};
        const auto result = m_grabber->capture(*content, content->displays.front(), {}).result();
        return result.frozen ? result.frozen->pixels().result() : QImage();
    }

    std::unique_ptr<TestCompositor> m_compositor; // outlives its clients
    std::shared_ptr<WaylandConnection> m_connection;
    std::shared_ptr<WaylandOutputs> m_outputs;
    std::unique_ptr<ScreenGrabber> m_grabber;
};

QTEST_GUILESS_MAIN(TestCursorHider)
#include "tst_CursorHider.moc"
