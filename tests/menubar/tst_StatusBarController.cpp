// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClock.h"
#include "fakes/FakeTray.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "menubar/ItemMenu.h"
#include "menubar/StatusBarController.h"

#include <QHelpEvent>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStyleOptionMenuItem>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QWidget>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace tovek;

class TestStatusBarController : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup()
        {
            const auto record = [this](const char *name) {
                return [this, name] { chosen << QString::fromLatin1(name); };
            };
            controller.actions = {record("start"),  record("image"),       record("text"),
                                  record("update"), record("preferences"), record("about"),
                                  record("quit")};
            controller.bindShortcut = [](QAction &item, const QString &name) {
                if (name != QStringLiteral("captureText"))
                    item.setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+2")));
                item.setObjectName(name);
            };
            controller.performDrag = [this](const DragOut &out) {
                drags.push_back(out);
                droppedBytes = QImage(out.file.toLocalFile());
            };
        }
        void start() { controller.setup(); }
        void preview(QSize size = QSize(1600, 400))
        {
            Image image{QImage(size, QImage::Format_RGB32),
                        {double(size.width()), double(size.height())}};
            image.bitmap.fill(Qt::blue);
            controller.showPreview(image, 20s);
        }
        bool showsIcon() const { return tray.picture.size == Size{18, 18}; }

        QTemporaryDir home;
        UserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
        FakeClock clock;
        FakeTray tray;
        QStringList symbols;
        StatusBarController controller{
            tray, clock, defaults, [this](const QString &name, const QColor &c, double, double s) {
                symbols << name;
                QImage image(qRound(16 * s), qRound(16 * s), QImage::Format_ARGB32_Premultiplied);
                image.setDevicePixelRatio(s);
                image.fill(c);
                return image;
            }};
        QStringList chosen;
        std::vector<DragOut> drags;
        QImage droppedBytes;
    };

