// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/WhenReady.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

enum class End { result, none, canceled };

void finish(QPromise<int> &promise, End end)
{
    if (end == End::result)
        promise.addResult(7);
    if (end == End::canceled)
        promise.future().cancel();
    promise.finish();
}

} // namespace

class TestWhenReady : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void callsOnceWithWhatThereIs_data()
    {
        QTest::addColumn<End>("end");
        QTest::addColumn<QList<int>>("whenReadyGets");
        QTest::addColumn<QList<int>>("whenFinishedGets");
        QTest::newRow("result") << End::result << QList<int>{7} << QList<int>{7};
        QTest::newRow("no result") << End::none << QList<int>() << QList<int>{0};
        QTest::newRow("canceled") << End::canceled << QList<int>() << QList<int>{0};
    }
    void callsOnceWithWhatThereIs()
    {
        QFETCH(End, end);
        for (const bool isEarly : {true, false}) {
            QPromise<int> promise;
            promise.start();
            if (isEarly)
                finish(promise, end);
            QList<int> ready;
            QList<int> finished;
            const auto append = [](QList<int> &to) { return [&to](int value) { to << value; }; };
            // Each twice: one does not push the other out.
            for (int i = 0; i < 2; ++i) {
                whenReady(promise.future(), this, append(ready));
                whenFinished(promise.future(), this, append(finished));
            }
            QCOMPARE(finished.size(), isEarly ? 2 : 0);
            if (!isEarly)
                finish(promise, end);
            QTRY_COMPARE(finished.size(), 2);
            QFETCH(QList<int>, whenReadyGets);
            QFETCH(QList<int>, whenFinishedGets);
            QCOMPARE(ready, whenReadyGets + whenReadyGets);
            QCOMPARE(finished, whenFinishedGets + whenFinishedGets);
        }
    }

    void forgetsWhoDiedBefore()
    {
        QPromise<int> promise;
        promise.start();
        int calls = 0;
        auto context = std::make_unique<QObject>();
        whenFinished(promise.future(), context.get(), [&](int) { calls += 1; });
        whenFinished(promise.future(), this, [&](int) { calls += 10; });
        context.reset();
        finish(promise, End::result);
        QTRY_COMPARE(calls, 10);
    }
};

QTEST_GUILESS_MAIN(TestWhenReady)
#include "tst_WhenReady.moc"
