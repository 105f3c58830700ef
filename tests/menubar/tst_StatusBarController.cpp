// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "menubar/StatusBarSetup.h"

#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace tovek;

class TestStatusBarController : public QObject
{
    Q_OBJECT

    using Setup = StatusBarSetup;

private Q_SLOTS:
    void initTestCase() { qputenv("TMPDIR", m_temporary.path().toUtf8()); }
    void init()
    {
        // Menus ask for more than the offscreen platform can do.
        QTest::failOnWarning(
            QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
    }

    void followsTheSettingAtLaunch_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("expected");
        QTest::newRow("absent") << QString() << true;
        QTest::newRow("true") << QStringLiteral("true") << true;
        QTest::newRow("false") << QStringLiteral("false") << false;
        QTest::newRow("not a Boolean") << QStringLiteral("a string") << true;
    }
    void followsTheSettingAtLaunch()
    {
        QFETCH(QString, stored);
        Setup s;
        const QString key = QStringLiteral("showInMenuBar");
        if (stored == QStringLiteral("a string"))
            s.defaults.setString(key, stored);
        else if (!stored.isEmpty())
            s.defaults.setBoolean(key, stored == QStringLiteral("true"));
        s.start();
        QTEST(s.tray.isVisible.value(), "expected");
        QVERIFY(s.showsIcon());
        QCOMPARE(s.tray.painted(2).size(), QSize(36, 36));
        QCOMPARE(s.symbols, QStringList{QStringLiteral("document.viewfinder.fill")});
    }

    void saysOnceThatThereIsNoStatusArea_data()
    {
        QTest::addColumn<bool>("isHidden");
        QTest::addColumn<QList<bool>>("hosts"); // present or not, in the course of time
        QTest::addColumn<int>("lines");
        QTest::newRow("a host") << false << QList<bool>{true} << 0;
        QTest::newRow("no host") << false << QList<bool>{false} << 1;
        QTest::newRow("no host, asked again") << false << QList<bool>{false, false} << 1;
        QTest::newRow("a host that goes") << false << QList<bool>{true, false} << 0;
        QTest::newRow("nothing known") << false << QList<bool>{} << 0;
        QTest::newRow("no host, not wanted") << true << QList<bool>{false} << 0;
    }
    void saysOnceThatThereIsNoStatusArea()
    {
        QFETCH(bool, isHidden);
        QFETCH(QList<bool>, hosts);
        Setup s;
        s.defaults.setBoolean(QStringLiteral("showInMenuBar"), !isHidden);
        s.tray.host = false;
        s.tray.isLooking = true;
        LogCapture output;
        s.start();
        for (const bool host : hosts)
            s.tray.setHost(host);
        QTEST(int(output.lines().size()), "lines");
    }

    void tellsOfAPanelThatDoesNotStart_data()
    {
        QTest::addColumn<bool>("comesLate");
        QTest::addColumn<int>("told");
        QTest::newRow("no panel") << false << 1;
        QTest::newRow("one that starts after us") << true << 0;
    }
    void tellsOfAPanelThatDoesNotStart()
    {
        QFETCH(bool, comesLate);
        Setup s;
        LogCapture output;
        int told = 0;
        s.controller.onNoHost = [&] { ++told; };
        s.tray.host = false;
        s.tray.isLooking = true;
        s.start();
        s.tray.setHost(false);
        s.clock.advance(9s);
        QCOMPARE(told, 0);
        if (comesLate)
            s.tray.setHost(true);
        s.clock.advance(60s);
        QTEST(told, "told");
    }

    void isNotToldOfTheItemAfterItsEnd()
    {
        FakeTray tray;
        {
            Setup s;
            StatusBarController controller(tray, s.clock, s.defaults,
                                           [](auto &&...) { return QImage(); });
            controller.setup();
            QVERIFY(tray.onPressed && tray.onMoved && tray.onReleased && tray.onMenuRequested
                    && tray.onHostChanged);
        }
        QVERIFY(!tray.onPressed && !tray.onMoved && !tray.onReleased && !tray.onMenuRequested
                && !tray.onHostChanged);
    }

    void hasNoTimerWhileNothingHappens()
    {
        Setup s;
        s.tray.host = false;
        LogCapture output;
        s.start();
        QCOMPARE(output.lines().size(), 1);
        s.clock.advance(10s); // for a panel that starts after us
        QCOMPARE(s.clock.pendingCalls(), 0U);
    }

