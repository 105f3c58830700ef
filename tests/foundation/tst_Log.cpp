// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Log.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

using namespace tovek;

namespace {

/// Standard output is a pipe while it lives.
class Pipe
{
public:
    Pipe() : m_saved(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        if (pipe(m_ends) == 0)
            dup2(m_ends[1], STDOUT_FILENO);
        close(m_ends[1]);
    }
    ~Pipe()
    {
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
        closeReader();
    }
    void closeReader()
    {
        if (m_ends[0] >= 0)
            close(m_ends[0]);
        m_ends[0] = -1;
    }
    QByteArray read() const
    {
        QByteArray bytes(1 << 20, '\0');
        fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
        bytes.resize(std::max<ssize_t>(::read(m_ends[0], bytes.data(), size_t(bytes.size())), 0));
        return bytes;
    }

private:
    int m_saved;
    int m_ends[2]{-1, -1};
};

} // namespace

class TestLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { std::signal(SIGPIPE, SIG_IGN); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isOneLineAnEvent()
    {
        const Pipe pipe;
        logLine(QStringLiteral("one\ntwo"));
        QCOMPARE(pipe.read(), QByteArray("one two\n"));
    }

    void dropsWhatAFullPipeDoesNotTake()
    {
        const Pipe pipe;
        const QString text(1000, QLatin1Char('x'));
        for (int i = 0; i < 200; ++i)
            logLine(text);
        const QByteArray taken = pipe.read();
        QVERIFY(taken.size() > 1001 && taken.size() < 200 * 1001);
        QCOMPARE(taken.size() % 1001, 0);
        logLine(QStringLiteral("again"));
        QCOMPARE(pipe.read(), QByteArray("again\n"));
    }

    void keepsALongLineInOnePiece()
    {
        const Pipe pipe;
        logLine(QString(100000, QLatin1Char('y')));
        logLine(QStringLiteral("next"));
        const QList<QByteArray> lines = pipe.read().split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[0].endsWith("y..."));
        QCOMPARE(lines[1], QByteArray("next"));
    }

    void survivesAReaderThatLeaves()
    {
        Pipe pipe;
        pipe.closeReader();
        logLine(QStringLiteral("to nobody"));
    }

    void leavesTheDescriptorOfOthersAsItIs()
    {
        const Pipe pipe;
        logLine(QStringLiteral("one"));
        QVERIFY(!(fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK));
    }
};

QTEST_APPLESS_MAIN(TestLog)
#include "tst_Log.moc"
