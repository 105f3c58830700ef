// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The process that keeps the clipboard after the program has ended stops, or dies.

#include "desktop/Session.h"
#include "faults/Processes.h"
#include "support/Skip.h"

#include <QTest>

#include <csignal>

using namespace tovek;

namespace {

bool quit(Session &s)
{
    kill(pid_t(s.tovek->program().pid()), SIGTERM);
    return s.tovek->program().waitForExit() == 0;
}

} // namespace

class TestClipboardHolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isNotNeededByTheNextProgram_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("works") << 0;
        QTest::newRow("stopped") << SIGSTOP;
        QTest::newRow("killed") << SIGKILL;
    }
    void isNotNeededByTheNextProgram()
    {
        QFETCH(int, signal);
        Session s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.copy({100, 100}, {300, 250}));
        const QByteArray first = s.pasted();
        QVERIFY(!first.isEmpty());
        QVERIFY(quit(s));
        QCOMPARE(s.pasted(), first);
        const pid_t holder = clipboardHolder(s.desktop.displayName());
        QVERIFY(holder > 0);
        QCOMPARE(kill(holder, signal), 0);

        QVERIFY(s.tovek->start());
        QVERIFY(s.copy({150, 150}, {350, 300}));
        const QByteArray second = s.pasted();
        QVERIFY(!second.isEmpty() && second != first);
        QVERIFY(quit(s));
        QCOMPARE(s.pasted(), second);
        kill(holder, SIGKILL);
    }
};

QTEST_GUILESS_MAIN(TestClipboardHolder)
#include "tst_ClipboardHolder.moc"
