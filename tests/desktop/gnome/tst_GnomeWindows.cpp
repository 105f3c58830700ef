// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on a GNOME whose XWayland does not show the monitors' own pixels, or that has none:
// there its overlays are full-screen windows.

#include "support/GnomeDesktop.h"
#include "support/Pixels.h"
#include "support/Skip.h"
#include "support/Wait.h"

#include <QRandomGenerator>

#include <algorithm>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr int escape = 1;
constexpr auto patience = 20s;
const auto textWindow = QStringLiteral("text_window");
const auto overlay = QStringLiteral("Tovek");
const auto nativeLine = QStringLiteral("Wayland: overlays are full-screen windows");

} // namespace

class TestGnomeWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(GnomeDesktop::missing()); }

    void cleanup()
    {
        if (QTest::currentTestFailed() && m_tovek)
            qWarning() << m_tovek->lines() << m_tovek->errorLines() << m_desktop->focusedTitle();
        m_tovek = nullptr;
        m_desktop.reset();
    }

    void showsAndCopiesThePixelsOfTheMonitors_data()
    {
        using Setup = GnomeDesktop::Setup;
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<QList<int>>("exact");
        const auto row = [](const char *name, const Setup &setup, const QList<int> &exact) {
            QTest::newRow(name) << setup << exact;
        };
        row("no XWayland", {{}, Setup::Layout::inPoints, false, {}}, {0, 1});
        row("no XWayland, 2 beside 1, laid out in pixels",
            {{2, 1}, Setup::Layout::inPixels, false, {}}, {0, 1});
#ifndef TOVEK_WITH_X11
        row("an XWayland that the program cannot use", {{1, 1}, Setup::Layout::inPoints, true, {}},
            {0, 1});
#endif
        row("1.25", {{1.25, 1.25}, Setup::Layout::inPoints, true, {}}, {0, 1});
        // Of two scales the desktop takes its picture in the larger one.
        row("as near to 1.5 as mutter can, for each monitor",
            {{1.5, 1.5}, Setup::Layout::inPoints, true, {}}, {0});
        row("2 beside 1", {{2, 1}, Setup::Layout::inPoints, true, {}}, {0});
    }
    void showsAndCopiesThePixelsOfTheMonitors()
    {
        QFETCH(GnomeDesktop::Setup, setup);
        QFETCH(QList<int>, exact);
        setup.background = speckles();
        QVERIFY(startDesktop(setup) && startNatively());
        QList<QImage> before;
        for (const int monitor : {0, 1}) {
            before << m_desktop->lookAt(monitor);
            QCOMPARE(before.last().size(), GnomeDesktop::monitors()[monitor].size());
        }
        QVERIFY(startCapture("capture-image"));
        // The panel goes one frame before the overlay that shows it is there.
        for (const int monitor : exact)
            QVERIFY(waitUntil(
                [&] { return differentPixels(m_desktop->lookAt(monitor), before[monitor]) == 0; },
                patience));
        leave();
        for (const int monitor : exact) {
            const QRect selection(200, 100, 320, 240);
            QVERIFY(copy(monitor, selection));
            const double scale = m_desktop->pixelsPerUnit(monitor);
            const auto isPasted = [&] {
                return isPartOf(paste(), before[monitor], selection, scale);
            };
            QVERIFY(waitUntil(isPasted, patience));
            if (monitor == exact.last()) {
                QVERIFY(m_desktop->act(QStringLiteral("quit")));
                QVERIFY(waitUntil([&] { return !m_desktop->act("no-such-action"); }, patience));
                QVERIFY(waitUntil(isPasted, patience)); // the shell hears of its new owner later
            }
        }
    }

    /// As somebody who tries fractions in the desktop's settings, and goes back.
    void followsTheMonitorsToAnotherWindowSystem()
    {
#ifndef TOVEK_WITH_X11
        QSKIP("there is no other without X11");
#endif
        QVERIFY(startDesktop({{1, 1}, GnomeDesktop::Setup::Layout::inPoints, true, speckles()}));
        QVERIFY(start());
        QVERIFY(!m_tovek->lines().contains(nativeLine));
        QVERIFY(m_desktop->setScales({1.25, 1.25}));
        QVERIFY(m_tovek->waitForLine(nativeLine, patience));
        const QImage before = m_desktop->lookAt(0);
        const QRect selection(200, 100, 320, 240);
        QVERIFY(copy(0, selection));
        QVERIFY(waitUntil([&] { return isPartOf(paste(), before, selection, 1.25); }, patience));
        QVERIFY(m_desktop->setScales({1, 1}));
        QVERIFY(waitUntil([this] { return startsOnXWayland() == 2; }, patience));
    }

