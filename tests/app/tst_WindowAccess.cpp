// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"
#include "app/AppState.h"
#include "app/SettingsWindow.h"
#include "app/WindowAccess.h"
#include "capture/PermissionRequestView.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeOverlayShell.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "foundation/UserDefaults.h"
#include "overlay/OverlayWindow.h"

#include <QAccessible>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

namespace {

QAccessible::Role roleOf(QWidget &widget)
{
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&widget);
    return seen ? seen->role() : QAccessible::NoRole;
}

} // namespace

/// What screen readers call our windows.
class TestWindowAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installWindowAccess(); }

    void knowsWindows()
    {
        AppState state;
        SettingsWindow settings(state,
                                {[](SettingsTab, QWidget *parent) { return new QWidget(parent); },
                                 [](SettingsTab, const QWidget &) { return QIcon(); }});
        QCOMPARE(roleOf(settings), QAccessible::Window);

        FakeClock clock;
        FakeOverlayShell shell;
        QTemporaryDir folder;
        UserDefaults defaults(folder.filePath(QStringLiteral("d.json")));
        QImage frozen(400, 300, QImage::Format_RGB32);
        OverlayWindow overlay({FakeScreens::screen(1, {0, 0, 400, 300}),
                               std::make_shared<FakeFrozenDisplay>(frozen), CaptureMode::normal,
                               clock, defaults},
                              shell);
        QCOMPARE(roleOf(overlay), QAccessible::Window);
        QVERIFY(roleOf(*overlay.selectionView()) != QAccessible::Window); // it lies in one
    }

    void knowsDialogs()
    {
        PermissionRequestView permission(
            [](const QString &, const QColor &, double, double) { return QImage(); });
        permission.setWindowFlags(Qt::Dialog);
        QCOMPARE(roleOf(permission), QAccessible::Dialog);
        QWidget owner;
        KeyboardShortcuts::AlertSheet alert({QStringLiteral("Title"), {}, {QStringLiteral("OK")}},
                                            owner);
        QCOMPARE(roleOf(alert), QAccessible::Dialog);
    }

    void leavesToolTipsAndMenusAlone()
    {
        QWidget tip(nullptr, Qt::ToolTip);
        QVERIFY(roleOf(tip) != QAccessible::Window && roleOf(tip) != QAccessible::Dialog);
    }
};

QTEST_MAIN(TestWindowAccess)
#include "tst_WindowAccess.moc"
