// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KeyRepeatFilter.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

class TestKeyRepeatFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsAHeldKeyOnce()
    {
        KeyRepeatFilter filter;
        const KeyRepeatFilter::Time start{};
        QVERIFY(filter.press(1, start));
        QVERIFY(!filter.press(1, start + 660ms));
        QVERIFY(!filter.press(1, start + 700ms));
        QVERIFY(filter.release(1));
        QVERIFY(filter.press(1, start + 710ms));
    }

    void takesALatePressForANewOne()
    {
        KeyRepeatFilter filter;
        const KeyRepeatFilter::Time start{};
        QVERIFY(filter.press(1, start));
        QVERIFY(filter.press(1, start + 1100ms));
    }

    void tellsKeysApart()
    {
        KeyRepeatFilter filter;
        const KeyRepeatFilter::Time start{};
        QVERIFY(filter.press(1, start));
        QVERIFY(filter.press(2, start));
        QVERIFY(filter.release(1));
        QVERIFY(!filter.press(2, start + 1ms));
    }

    void tellsNoReleaseWithoutAPress()
    {
        KeyRepeatFilter filter;
        QVERIFY(!filter.release(1));
        QVERIFY(filter.press(1));
        QVERIFY(filter.release(1));
        QVERIFY(!filter.release(1));
    }
};

QTEST_APPLESS_MAIN(TestKeyRepeatFilter)
#include "tst_KeyRepeatFilter.moc"
