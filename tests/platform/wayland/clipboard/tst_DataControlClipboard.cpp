// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/clipboard/DataControlClipboard.h"
#include "support/Skip.h"
#include "support/WaylandClipboardReader.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPromise>
#include <QRandomGenerator>
#include <QTimer>

#include <future>

using namespace tovek;

/// The clipboard among other programs on a real compositor, and what becomes of it at the end.
class TestDataControlClipboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(WaylandDesktop::missing());
        SKIP_BECAUSE(WaylandClipboardReader::missing());
        QVERIFY2(m_desktop.start(), qPrintable(m_desktop.error()));
        qputenv("WAYLAND_DISPLAY", m_desktop.socket().toLocal8Bit());
    }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }
    void cleanup()
    {
        copyElsewhere("nothing of ours");
        QTRY_VERIFY(holders().isEmpty());
    }

    void transfersEverySizeWhole_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("one byte") << 1;
        QTest::newRow("a pipe") << 65536;
        QTest::newRow("one byte more") << 65537;
        QTest::newRow("25 MB") << 25 * 1000 * 1000;
    }
    void transfersEverySizeWhole()
    {
        QFETCH(int, size);
        const QByteArray png = noise(size);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        QVERIFY(m_reader.read("image/png") == png);
        QVERIFY(m_reader.read("image/png") == png);
    }

    void servesOthersWhileAReaderStalls()
    {
        const QByteArray png = noise(3 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        m_desktop.run("sh", {"-c", "wl-paste -n -t image/png | sleep 1000"});
        QElapsedTimer blocked;
        qint64 longest = 0;
        QTimer heart;
        connect(&heart, &QTimer::timeout, this,
                [&] { longest = std::max(longest, blocked.restart()); });
        blocked.start();
        heart.start(5);
        QTest::qWait(200); // the reader is in the middle by then
        for (int i = 0; i < 3; ++i)
            QVERIFY(m_reader.read("image/png") == png);
        QVERIFY2(longest < 500, qPrintable(QString::number(longest)));
    }

    void survivesAReaderThatVanishes()
    {
        const QByteArray png = noise(3 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        QCOMPARE(shell("wl-paste -n -t image/png | head -c 100000"), png.left(100000));
        QVERIFY(m_reader.read("image/png") == png);
    }

    void finishesATransferAfterLosingTheClipboard()
    {
        const QByteArray png = noise(3 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        QVERIFY(
            shell("wl-paste -n -t image/png | (sleep 0.3; echo new | wl-copy >/dev/null 2>&1; cat)")
            == png);
        QCOMPARE(m_reader.read("text/plain"), QByteArray("new\n"));
    }

    void answersAReaderThatCameTooEarly()
    {
        QPromise<QByteArray> promise;
        promise.start();
        const auto clipboard = make();
        clipboard->setPng(promise.future());
        QTimer::singleShot(200, this, [&] {
            promise.addResult("at last");
            promise.finish();
        });
        QCOMPARE(m_reader.read("image/png"), QByteArray("at last"));
    }

    void leavesNothingBehindWhenTheEncodingFails()
    {
        QPromise<QByteArray> promise;
        promise.start();
        const auto clipboard = make();
        clipboard->setPng(promise.future());
        QTimer::singleShot(200, this, [&] { promise.finish(); });
        QCOMPARE(m_reader.read("image/png"), QByteArray());
        QCOMPARE(m_reader.targets(), QStringList());
    }

    void outlivesTheProgram_data()
    {
        QTest::addColumn<bool>("isPicture");
        QTest::newRow("picture") << true;
        QTest::newRow("text") << false;
    }
    void outlivesTheProgram()
    {
        QFETCH(bool, isPicture);
        const QByteArray bytes = isPicture ? noise(25 * 1000 * 1000) : QByteArray("grüße");
        QStringList targets;
        {
            const auto clipboard = make();
            if (isPicture)
                clipboard->setPng(ready(bytes));
            else
                clipboard->setText(QString::fromUtf8(bytes));
            targets = m_reader.targets();
            clipboard->handOver();
        }
        // Nobody in this process serves any more.
        QCOMPARE(m_reader.targets(), targets);
        for (int i = 0; i < 2; ++i)
            QVERIFY(m_reader.read(isPicture ? "image/png" : "UTF8_STRING") == bytes);
        QCOMPARE(holders().size(), 1);
        copyElsewhere("another's");
        QTRY_VERIFY(holders().isEmpty());
    }

    void finishesTheBytesBeforeItQuits()
    {
        QPromise<QByteArray> promise;
        promise.start();
        {
            const auto clipboard = make();
            clipboard->setPng(promise.future());
            QTimer::singleShot(100, this, [&] {
                promise.addResult("just in time");
                promise.finish();
            });
            clipboard->handOver();
        }
        QCOMPARE(m_reader.read("image/png"), QByteArray("just in time"));
    }

    void finishesItsReadersBeforeItQuits()
    {
        const QByteArray png = noise(3 * 1000 * 1000);
        std::future<QByteArray> pasted;
        {
            const auto clipboard = make();
            clipboard->setPng(ready(png));
            pasted = std::async(std::launch::async, [this] {
                return m_desktop.output("sh",
                                        {"-c", "wl-paste -n -t image/png | (sleep 0.5; cat)"});
            });
            QTest::qWait(200); // the reader is in the middle by then
            clipboard->handOver();
        }
        QVERIFY(pasted.get() == png);
    }

    void leavesAnothersClipboardAloneAtTheEnd()
    {
        const auto clipboard = make();
        clipboard->setText(QStringLiteral("ours"));
        copyElsewhere("another's");
        clipboard->handOver(); // has not heard of the loss yet
        QVERIFY(holders().isEmpty());
        QCOMPARE(m_reader.read("text/plain"), QByteArray("another's"));
    }

    void quitsWithoutAHolderToo()
    {
        const auto clipboard = make(QStringLiteral("/nowhere"));
        clipboard->setText(QStringLiteral("x"));
        clipboard->handOver();
        QVERIFY(holders().isEmpty());
    }

    void copiesWithTheKeyboardOfAMoment()
    {
        const QByteArray png = noise(200 * 1000);
        WaylandHand hand(m_desktop.socket(), QSize(1280, 800));
        const auto clipboard = makeWithFocus();
        clipboard->onFailed = [](Clipboard::Content) { QFAIL("refused"); };
        clipboard->setPng(ready(png));
        QTRY_VERIFY(m_reader.read("image/png") == png);
        clipboard->setText("Some words");
        QTRY_COMPARE(m_reader.read("text/plain;charset=utf-8"), "Some words");
        QCOMPARE(m_desktop.windowTitles(), QStringList());
        clipboard->handOver();
        QVERIFY(holders().isEmpty());
    }

    void tellsWhenItDoesNotGetTheKeyboard()
    {
        // The desktop has none.
        const auto clipboard = makeWithFocus();
        QList<Clipboard::Content> failed;
        clipboard->onFailed = [&](Clipboard::Content content) { failed << content; };
        clipboard->setText("Some words");
        QCOMPARE(failed, QList{Clipboard::Content::text});
    }

private:
    static std::unique_ptr<DataControlClipboard> makeWithFocus()
    {
        auto connection = WaylandConnection::open();
        connection->handleInMainLoop();
        return DataControlClipboard::createWithFocus(connection);
    }
    static QString holder()
    {
        return QFileInfo(qEnvironmentVariable("TOVEK_PROGRAM")).path()
            + QStringLiteral("/tovek-clipboard-wayland");
    }
    static std::unique_ptr<DataControlClipboard> make(const QString &program = holder())
    {
        auto connection = WaylandConnection::open();
        connection->handleInMainLoop();
        return DataControlClipboard::create(connection, program);
    }
    static QFuture<QByteArray> ready(const QByteArray &bytes)
    {
        QPromise<QByteArray> promise;
        promise.start();
        promise.addResult(bytes);
        promise.finish();
        return promise.future();
    }
    static QByteArray noise(int size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        QRandomGenerator random(7);
        for (char &byte : bytes)
            byte = char(random.generate());
        return bytes;
    }
    /// What a command on the desktop prints, while the main loop runs.
    QByteArray shell(const char *command)
    {
        auto result = std::async(std::launch::async, [this, command] {
            return m_desktop.output("sh", {"-c", QString::fromLatin1(command)});
        });
        while (result.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        return result.get();
    }
    /// Without the main loop, so that nothing in this process hears of it.
    void copyElsewhere(const char *text)
    {
        m_desktop.output(
            "sh",
            {"-c",
             QStringLiteral("wl-copy \"%1\" </dev/null >/dev/null 2>&1").arg(QLatin1String(text))});
    }
    /// The processes that hold the clipboard of this desktop.
    QStringList holders() const
    {
        QStringList found;
        for (const QString &process : QDir("/proc").entryList(QDir::Dirs)) {
            QFile file("/proc/" + process + "/cmdline");
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QList<QByteArray> words = file.readAll().split('\0');
            if (words.size() > 1 && words[0].endsWith("/tovek-clipboard-wayland")
                && words[1] == m_desktop.socket().toLocal8Bit())
                found << process;
        }
        return found;
    }

    WaylandDesktop m_desktop;
    WaylandClipboardReader m_reader{m_desktop};
};

QTEST_GUILESS_MAIN(TestDataControlClipboard)
#include "tst_DataControlClipboard.moc"
