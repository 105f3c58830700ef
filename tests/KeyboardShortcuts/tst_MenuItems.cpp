// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/MenuItems.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "foundation/UserDefaults.h"

#include <QAction>
#include <QComboBox>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace KeyboardShortcuts;

namespace {

constexpr Shortcut copy{8, 0x1200};
constexpr Shortcut paste{9, 0x100};

} // namespace

class TestMenuItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // The offscreen platform says what it cannot do with windows.
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
        m_service.reset();
        m_dir = std::make_unique<QTemporaryDir>();
        m_defaults =
            std::make_unique<tovek::UserDefaults>(m_dir->filePath(QStringLiteral("defaults.json")));
        m_layout.characters = {{8, QStringLiteral("c")}, {9, QStringLiteral("v")}};
        m_service = std::make_unique<ShortcutService>(*m_defaults, m_hotKeys, m_layout);
        m_a = m_service->createName(QStringLiteral("a"));
        m_b = m_service->createName(QStringLiteral("b"));
    }
    void cleanup() { m_service.reset(); }

    // Labels

    void labelsAnItem()
    {
        QAction item;
        setShortcut(item, copy, m_layout);
        QCOMPARE(item.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        setShortcut(item, Shortcut{42, 0x100}, m_layout);
        QVERIFY(item.shortcut().isEmpty());
        setShortcut(item, copy, m_layout);
        setShortcut(item, std::nullopt, m_layout);
        QVERIFY(item.shortcut().isEmpty());
    }

    void followsItsName()
    {
        QAction item;
        setShortcut(item, m_a, *m_service);
        QVERIFY(item.shortcut().isEmpty());
        m_service->setShortcut(m_a, copy);
        QCOMPARE(item.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        m_service->setShortcut(m_b, paste);
        QCOMPARE(item.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+C")));
        m_service->setShortcut(m_a, std::nullopt);
        QVERIFY(item.shortcut().isEmpty());
    }

    void followsOneNameOnly()
    {
        QAction item;
        setShortcut(item, m_a, *m_service);
        setShortcut(item, m_b, *m_service);
        m_service->setShortcut(m_b, paste);
        m_service->setShortcut(m_a, copy);
        QCOMPARE(item.shortcut(), QKeySequence(QStringLiteral("Meta+V")));
    }

    void followsTheLayout()
    {
        QAction item;
        m_service->setShortcut(m_a, copy);
        setShortcut(item, m_a, *m_service);
        m_layout.change({{8, QStringLiteral("j")}});
        QCOMPARE(item.shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+J")));
    }

    void letsTheItemGo()
    {
        auto item = std::make_unique<QAction>();
        setShortcut(*item, m_a, *m_service);
        item.reset();
        m_service->setShortcut(m_a, copy);
        m_layout.change({});
    }

    void doesNotAnswerToItsLabel()
    {
        QMainWindow window;
        QMenu *menu = window.menuBar()->addMenu(QStringLiteral("Menu"));
        QAction *labelled = menu->addAction(QStringLiteral("Capture"));
        QAction *real = menu->addAction(QStringLiteral("Quit"));
        QSignalSpy labelledRuns(labelled, &QAction::triggered);
        QSignalSpy realRuns(real, &QAction::triggered);
        setShortcut(*labelled, copy, m_layout);
        real->setShortcut(QStringLiteral("Ctrl+Q"));
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
        QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(realRuns.size(), 1); // the way of asking is good
        QCOMPARE(labelledRuns.size(), 0);
    }

    void showsTheLabelInAContextMenu()
    {
        QMenu menu;
        QAction *item = menu.addAction(QStringLiteral("Capture"));
        setShortcut(*item, std::nullopt, m_layout);
        const int without = menu.sizeHint().width();
        setShortcut(*item, copy, m_layout);
        QVERIFY(item->isShortcutVisibleInContextMenu());
        QVERIFY(menu.sizeHint().width() > without);
    }

    // Search

    void findsTheItemOfAShortcut()
    {
        QMenu menu;
        QAction *about = menu.addAction(QStringLiteral("About"));
        QMenu *submenu = menu.addMenu(QStringLiteral("Edit"));
        QAction *inner = submenu->addAction(QStringLiteral("Copy"));
        inner->setShortcut(QStringLiteral("Ctrl+Shift+C"));
        QAction *later = menu.addAction(QStringLiteral("Other"));
        later->setShortcut(QStringLiteral("Ctrl+Shift+C"));
        QCOMPARE(menuItem(copy, menu.actions(), m_layout), inner);
        QCOMPARE(menuItem({8, 0x300}, menu.actions(), m_layout), inner); // Super is a command key
        QCOMPARE(menuItem({8, 0x1000}, menu.actions(), m_layout), nullptr);
        QCOMPARE(menuItem(paste, menu.actions(), m_layout), nullptr);
        about->setShortcut(QStringLiteral("Meta+V"));
        QCOMPARE(menuItem(paste, menu.actions(), m_layout), about);
        QCOMPARE(menuItem({42, 0x1000}, menu.actions(), m_layout), nullptr);
    }

    void findsNoLabel()
    {
        QMenu menu;
        setShortcut(*menu.addAction(QStringLiteral("Capture")), copy, m_layout);
        QCOMPARE(menuItem(copy, menu.actions(), m_layout), nullptr);
    }

    // Open menus

    void noticesOpenMenus()
    {
        QMenu menu;
        menu.addAction(QStringLiteral("One"));
        QMenu *submenu = menu.addMenu(QStringLiteral("Two"));
        submenu->addAction(QStringLiteral("Three"));
        menu.popup({10, 10});
        QVERIFY(m_service->isMenuOpen());
        submenu->popup({60, 10});
        submenu->hide();
        QVERIFY(m_service->isMenuOpen());
        menu.hide();
        QVERIFY(!m_service->isMenuOpen());
    }

    void noticesAMenuThatDiesOpen()
    {
        auto menu = std::make_unique<QMenu>();
        menu->addAction(QStringLiteral("One"));
        menu->popup({10, 10});
        QVERIFY(m_service->isMenuOpen());
        menu.reset();
        QVERIFY(!m_service->isMenuOpen());
    }

    void noticesTheListOfAComboBox()
    {
        QComboBox box;
        box.addItems({QStringLiteral("a"), QStringLiteral("b")});
        box.show();
        QVERIFY(!m_service->isMenuOpen());
        box.showPopup();
        QVERIFY(m_service->isMenuOpen());
        box.hidePopup();
        QTRY_VERIFY(!m_service->isMenuOpen());
    }

    void passesOverOtherWindows()
    {
        QWidget window;
        QWidget tool(nullptr, Qt::ToolTip);
        window.show();
        tool.show();
        QVERIFY(!m_service->isMenuOpen());
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<tovek::UserDefaults> m_defaults;
    tovek::FakeHotKeys m_hotKeys;
    tovek::FakeKeyboardLayout m_layout;
    std::unique_ptr<ShortcutService> m_service;
    Name m_a;
    Name m_b;
};

QTEST_MAIN(TestMenuItems)
#include "tst_MenuItems.moc"