    void showsTheThumbnailForItsTime()
    {
        Setup s;
        s.start();
        s.preview();
        QVERIFY((s.tray.picture.size == Size{72, 18}));
        const QImage thumbnail = s.tray.painted(2);
        QCOMPARE(thumbnail.size(), QSize(144, 36));
        QCOMPARE(thumbnail.pixelColor(72, 18), QColor(Qt::blue));
        QCOMPARE(thumbnail.pixelColor(0, 0).alpha(), 0); // rounded
        s.clock.advance(19999ms);
        QVERIFY(s.controller.isInPreviewMode());
        int ends = 0;
        s.controller.onPreviewEnded = [&] { ++ends; };
        s.clock.advance(1ms);
        QVERIFY(!s.controller.isInPreviewMode());
        QVERIFY(s.showsIcon());
        QCOMPARE(ends, 1);
    }

    void startsItsTimeAfreshWithEveryCapture()
    {
        Setup s;
        s.start();
        s.preview();
        s.clock.advance(15s);
        s.preview(QSize(100, 100));
        s.clock.advance(15s);
        QVERIFY((s.tray.picture.size == Size{18, 18}));
        QVERIFY(s.controller.isInPreviewMode());
        s.clock.advance(5s);
        QVERIFY(!s.controller.isInPreviewMode());
    }

    void endsInTimeAlthoughTheNextPictureIsEmpty()
    {
        Setup s;
        s.start();
        s.preview();
        s.clock.advance(15s);
        s.controller.showPreview({}, 20s);
        QVERIFY((s.tray.picture.size == Size{72, 18}));
        s.clock.advance(5s);
        QVERIFY(!s.controller.isInPreviewMode());
        QVERIFY(s.showsIcon());
    }

    void opensTheMenuOnReleaseInPreviewMode()
    {
        Setup s;
        s.start();
        s.preview();
        s.tray.press({110, 10});
        QVERIFY(!s.controller.menu());
        s.tray.moveTo({112, 10});
        s.tray.release({112, 10});
        QVERIFY(s.controller.menu());
        QVERIFY(s.controller.isInPreviewMode());
        QVERIFY(s.drags.empty());
    }

