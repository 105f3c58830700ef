// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Connect.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

std::atomic<int> inside = 0;
std::atomic<int> most = 0;

} // namespace

/// In the place of the library's, which reads the file of authorities on the way.
extern "C" xcb_connection_t *xcb_connect(const char *, int *)
{
    const int now = ++inside;
    for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) { }
    std::this_thread::sleep_for(2ms);
    --inside;
    return nullptr;
}

class TestX11Connect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void readsTheAuthorityOnOneThreadAtATime()
    {
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([] { x11Connect(":1"); });
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(most.load(), 1);
    }

    /// Whoever connects another way takes part in the race again.
    void isTheOnlyWay()
    {
        const QString source = qEnvironmentVariable("TOVEK_SOURCE_DIR") + QStringLiteral("/src");
        QDirIterator files(source, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                           QDirIterator::Subdirectories);
        int calls = 0;
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const bool isWay = file.fileName().endsWith(QStringLiteral("/X11Connect.h"));
            const auto count = file.readAll().count("xcb_connect(");
            QVERIFY2(isWay || count == 0, qPrintable(file.fileName()));
            calls += int(count);
        }
        QCOMPARE(calls, 1);
    }
};

QTEST_APPLESS_MAIN(TestX11Connect)
#include "tst_X11Connect.moc"