private Q_SLOTS:
    void initTestCase() { qputenv("TMPDIR", m_temporary.path().toUtf8()); }
    void init()
    {
        // Menus ask for more than the offscreen platform can do.
        QTest::failOnWarning(
            QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
    }

    void writesKeysAsItIsTold()
    {
        ItemMenu menu;
        menu.describeKeys = [](const QKeySequence &keys) { return keys.toString() + "!"; };
        QAction *withKeys = menu.addAction("Quit");
        withKeys->setShortcut(Qt::CTRL | Qt::Key_Q);
        QStyleOptionMenuItem option;
        menu.initStyleOption(&option, withKeys);
        QCOMPARE(option.text, QStringLiteral("Quit\tCtrl+Q!"));
        menu.initStyleOption(&option, menu.addAction("About"));
        QCOMPARE(option.text, QStringLiteral("About"));
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
        QCOMPARE(s.clock.pendingCalls(), 0U);
    }

    void listsItsItemsInOrder()
    {
        Setup s;
        s.start();
        s.tray.press({110, 10});
        QVERIFY(s.controller.menu());
        QStringList rows;
        for (const QAction *action : s.controller.menu()->actions())
            rows << (action->isSeparator()
                         ? QStringLiteral("-")
                         : action->text() + QLatin1Char('|') + action->shortcut().toString());
        QCOMPARE(rows,
                 QStringList({"Start Capture|Ctrl+Shift+2", "-", "Capture Image|Ctrl+Shift+2",
                              "Capture Text|", "-", "Check for Updates...|", "-",
                              "Preferences...|Ctrl+,", "About|", "-", "Quit|Ctrl+Q"}));
    }

    void offersNothingThatItCannotDo()
    {
        Setup s;
        s.start();
        s.controller.actions.checkForUpdates = nullptr;
        s.controller.openMenu();
        for (const QAction *action : s.controller.menu()->actions()) {
            if (!action->isSeparator())
                QCOMPARE(action->isEnabled(),
                         action->text() != QLatin1String("Check for Updates..."));
        }
        s.controller.menu()->close();
    }

    void saysWhyItCannotCheckForUpdates_data()
    {
        QTest::addColumn<QString>("obstacle");
        QTest::newRow("none") << QString();
        QTest::newRow("a build without updates") << QStringLiteral("no address");
    }
    void saysWhyItCannotCheckForUpdates()
    {
        QFETCH(QString, obstacle);
        Setup s;
        s.start();
        s.controller.updateObstacle = [obstacle] { return obstacle; };
        s.controller.openMenu();
        QMenu &menu = *s.controller.menu();
        for (QAction *action : menu.actions()) {
            const bool isCheck = action->text() == QLatin1String("Check for Updates...");
            if (action->isSeparator())
                continue;
            QCOMPARE(action->isEnabled(), !isCheck || obstacle.isEmpty());
            if (!isCheck)
                continue;
            const QPoint middle = menu.actionGeometry(action).center();
            QHelpEvent hover(QEvent::ToolTip, middle, menu.mapToGlobal(middle));
            QCoreApplication::sendEvent(&menu, &hover);
            QCOMPARE(QToolTip::text(), obstacle);
        }
        menu.close();
    }

    void runsWhatIsChosenAfterTheMenuHasGone()
    {
        Setup s;
        s.start();
        const QStringList names{"start", "image", "text", "update", "preferences", "about", "quit"};
        for (int i = 0; i < names.size(); ++i) {
            s.tray.press({110, 10});
            QList<QAction *> items = s.controller.menu()->actions();
            items.removeIf([](const QAction *action) { return action->isSeparator(); });
            items[i]->trigger();
            s.controller.menu()->close();
            QCOMPARE(s.chosen.size(), i);
            QVERIFY(!s.controller.menu());
            QTRY_COMPARE(s.chosen.size(), i + 1);
            QCOMPARE(s.chosen.back(), names[i]);
        }
    }

    void obeysKeyEquivalentsWhileTheMenuIsOpen()
    {
        Setup s;
        s.start();
        s.tray.press({110, 10});
        QTest::keyClick(s.controller.menu(), Qt::Key_Comma, Qt::ControlModifier);
        QVERIFY(!s.controller.menu());
        QTRY_COMPARE(s.chosen, QStringList{QStringLiteral("preferences")});
    }

    void freesTheMenuOnceClosed()
    {
        Setup s;
        s.start();
        s.tray.onMenuRequested();
        QPointer<QMenu> menu = s.controller.menu();
        QVERIFY(menu);
        s.tray.onMenuRequested(); // open already
        QCOMPARE(s.controller.menu(), menu.data());
        menu->close();
        QTRY_VERIFY(!menu);
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

    void givesItsRowsToAHostThatDrawsThem()
    {
        Setup s;
        s.tray.hostDraws = true;
        s.tray.drags = false;
        s.controller.updateObstacle = [] { return QStringLiteral("no network"); };
        s.start();
        const auto rows = s.tray.menuRows();
        QStringList shown;
        for (const TrayMenuRow &row : rows)
            shown << (row.isSeparator ? QStringLiteral("-") : row.title);
        QCOMPARE(shown.join(','),
                 QStringLiteral("Start Capture,-,Capture Image,Capture Text,-,Check for "
                                "Updates...,-,Preferences...,About,-,Quit"));
        QCOMPARE(rows[0].keys, QStringList({"Control", "Shift", "2"}));
        QCOMPARE(rows[3].keys, QStringList());
        QVERIFY(rows[0].isEnabled && !rows[5].isEnabled);
        for (const int row : {0, 2, 3, 7, 8, 10, 11})
            s.tray.onMenuRow(row);
        QTRY_COMPARE(s.chosen,
                     QStringList({"start", "image", "text", "preferences", "about", "quit"}));
    }

    void opensTheSettingsWhereItCouldPutNoMenu()
    {
        Setup s;
        s.tray.hostDraws = true;
        s.start();
        s.tray.onMenuRequested();
        QVERIFY(!s.controller.menu());
        QCOMPARE(s.chosen, QStringList("preferences"));
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
