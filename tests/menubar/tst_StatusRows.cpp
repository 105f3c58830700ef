// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What stands in the status item's menu, and what comes of choosing it.

#include "menubar/ItemMenu.h"
#include "menubar/StatusBarSetup.h"

#include <QHelpEvent>
#include <QPointer>
#include <QRegularExpression>
#include <QStyleOptionMenuItem>
#include <QTest>
#include <QToolTip>

using namespace tovek;

class TestStatusRows : public QObject
{
    Q_OBJECT

    using Setup = StatusBarSetup;

private Q_SLOTS:
    void init()
    {
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
        s.controller.rows.actions.checkForUpdates = nullptr;
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
        s.controller.rows.updateObstacle = [obstacle] { return obstacle; };
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

    void givesItsRowsToAHostThatDrawsThem()
    {
        Setup s;
        s.tray.hostDraws = true;
        s.tray.drags = false;
        s.controller.rows.updateObstacle = [] { return QStringLiteral("no network"); };
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
};

QTEST_MAIN(TestStatusRows)
#include "tst_StatusRows.moc"
