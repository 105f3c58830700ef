// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The last capture in a corner of the screen, where nothing can be dragged out of the status item.

#include "fakes/FakeClock.h"
#include "fakes/FakePreviewShell.h"
#include "fakes/FakeTray.h"
#include "foundation/UserDefaults.h"
#include "menubar/StatusBarController.h"

#include <QMenu>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

class TestFloatingPreview : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup()
        {
            tray.drags = false;
            controller.performDrag = [this](const DragOut &out) {
                dropped = QImage(out.file.toLocalFile());
            };
            controller.setup();
        }
        // Previews that have left are still to be deleted, and know their shell.
        ~Setup() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
        void preview(QSize size = QSize(1600, 400))
        {
            Image image{QImage(size, QImage::Format_RGB32),
                        {double(size.width()), double(size.height())}};
            image.bitmap.fill(Qt::blue);
            controller.showPreview(image, 20s);
        }
        FakePreviewSurface *shown() const
        {
            return shell.surfaces.empty() || !shell.surfaces.back()->window.isVisible()
                ? nullptr
                : shell.surfaces.back();
        }
        void press(QPoint at)
        {
            QTest::mousePress(&shown()->window, Qt::LeftButton, Qt::NoModifier, at);
        }
        void click()
        {
            press({20, 10});
            QTest::mouseRelease(&shown()->window, Qt::LeftButton, Qt::NoModifier, {20, 10});
        }

        QTemporaryDir home;
        UserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
        FakeClock clock;
        FakeTray tray;
        FakePreviewShell shell;
        StatusBarController controller{tray, clock, defaults,
                                       [](const QString &, const QColor &, double, double) {
                                           return QImage(16, 16,
                                                         QImage::Format_ARGB32_Premultiplied);
                                       },
                                       &shell};
        QImage dropped;
    };

private Q_SLOTS:
    void initTestCase() { qputenv("TMPDIR", m_temporary.path().toUtf8()); }
    void init()
    {
        // Menus ask for more than the offscreen platform can do.
        QTest::failOnWarning(
            QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
    }

    void isShownForTheTimeOfThePreview()
    {
        Setup s;
        QVERIFY(!s.shown());
        s.preview();
        QVERIFY(s.shown());
        QCOMPARE(s.shown()->window.size(), QSize(200, 50));
        s.clock.advance(20s);
        QVERIFY(!s.shown());
    }

    void isLargeEnoughForTheHand()
    {
        Setup s;
        s.preview({2000, 4});
        QCOMPARE(s.shown()->window.size(), QSize(200, 24));
    }

    void isNotShownWhereTheItemCanBeDragged()
    {
        Setup s;
        s.tray.drags = true;
        s.preview();
        QVERIFY(!s.shown());
    }

    void isNotShownWithoutAStatusItem()
    {
        Setup s;
        s.defaults.setBoolean(QStringLiteral("showInMenuBar"), false);
        s.preview();
        QVERIFY(!s.shown());
    }

    void doesWithoutAWindowThatCannotBeHad()
    {
        Setup s;
        s.shell.isWorking = false;
        s.preview();
        QVERIFY(!s.shown());
        QVERIFY(s.controller.isInPreviewMode());
    }

    void givesWayToANewerOne()
    {
        Setup s;
        s.preview();
        s.preview({100, 100});
        QVERIFY(s.shown());
        QCOMPARE(s.shown()->window.size(), QSize(110, 110));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(s.shell.surfaces.size(), size_t(1));
    }

    void isDraggedOutAsAFile()
    {
        Setup s;
        s.preview();
        s.press({20, 10});
        QTest::mouseMove(&s.shown()->window, {21, 11});
        QVERIFY(s.dropped.isNull());
        QTest::mouseMove(&s.shown()->window, {30, 20});
        QCOMPARE(s.dropped.size(), QSize(1600, 400));
        QCOMPARE(s.dropped.pixelColor(5, 5), QColor(Qt::blue));
        QVERIFY(!s.shown());
    }

    void opensTheMenuWhenClicked()
    {
        Setup s;
        s.preview();
        s.click();
        QVERIFY(s.controller.menu());
        QVERIFY(s.shown()->menu);
        QCOMPARE(s.shown()->menuSize, s.controller.menu()->size());
        // The preview is beside it, not in it.
        QCOMPARE(s.controller.menu()->actions().first()->text(), QStringLiteral("Start Capture"));
        s.shown()->onMenuDismissed();
        QVERIFY(!s.controller.menu());
        QVERIFY(!s.shown()->menu);
    }

    void letsTheMenuGoBeforeItsWindow()
    {
        Setup s;
        s.preview();
        s.click();
        QWindow *window = s.shown()->menu;
        QVERIFY(window);
        bool wasReleasedFirst = false;
        connect(window, &QWindow::visibleChanged, window, [&](bool isVisible) {
            wasReleasedFirst = !isVisible && !s.shell.surfaces.back()->menu;
        });
        s.controller.menu()->close();
        QVERIFY(wasReleasedFirst);
    }

    void takesItsMenuAlong()
    {
        Setup s;
        s.preview();
        s.click();
        s.clock.advance(20s);
        QVERIFY(!s.shown());
        QVERIFY(!s.controller.menu());
    }

    void staysWhereNoMenuCanBeOpened()
    {
        Setup s;
        s.shell.placesMenus = false;
        s.preview();
        s.click();
        QVERIFY(!s.controller.menu());
        QVERIFY(s.shown());
    }

    void isInNoPictureOfTheScreen()
    {
        Setup s;
        s.preview();
        s.controller.hideForCapture();
        QVERIFY(!s.shown());
        s.controller.captureEnded();
        s.clock.advance(1s);
        QVERIFY(s.shown());
        s.clock.advance(19s);
        QVERIFY(!s.shown());
    }

    void leavesThePlaceToTheNextCapture()
    {
        Setup s;
        s.preview();
        s.controller.hideForCapture();
        s.controller.captureEnded();
        s.preview({100, 100});
        s.clock.advance(1s);
        QCOMPARE(s.shown()->window.size(), QSize(110, 110));
        s.controller.hideForCapture();
        s.clock.advance(20s);
        s.controller.captureEnded();
        s.clock.advance(1s);
        QVERIFY(!s.shown());
    }

    void goesWithItsScreen()
    {
        Setup s;
        s.preview();
        s.shown()->onClosed();
        QVERIFY(!s.shown());
        QVERIFY(s.controller.isInPreviewMode());
    }

private:
    QTemporaryDir m_temporary;
};

QTEST_MAIN(TestFloatingPreview)
#include "tst_FloatingPreview.moc"
