// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/CaptureCountdown.h"
#include "fakes/FakeClock.h"

#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

class TestCaptureCountdown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_events.clear();
    }

    void tellsEachSecondThatIsLeft()
    {
        FakeClock clock;
        CaptureCountdown countdown(clock);
        watch(countdown);
        countdown.start(3, [this] { m_events += QStringLiteral("capture"); });
        QCOMPARE(m_events, QStringList{QStringLiteral("Capture in 3 s")});
        clock.advance(2999ms);
        QCOMPARE(m_events.size(), 3);
        QCOMPARE(m_events.last(), QStringLiteral("Capture in 1 s"));
        clock.advance(1ms);
        QCOMPARE(m_events.size(), 4);
        QCOMPARE(m_events.last(), QStringLiteral("capture"));
        clock.advance(10s);
        QCOMPARE(m_events.size(), 4);
    }

    void startsAnewForAnotherOne()
    {
        FakeClock clock;
        CaptureCountdown countdown(clock);
        countdown.start(2, [this] { m_events += QStringLiteral("first"); });
        clock.advance(1500ms);
        countdown.start(1, [this] { m_events += QStringLiteral("second"); });
        clock.advance(10s);
        QCOMPARE(m_events, QStringList{QStringLiteral("second")});
    }

    void endsWithTheProgram()
    {
        FakeClock clock;
        {
            CaptureCountdown countdown(clock);
            watch(countdown);
            countdown.start(2, [this] { m_events += QStringLiteral("capture"); });
        }
        clock.advance(10s);
        QCOMPARE(m_events.size(), 1);
    }

private:
    void watch(CaptureCountdown &countdown)
    {
        countdown.tell = [this](const QString &message) { m_events += message; };
    }

    QStringList m_events;
};

QTEST_APPLESS_MAIN(TestCaptureCountdown)
#include "tst_CaptureCountdown.moc"
