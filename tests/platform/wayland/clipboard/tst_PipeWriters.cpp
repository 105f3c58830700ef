// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/clipboard/PipeWriters.h"

#include <QTest>

#include <array>
#include <fcntl.h>
#include <unistd.h>

using namespace tovek;

namespace {

/// A pipe whose reading end the test has.
class Pipe
{
public:
    Pipe()
    {
        if (pipe2(m_ends.data(), O_CLOEXEC) != 0)
            qFatal("no pipe");
        fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
    }
    ~Pipe() { leave(); }
    int writingEnd() const { return m_ends[1]; }
    void leave()
    {
        if (m_ends[0] >= 0)
            close(m_ends[0]);
        m_ends[0] = -1;
    }
    /// What is in the pipe; `isAtEnd` tells whether more can come.
    QByteArray read()
    {
        QByteArray all;
        char buffer[65536];
        ssize_t count = 0;
        while ((count = ::read(m_ends[0], buffer, sizeof(buffer))) > 0)
            all.append(buffer, count);
        isAtEnd = count == 0;
        return all;
    }
    bool isAtEnd = false;

private:
    std::array<int, 2> m_ends{-1, -1};
};

SelectionBytes bytes(int size)
{
    std::string text(size_t(size), 'x');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = char(i % 251);
    return SelectionBytes::copyOf(std::move(text));
}

QByteArray view(const SelectionBytes &of)
{
    return {reinterpret_cast<const char *>(of.data), qsizetype(of.size)};
}

} // namespace

class TestPipeWriters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void endsAtOnceWhatThePipeTakesWhole_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("nothing") << 0;
        QTest::newRow("a byte") << 1;
        QTest::newRow("as much as a pipe holds") << 65536;
    }
    void endsAtOnceWhatThePipeTakesWhole()
    {
        QFETCH(int, size);
        Pipe pipe;
        PipeWriters writers;
        const SelectionBytes content = bytes(size);
        writers.add(pipe.writingEnd(), content);
        QVERIFY(writers.isEmpty());
        QCOMPARE(pipe.read(), view(content));
        QVERIFY(pipe.isAtEnd);
    }

    void goesOnWhenTheReaderDoes()
    {
        Pipe pipe;
        PipeWriters writers;
        const SelectionBytes content = bytes(300 * 1000);
        writers.add(pipe.writingEnd(), content);
        QCOMPARE(writers.descriptors(), std::vector<int>{pipe.writingEnd()});
        QByteArray read;
        int rounds = 0;
        for (; !writers.isEmpty(); ++rounds) {
            writers.write(); // a reader that has taken nothing yet holds nobody up
            read += pipe.read();
            writers.write();
        }
        read += pipe.read();
        QVERIFY(read == view(content));
        QVERIFY(pipe.isAtEnd);
        QVERIFY(rounds > 2);
    }

    void survivesAReaderThatLeaves()
    {
        Pipe pipe;
        PipeWriters writers;
        int changes = 0;
        writers.onChanged = [&] { ++changes; };
        writers.add(pipe.writingEnd(), bytes(300 * 1000));
        pipe.leave();
        writers.write();
        QVERIFY(writers.isEmpty());
        QCOMPARE(changes, 2);
    }

    void keepsReadersApart()
    {
        Pipe stalled;
        Pipe quick;
        PipeWriters writers;
        const SelectionBytes content = bytes(100 * 1000);
        writers.add(stalled.writingEnd(), content);
        writers.add(quick.writingEnd(), content);
        QByteArray read = quick.read();
        writers.write();
        read += quick.read();
        QVERIFY(read == view(content));
        QCOMPARE(writers.descriptors(), std::vector<int>{stalled.writingEnd()});
    }

    void dropsWhoTakesNothing()
    {
        using namespace std::chrono_literals;
        Pipe pipe;
        PipeWriters writers;
        writers.add(pipe.writingEnd(), bytes(300 * 1000));
        writers.drop(1min);
        QVERIFY(!writers.isEmpty());
        writers.drop(0s);
        QVERIFY(writers.isEmpty());
        pipe.read();
        QVERIFY(pipe.isAtEnd);
    }
};

QTEST_APPLESS_MAIN(TestPipeWriters)
#include "tst_PipeWriters.moc"