    void dragsTheImageOutAsAFile()
    {
        Setup s;
        s.start();
        s.preview();
        s.tray.press({110, 10});
        s.tray.moveTo({113, 14});
        QCOMPARE(s.drags.size(), 1U);
        const DragOut &out = s.drags[0];
        QVERIFY(out.file.fileName().startsWith(QStringLiteral("Screenshot 2025-03-07-1405")));
        QCOMPARE(out.image.deviceIndependentSize(), QSizeF(200, 50));
        QCOMPARE(out.source, static_cast<QObject *>(&s.tray));
        QCOMPARE(s.droppedBytes.size(), QSize(1600, 400));
        QVERIFY(!s.controller.isInPreviewMode());
        QVERIFY(s.showsIcon());

        const QFileInfo file(out.file.toLocalFile());
        QVERIFY(file.filePath().startsWith(m_temporary.path()));
        QCOMPARE(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        const QFileInfo folder(file.path());
        QCOMPARE(folder.permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
                 QFile::Permissions());
        s.tray.release({113, 14});
        QVERIFY(!s.controller.menu());
        s.clock.advance(1999ms);
        QVERIFY(QFileInfo::exists(file.filePath()));
        s.clock.advance(1ms);
        QVERIFY(!QFileInfo::exists(file.filePath()));
        QVERIFY(!QFileInfo::exists(folder.filePath()));
    }

    void removesAtTheStartWhatAKilledProcessLeft()
    {
        const QString ours = m_temporary.filePath(QStringLiteral("tovek-%1").arg(geteuid()));
        const QString left = ours + QStringLiteral("/abc/picture.png");
        QVERIFY(QDir().mkpath(QFileInfo(left).path()));
        QVERIFY(
            QFile::setPermissions(ours, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QFile file(left);
        QVERIFY(file.open(QIODevice::WriteOnly));
        Setup s;
        s.start();
        QVERIFY(!QFileInfo::exists(left));
    }

    void leavesAtTheStartWhatAnotherProcessStillOffers()
    {
        Setup dragging;
        dragging.start();
        dragging.preview();
        dragging.tray.press({110, 10});
        dragging.tray.moveTo({120, 10});
        QCOMPARE(dragging.drags.size(), 1U);
        const QString file = dragging.drags[0].file.toLocalFile();
        {
            // Locks belong to the file that was opened: to them this is another process.
            Setup starting;
            starting.start();
        }
        QVERIFY(QFileInfo::exists(file));
    }

    void leavesAloneWhatOthersCanLookInto()
    {
        const QString theirs = m_temporary.filePath(QStringLiteral("tovek-%1").arg(geteuid()));
        QVERIFY(QDir().mkpath(theirs + QStringLiteral("/abc")));
        QVERIFY(QFile::setPermissions(theirs, QFile::Permissions(0x7755)));
        Setup s;
        s.start();
        QVERIFY(QFileInfo::exists(theirs + QStringLiteral("/abc")));
        s.preview();
        s.tray.press({110, 10});
        s.tray.moveTo({120, 10});
        QCOMPARE(s.drags.size(), size_t(1));
        QVERIFY(!s.drags[0].file.toLocalFile().startsWith(theirs + QLatin1Char('/')));
        QVERIFY(QDir(theirs).removeRecursively());
    }

    void reportsAFileThatCannotBeWritten()
    {
        Setup s;
        s.start();
        s.preview();
        LogCapture output;
        qputenv("TMPDIR", "/proc");
        s.tray.press({110, 10});
        s.tray.moveTo({120, 10});
        qputenv("TMPDIR", m_temporary.path().toUtf8());
        QCOMPARE(output.lines().size(), 1);
        QVERIFY(output.lines()[0].startsWith(QStringLiteral("Failed to write temp file: ")));
        QVERIFY(s.drags.empty());
        QVERIFY(s.controller.isInPreviewMode());
    }

    void offersTheThumbnailInTheMenuWhereTheItemHasNoRoomForIt_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<bool>("isInMenu");
        QTest::newRow("room") << QRect(100, 0, 72, 24) << false;
        QTest::newRow("a square") << QRect(100, 0, 24, 24) << true;
        QTest::newRow("a place that is not told") << QRect() << false;
    }
    void offersTheThumbnailInTheMenuWhereTheItemHasNoRoomForIt()
    {
        QFETCH(QRect, place);
        QFETCH(bool, isInMenu);
        Setup s;
        s.tray.place = place;
        s.start();
        s.preview();
        QVERIFY(s.tray.picture.standIn);
        QCOMPARE(s.tray.picture.standIn->size, (Size{18, 18}));
        s.controller.openMenu();
        QCOMPARE(s.controller.menu()->actions()[1]->isSeparator(), true);
        QCOMPARE(s.controller.menu()->actions()[0]->text() != QStringLiteral("Start Capture"),
                 isInMenu);
    }

    void offersTheThumbnailInTheMenuWhereTheItemCannotBeDragged()
    {
        Setup s;
        s.tray.drags = false;
        s.start();
        s.tray.onMenuRequested();
        QCOMPARE(s.controller.menu()->actions()[0]->text(), QStringLiteral("Start Capture"));
        s.controller.menu()->close();
        s.preview();
        s.tray.onMenuRequested();
        QMenu *menu = s.controller.menu();
        QVERIFY(menu->actions()[1]->isSeparator());
        QWidget *row = nullptr;
        const QList<QWidget *> children = menu->findChildren<QWidget *>();
        for (QWidget *child : children) {
            if (child->accessibleName() == QStringLiteral("Last capture"))
                row = child;
        }
        QVERIFY(row);
        QTest::mouseClick(row, Qt::LeftButton, {}, QPoint(30, 30));
        QCOMPARE(s.controller.menu(), menu); // a click keeps it
        QTest::mousePress(row, Qt::LeftButton, {}, QPoint(30, 30));
        QTest::mouseMove(row, QPoint(50, 30));
        QVERIFY(!s.controller.menu());
        QVERIFY(s.drags.empty());
        s.clock.advance(0ms);
        QCOMPARE(s.drags.size(), 1U);
    }

private:
    QTemporaryDir m_temporary;
};

QTEST_MAIN(TestStatusBarController)
#include "tst_StatusBarController.moc"
