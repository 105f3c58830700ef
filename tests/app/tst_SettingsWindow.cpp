// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SettingsWindow.h"

#include <QIcon>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

using namespace tovek;

static SettingsWindow::Content emptyTabs()
{
    return {[](SettingsTab, QWidget *parent) { return new QWidget(parent); },
            [](SettingsTab, const QWidget &) { return QIcon(); }};
}

class TestSettingsWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void hasItsThreeTabsAtItsSize()
    {
        AppState state;
        const SettingsWindow window(state, emptyTabs());
        const auto *tabs = window.findChild<QTabWidget *>();
        QCOMPARE(tabs->count(), 3);
        QCOMPARE(tabs->tabText(0), QStringLiteral("General"));
        QCOMPARE(tabs->tabText(1), QStringLiteral("Shortcuts"));
        QCOMPARE(tabs->tabText(2), QStringLiteral("About"));
        QCOMPARE(window.size(), QSize(450, 260));
        QVERIFY(window.objectName().contains(QStringLiteral("settings")));
    }

    void opensOnTheTabThatWasChosen()
    {
        AppState state;
        state.setSelectedSettingsTab(SettingsTab::about);
        const SettingsWindow window(state, emptyTabs());
        QCOMPARE(window.windowTitle(), QStringLiteral("About"));
        state.setSelectedSettingsTab(SettingsTab::shortcuts);
        QCOMPARE(window.windowTitle(), QStringLiteral("Shortcuts"));
    }

    void tellsTheStateWhichTabIsVisible()
    {
        AppState state;
        const SettingsWindow window(state, emptyTabs());
        window.findChild<QTabWidget *>()->setCurrentIndex(2);
        QVERIFY(state.selectedSettingsTab() == SettingsTab::about);
        QCOMPARE(window.windowTitle(), QStringLiteral("About"));
    }

    void colorsItsSymbolsAsTheDesktopDoes()
    {
        AppState state;
        SettingsWindow::Content content = emptyTabs();
        content.icon = [](SettingsTab, const QWidget &window) {
            QPixmap pixmap(16, 16);
            pixmap.fill(window.palette().color(QPalette::WindowText));
            return QIcon(pixmap);
        };
        SettingsWindow window(state, content);
        const auto *tabs = window.findChild<QTabWidget *>();
        for (const QColor color : {QColor(Qt::white), QColor(Qt::black)}) {
            QPalette palette;
            palette.setColor(QPalette::WindowText, color);
            window.setPalette(palette);
            for (int tab = 0; tab < 3; ++tab)
                QCOMPARE(tabs->tabIcon(tab).pixmap(16).toImage().pixelColor(8, 8), color);
        }
    }

    void closesOnEscape()
    {
        AppState state;
        auto *window = new SettingsWindow(state, emptyTabs());
        QSignalSpy closed(window, &SettingsWindow::willClose);
        window->show();
        QTest::keyClick(window, Qt::Key_Escape);
        QCOMPARE(closed.count(), 1);
    }

    void publishesOnlyChanges()
    {
        AppState state;
        QSignalSpy changes(&state, &AppState::shouldOpenSettingsChanged);
        state.setShouldOpenSettings(false);
        QCOMPARE(changes.count(), 0);
        state.setShouldOpenSettings(true);
        state.setShouldOpenSettings(true);
        QCOMPARE(changes.count(), 1);
    }
};

QTEST_MAIN(TestSettingsWindow)
#include "tst_SettingsWindow.moc"
