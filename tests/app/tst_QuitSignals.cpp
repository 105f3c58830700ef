// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/QuitSignals.h"

#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace tovek;

namespace {

constexpr int all[] = {SIGTERM, SIGINT, SIGHUP};

auto handlerOf(int signal)
{
    struct sigaction action
    {
    };
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

bool areAllAtTheirDefault()
{
    return std::all_of(std::begin(all), std::end(all),
                       [](int signal) { return handlerOf(signal) == SIG_DFL; });
}

} // namespace

class TestQuitSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void quitsOnceOnTheMainLoop_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("terminate") << SIGTERM;
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("hang up") << SIGHUP;
    }
    void quitsOnceOnTheMainLoop()
    {
        QFETCH(int, signal);
        int quits = 0;
        const QuitSignals signals([&] { ++quits; });
        raise(signal);
        QCOMPARE(quits, 0);
        QTRY_COMPARE(quits, 1);
        QTest::qWait(20);
        QCOMPARE(quits, 1);
    }

    void leavesTheNextSignalToEndTheProgram()
    {
        const QuitSignals signals([] {});
        QVERIFY(!areAllAtTheirDefault());
        raise(SIGTERM);
        QVERIFY(areAllAtTheirDefault());
    }

    void leavesASwitchedOffSignalOff()
    {
        signal(SIGHUP, SIG_IGN);
        {
            const QuitSignals signals([] {});
            QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
            raise(SIGINT);
            QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        }
        QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        signal(SIGHUP, SIG_DFL);
    }

    void leavesNothingBehind()
    {
        for (int i = 0; i < 3; ++i) {
            const QuitSignals signals([] {});
            QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
        }
        QVERIFY(areAllAtTheirDefault());
    }
};

QTEST_GUILESS_MAIN(TestQuitSignals)
#include "tst_QuitSignals.moc"
