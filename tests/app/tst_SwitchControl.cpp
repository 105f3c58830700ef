// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SwitchControl.h"

#include <QAccessible>
#include <QTest>

using namespace tovek;

class TestSwitchControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
    }

    void turnsByMouseAndKeyboard()
    {
        SwitchControl control;
        control.show();
        QTest::mouseClick(&control, Qt::LeftButton, {}, QPoint(1, 1));
        QVERIFY(control.isChecked());
        control.setFocus();
        QTest::keyClick(&control, Qt::Key_Space);
        QVERIFY(!control.isChecked());
        QCOMPARE(control.focusPolicy(), Qt::StrongFocus);
    }

    void showsItsStateByColour()
    {
        SwitchControl control;
        control.ensurePolished();
        const QPoint left(8, control.sizeHint().height() / 2);
        control.resize(control.sizeHint());
        const QColor highlight = control.palette().color(QPalette::Active, QPalette::Highlight);
        QVERIFY(QColor(control.grab().toImage().pixel(left)) != highlight);
        control.setChecked(true);
        QCOMPARE(QColor(control.grab().toImage().pixel(left)), highlight);
    }

    void isACheckBoxToAssistivePrograms()
    {
        SwitchControl control;
        control.setAccessibleName(QStringLiteral("Sound"));
        control.setChecked(true);
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&control);
        QCOMPARE(interface->role(), QAccessible::CheckBox);
        QCOMPARE(interface->text(QAccessible::Name), QStringLiteral("Sound"));
        QVERIFY(interface->state().checked);
        interface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(!control.isChecked());
    }
};

QTEST_MAIN(TestSwitchControl)
#include "tst_SwitchControl.moc"
