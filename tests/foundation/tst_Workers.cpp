// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "foundation/Workers.h"

#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <mutex>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr uid_t nobody = 65534;
constexpr int notTried = 77;

/// Whether the system gives no thread to this process any more. The limit binds nobody who is root.
bool giveUpThreads()
{
    const rlimit none{0, 0};
    if ((geteuid() == 0 && setuid(nobody) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0)
        return false;
    try {
        std::thread([] {}).join();
        return false;
    } catch (const std::system_error &) {
        return true;
    }
}

/// What a job waits for.
struct Gate
{
    Gate() : open(lock) { }
    std::mutex lock;
    std::unique_lock<std::mutex> open;
    void wait() { const std::lock_guard through(lock); }
};

} // namespace

class TestWorkers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void takeJobsInTheirOrder()
    {
        std::vector<int> done;
        {
            Workers workers(1);
            for (int i = 0; i < 100; ++i)
                QVERIFY(workers.start([&done, i] { done.push_back(i); }));
        }
        QCOMPARE(done.size(), 100U);
        QVERIFY(std::is_sorted(done.begin(), done.end()));
    }

    void areNoMoreThanAsked()
    {
        std::atomic<int> now = 0, most = 0, all = 0;
        {
            Workers workers(3);
            for (int i = 0; i < 60; ++i)
                QVERIFY(workers.start([&] {
                    const int running = ++now;
                    for (int seen = most;
                         seen < running && !most.compare_exchange_weak(seen, running);) { }
                    std::this_thread::sleep_for(1ms);
                    --now;
                    ++all;
                }));
        }
        QCOMPARE(all.load(), 60);
        QCOMPARE(most.load(), 3);
    }

    void letAnotherPassWhatIsStuck()
    {
        Gate gate;
        Workers workers(1);
        const auto stuck = workers.run<int>([&] {
            gate.wait();
            return 1;
        });
        auto next = workers.run<int>([] { return 2; });
        QVERIFY(!workers.waitForAll(20ms));
        QVERIFY(!next.isFinished());
        workers.setMostThreads(2);
        QTRY_VERIFY(next.isFinished());
        QCOMPARE(next.result(), 2);
        QCOMPARE(workers.active(), 1);
        gate.open.unlock();
        QVERIFY(workers.waitForAll(10s));
        QCOMPARE(stuck.result(), 1);
    }

    void dropWhatHasNotBegun()
    {
        Gate gate;
        Workers workers(1);
        const auto first = workers.run<int>([&] {
            gate.wait();
            return 1;
        });
        const auto second = workers.run<int>([] { return 2; });
        QTRY_COMPARE(workers.active(), 1);
        workers.clear();
        QVERIFY(second.isFinished());
        QCOMPARE(second.resultCount(), 0);
        gate.open.unlock();
        QVERIFY(workers.waitForAll(10s));
        QCOMPARE(first.resultCount(), 1);
    }

    void areLeftBehind()
    {
        const auto gate = std::make_shared<Gate>();
        auto workers = std::make_unique<Workers>(1);
        const auto stuck = workers->run<int>([gate] {
            gate->wait();
            return 1;
        });
        workers->leaveBehind();
        workers.reset();
        QVERIFY(!stuck.isFinished());
        gate->open.unlock();
        QTRY_VERIFY(stuck.isFinished());
    }

    void serveAgainAfterARest()
    {
        Workers workers(2, 5ms);
        QTRY_COMPARE(workers.run<int>([] { return 1; }).result(), 1);
        std::this_thread::sleep_for(50ms);
        QCOMPARE(workers.run<int>([] { return 2; }).result(), 2);
    }

    void endAPromiseWithoutAResultForWantOfMemory()
    {
        Workers workers(1);
        LogCapture log;
        auto future = workers.run<int>([]() -> int { throw std::bad_alloc(); });
        future.waitForFinished();
        QVERIFY(workers.waitForAll(10s));
        QCOMPARE(future.resultCount(), 0);
        QCOMPARE(log.lines(), QStringList(QStringLiteral("There is not enough memory")));
        QCOMPARE(workers.run<int>([] { return 2; }).result(), 2);
    }

    void endAPromiseWithoutAResultForWantOfAThread()
    {
        const pid_t child = fork();
        if (child == 0) {
            if (!giveUpThreads())
                _exit(notTried);
            Workers workers(2);
            const auto future = workers.run<int>([] { return 1; });
            const bool isTold = future.isFinished() && future.resultCount() == 0;
            _exit(isTold && !workers.start([] {}) && workers.waitForAll(0ms) ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        if (WEXITSTATUS(status) == notTried)
            QSKIP("threads cannot be refused here");
        QCOMPARE(WEXITSTATUS(status), 0);
    }
};

QTEST_APPLESS_MAIN(TestWorkers)
#include "tst_Workers.moc"
