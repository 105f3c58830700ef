// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyCodes.h"

#include <QTest>

using namespace tovek;

class TestKeyCodes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void knowsThePositions_data()
    {
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<int>("evdev");
        QTest::newRow("first letter of the home row") << 0 << 30;
        QTest::newRow("left of Z on ISO keyboards") << 10 << 86;
        QTest::newRow("Return") << KeyCode::returnKey << 28;
        QTest::newRow("Tab") << KeyCode::tab << 15;
        QTest::newRow("Space") << KeyCode::space << 57;
        QTest::newRow("left of 1") << 50 << 41;
        QTest::newRow("Backspace") << KeyCode::backspace << 14;
        QTest::newRow("Escape") << KeyCode::escape << 1;
        QTest::newRow("Num Lock") << 71 << 69;
        QTest::newRow("keypad Enter") << 76 << 96;
        QTest::newRow("F1") << 122 << 59;
        QTest::newRow("F12") << KeyCode::f12 << 88;
        QTest::newRow("F20") << 90 << 190;
        QTest::newRow("Menu") << 110 << 127;
        QTest::newRow("Insert") << KeyCode::help << 110;
        QTest::newRow("Delete") << KeyCode::forwardDelete << 111;
        QTest::newRow("Left") << KeyCode::leftArrow << 105;
        QTest::newRow("Right") << KeyCode::rightArrow << 106;
        QTest::newRow("Down") << KeyCode::downArrow << 108;
        QTest::newRow("Up") << KeyCode::upArrow << 103;
    }
    void knowsThePositions()
    {
        QFETCH(int, keyCode);
        QFETCH(int, evdev);
        QCOMPARE(evdevCodes(keyCode).front(), evdev);
        QCOMPARE(hardwareKeyCode(evdev), keyCode);
    }

    void givesEveryKeyBackThatItGave()
    {
        int keys = 0;
        for (int keyCode = 0; keyCode < 0x100; ++keyCode) {
            for (const int evdev : evdevCodes(keyCode)) {
                QCOMPARE(hardwareKeyCode(evdev), keyCode);
                ++keys;
            }
        }
        QVERIFY(keys > 110);
    }

    void letsNoTwoHardwareCodesShareAKey()
    {
        QSet<int> seen;
        for (int keyCode = 0; keyCode < 0x100; ++keyCode) {
            for (const int evdev : evdevCodes(keyCode)) {
                QVERIFY2(!seen.contains(evdev), qPrintable(QString::number(evdev)));
                seen.insert(evdev);
            }
        }
    }

    void putsTheCommonOfTwoKeysFirst_data()
    {
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<std::vector<int>>("evdev");
        QTest::newRow("Print Screen and F13") << 105 << std::vector<int>{99, 183};
        QTest::newRow("Scroll Lock and F14") << 107 << std::vector<int>{70, 184};
        QTest::newRow("Pause and F15") << 113 << std::vector<int>{119, 185};
        QTest::newRow("Insert and Help") << 114 << std::vector<int>{110, 138};
    }
    void putsTheCommonOfTwoKeysFirst()
    {
        QFETCH(int, keyCode);
        QFETCH(std::vector<int>, evdev);
        QCOMPARE(evdevCodes(keyCode), evdev);
    }

    void knowsNothingOfOtherCodes()
    {
        QVERIFY(evdevCodes(52).empty());
        QVERIFY(evdevCodes(KeyCode::none).empty());
        QVERIFY(evdevCodes(0x10000).empty());
        QCOMPARE(hardwareKeyCode(0), KeyCode::none);
        QCOMPARE(hardwareKeyCode(-8), KeyCode::none);
        QCOMPARE(hardwareKeyCode(240), KeyCode::none);
    }
};

QTEST_APPLESS_MAIN(TestKeyCodes)
#include "tst_KeyCodes.moc"