private:
    bool startDesktop(const GnomeDesktop::Setup &setup)
    {
        m_desktop = std::make_unique<GnomeDesktop>();
        if (!m_desktop->start(setup)) {
            qWarning() << m_desktop->error();
            return false;
        }
        m_desktop->run(QStringLiteral(TOVEK_TEXT_WINDOW),
                       {"0", "0", "500", "300", "DejaVu Sans", "20", "light", "Some words"},
                       {{"QT_QPA_PLATFORM", "wayland"}});
        for (const QString &name : {QString(), QStringLiteral("org.tovek.Tovek")}) {
            if (!m_desktop->permitScreenshots(name))
                return false;
        }
        return waitUntil([this] { return m_desktop->focusedTitle() == textWindow; }, patience);
    }
    bool start()
    {
        m_tovek = m_desktop->run(qEnvironmentVariable("TOVEK_PROGRAM"), {"--background"});
        return m_tovek
            && m_tovek->waitForLine(QStringLiteral("Wayland: capturing over the desktop's portal"),
                                    patience);
    }
    bool startNatively()
    {
        return start() && m_tovek->lines().contains(nativeLine);
    }
    qsizetype startsOnXWayland() const
    {
        return m_tovek->lines().count("Wayland: capturing over the desktop's portal")
            - m_tovek->lines().count(nativeLine);
    }

    bool startCapture(const char *action)
    {
        return waitUntil([&] { return m_desktop->act(QLatin1String(action)); }, patience)
            && waitUntil(
                   [this] {
                       return m_desktop->windowCount(overlay) == GnomeDesktop::monitors().size()
                           && m_desktop->focusedTitle() == overlay;
                   },
                   patience);
    }

    void leave()
    {
        m_desktop->tap(escape);
        QVERIFY(waitUntil([this] { return isOver(); }, patience));
    }

    bool copy(int monitor, const QRect &selection)
    {
        if (!startCapture("capture-image"))
            return false;
        drag(monitor, selection);
        return waitUntil([this] { return isOver(); }, patience);
    }

    /// Who copies needs the keyboard for it here, and so does who pastes: nobody else's window may
    /// come before the person sees the own one again.
    bool isOver() const
    {
        return m_desktop->windowCount(overlay) == 0 && m_desktop->focusedTitle() == textWindow;
    }

    QImage paste()
    {
        return QImage::fromData(m_desktop->output("wl-paste", {}), "PNG");
    }

    /// Rounding to pixels is another matter.
    static bool isPartOf(const QImage &pasted, const QImage &monitor, QRectF selected, double scale)
    {
        const QSizeF size = selected.size() * scale;
        if (std::abs(pasted.width() - size.width()) > 1
            || std::abs(pasted.height() - size.height()) > 1)
            return false;
        const QPoint at = (selected.topLeft() * scale).toPoint();
        for (const int dx : {-1, 0, 1}) {
            for (const int dy : {-1, 0, 1}) {
                const QRect part(at + QPoint(dx, dy), pasted.size());
                if (differentPixels(pasted, monitor.copy(part)) == 0)
                    return true;
            }
        }
        return false;
    }

    static QImage speckles()
    {
        QImage image(1600, 1200, QImage::Format_RGB32);
        QRandomGenerator random(5);
        for (int y = 0; y < image.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            std::generate(line, line + image.width(),
                          [&] { return random.bounded(2) ? 0xff205080 : 0xfff0c040; });
        }
        return image;
    }

    /// In units of the layout from the monitor's corner.
    void drag(int monitor, QRect selection)
    {
        selection.translate(m_desktop->place(monitor).topLeft());
        m_desktop->moveTo(selection.topLeft());
        m_desktop->button(true);
        m_desktop->moveTo(selection.center());
        m_desktop->moveTo(selection.bottomRight() + QPoint(1, 1));
        m_desktop->button(false);
    }

    std::unique_ptr<GnomeDesktop> m_desktop;
    Program *m_tovek = nullptr;
};

QTEST_GUILESS_MAIN(TestGnomeWindows)
#include "tst_GnomeWindows.moc"
