// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Unfinished.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <thread>

using namespace tovek;
using namespace std::chrono_literals;

class TestUnfinished : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void waitsForNothing() { QVERIFY(Unfinished::waitForAll(0ms)); }

    void givesUpAtTheLimit()
    {
        const Unfinished work;
        QVERIFY(!Unfinished::waitForAll(5ms));
    }

    void waitsForAllOfIt()
    {
        auto first = std::make_unique<Unfinished>();
        auto second = std::make_unique<Unfinished>();
        first.reset();
        QVERIFY(!Unfinished::waitForAll(0ms));
        std::thread worker([&] {
            std::this_thread::sleep_for(20ms);
            second.reset();
        });
        QVERIFY(Unfinished::waitForAll(20s));
        worker.join();
        QVERIFY(Unfinished::waitForAll(0ms));
    }
};

QTEST_APPLESS_MAIN(TestUnfinished)
#include "tst_Unfinished.moc"
