// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/QtClock.h"

#include <QRegularExpression>
#include <QTest>
#include <QTimer>

using namespace std::chrono_literals;
using namespace tovek;

class TestQtClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void callsOnceAndNeverAtOnce_data()
    {
        QTest::addColumn<int>("delayMs");
        QTest::newRow("no delay") << 0;
        QTest::newRow("a delay") << 5;
    }
    void callsOnceAndNeverAtOnce()
    {
        QFETCH(int, delayMs);
        QtClock clock;
        QObject context;
        int calls = 0;
        clock.after(std::chrono::milliseconds(delayMs), &context, [&] { ++calls; });
        QCOMPARE(calls, 0);
        QTRY_COMPARE(calls, 1);
        QTRY_VERIFY(context.findChildren<QTimer *>().isEmpty());
        QCOMPARE(calls, 1);
    }

    void keepsTheOrderOfTime()
    {
        QtClock clock;
        QObject context;
        QStringList calls;
        clock.after(30ms, &context, [&] { calls << QStringLiteral("later"); });
        clock.after(5ms, &context, [&] { calls << QStringLiteral("sooner"); });
        clock.after(0ms, &context, [&] { calls << QStringLiteral("first"); });
        QTRY_COMPARE(calls, QStringList({"first", "sooner", "later"}));
    }

    void forgetsACallWithItsContext()
    {
        QtClock clock;
        auto context = std::make_unique<QObject>();
        clock.after(1ms, context.get(), [] { QFAIL("called for an object that is gone"); });
        clock.after(0ms, context.get(), [] { QFAIL("called for an object that is gone"); });
        context.reset();
        QObject other;
        bool isOver = false;
        clock.after(20ms, &other, [&] { isOver = true; });
        QTRY_VERIFY(isOver);
    }

    void survivesACallThatEndsItsContext()
    {
        QtClock clock;
        auto *context = new QObject; // the call deletes it
        QString text(1000, QLatin1Char('x'));
        qsizetype size = 0;
        clock.after(1ms, context, [context, text, &size] {
            delete context;
            size = text.size();
        });
        QTRY_COMPARE(size, 1000);
    }
};

QTEST_GUILESS_MAIN(TestQtClock)
#include "tst_QtClock.moc"
