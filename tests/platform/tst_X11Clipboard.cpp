// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Clipboard.h"
#include "support/SelectionReader.h"

#include <QProcess>
#include <QPromise>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <csignal>

using namespace tovek;

Q_DECLARE_METATYPE(HeldKind)

/// The clipboard among other programs on a real X server.
class TestX11Clipboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        if (program.isEmpty())
            QSKIP("Xvfb is missing");
        m_server.setProgram(program);
        m_server.setArguments(
            {"-displayfd", "1", "-screen", "0", "640x480x24", "-noreset", "-nolisten", "tcp"});
        m_server.start();
        QVERIFY(m_server.waitForReadyRead(10000));
        m_display = ":" + m_server.readAllStandardOutput().trimmed();
        QVERIFY(QFile::exists(holder()));
    }
    void cleanupTestCase()
    {
        m_server.terminate();
        m_server.waitForFinished(5000);
    }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }
    void cleanup()
    {
        if (m_display.isEmpty())
            return;
        SelectionReader(m_display).take(); // ends the holder of the test
        QTRY_VERIFY(holderProcesses().isEmpty());
    }

    void listsTheProtocolAndPng()
    {
        const auto clipboard = make();
        clipboard->setPng(ready("png"));
        QCOMPARE(whileServing([this] { return SelectionReader(m_display).targets(); }),
                 QStringList({"MULTIPLE", "SAVE_TARGETS", "TARGETS", "TIMESTAMP", "image/png"}));
    }

    void transfersEverySizeWhole_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("isInPieces");
        QTest::newRow("one byte") << 1 << false;
        QTest::newRow("1 MB") << 1000 * 1000 << false;
        QTest::newRow("the largest request") << 4 * 4194303 - 64 << false;
        QTest::newRow("one byte more") << 4 * 4194303 - 63 << true;
        QTest::newRow("25 MB") << 25 * 1000 * 1000 << true;
    }
    void transfersEverySizeWhole()
    {
        QFETCH(int, size);
        QFETCH(bool, isInPieces);
        const QByteArray png = noise(size);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        const auto value =
            whileServing([this] { return SelectionReader(m_display).read("image/png"); });
        QVERIFY(value);
        QVERIFY(value->bytes == png);
        QCOMPARE(value->type, QByteArray("image/png"));
        QCOMPARE(value->pieces > 0, isInPieces);
    }

    void servesSeveralReadersAtOnce()
    {
        const QByteArray png = noise(25 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        std::vector<std::future<bool>> readers;
        for (int i = 0; i < 3; ++i) {
            readers.push_back(std::async(std::launch::async, [this, &png] {
                const auto value = SelectionReader(m_display).read("image/png");
                return value && value->bytes == png;
            }));
        }
        for (auto &reader : readers)
            QVERIFY(whileServing([&] { return reader.get(); }));
    }

    void survivesAReaderThatVanishes()
    {
        const QByteArray png = noise(25 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        whileServing([this] {
            SelectionReader(m_display).read("image/png", [](int piece) { return piece < 3; });
            SelectionReader(m_display).request("image/png");
            return true;
        });
        const auto value =
            whileServing([this] { return SelectionReader(m_display).read("image/png"); });
        QVERIFY(value && value->bytes == png);
    }

    void finishesATransferAfterLosingTheClipboard()
    {
        const QByteArray png = noise(25 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        const auto value = whileServing([this] {
            return SelectionReader(m_display).read("image/png", [this](int piece) {
                if (piece == 2)
                    SelectionReader(m_display).take();
                return true;
            });
        });
        QVERIFY(value && value->bytes == png);
    }

    void answersAReaderThatCameTooEarly()
    {
        QPromise<QByteArray> promise;
        promise.start();
        const auto clipboard = make();
        clipboard->setPng(promise.future());
        auto reader = std::async(std::launch::async,
                                 [this] { return SelectionReader(m_display).read("image/png"); });
        QTest::qWait(100); // long enough for the request to have come
        QCOMPARE(reader.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
        promise.addResult("at last");
        promise.finish();
        const auto value = whileServing([&] { return reader.get(); });
        QVERIFY(value);
        QCOMPARE(value->bytes, QByteArray("at last"));
    }

    void refusesAReaderWhenTheEncodingFails()
    {
        QPromise<QByteArray> promise;
        promise.start();
        const auto clipboard = make();
        clipboard->setPng(promise.future());
        auto reader = std::async(std::launch::async, [this] {
            return SelectionReader(m_display).read("image/png").has_value();
        });
        QTest::qWait(100); // long enough for the request to have come
        promise.finish();
        QVERIFY(!whileServing([&] { return reader.get(); }));
        QCOMPARE(SelectionReader(m_display).owner(), 0u);
    }

    void answersSeveralTargetsInOneRequest()
    {
        const auto clipboard = make();
        clipboard->setText(QStringLiteral("é☃"));
        const auto values = whileServing([this] {
            return SelectionReader(m_display).readMultiple(
                {"UTF8_STRING", "image/png", "STRING", "TIMESTAMP"});
        });
        QCOMPARE(values[0], QByteArray("é☃"));
        QVERIFY(!values[1]);
        QCOMPARE(values[2], QByteArray("\xe9?"));
        QVERIFY(values[3] && values[3]->size() == 4);
    }

    void convertsTextToItsTargets_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("latin1");
        QTest::addColumn<QByteArray>("textType");
        QTest::newRow("ASCII") << "abc" << QByteArray("abc") << QByteArray("STRING");
        QTest::newRow("Latin-1") << QStringLiteral("\u00a0\u00bf\u00c0\u00ff")
                                 << QByteArray("\xa0\xbf\xc0\xff") << QByteArray("STRING");
        QTest::newRow("beyond") << QStringLiteral("a\u0100\u20ac\U0001f600b") << QByteArray("a???b")
                                << QByteArray("UTF8_STRING");
    }
    void convertsTextToItsTargets()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, latin1);
        QFETCH(QByteArray, textType);
        const auto clipboard = make();
        clipboard->setText(text);
        const auto read = [this](const char *target) {
            return whileServing([&] { return SelectionReader(m_display).read(target); });
        };
        for (const char *target : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain"})
            QCOMPARE(read(target)->bytes, text.toUtf8());
        QCOMPARE(read("STRING")->bytes, latin1);
        QCOMPARE(read("TEXT")->type, textType);
        QCOMPARE(read("TEXT")->bytes, textType == "STRING" ? latin1 : text.toUtf8());
    }

    void statesWhenItTookTheClipboard()
    {
        const auto clipboard = make();
        clipboard->setText(QStringLiteral("x"));
        const auto value =
            whileServing([this] { return SelectionReader(m_display).read("TIMESTAMP"); });
        QVERIFY(value);
        QCOMPARE(value->bytes.size(), 4);
        const auto time = *reinterpret_cast<const quint32 *>(value->bytes.constData());
        QVERIFY(time != 0);
        const auto read = [this](quint32 asked) {
            return whileServing([&] {
                return SelectionReader(m_display).read("UTF8_STRING", {}, asked).has_value();
            });
        };
        QVERIFY(read(time));
        QVERIFY(!read(time - 1));
    }

    void leavesThePrimarySelectionAlone()
    {
        SelectionReader primary(m_display, "PRIMARY");
        primary.take();
        const auto owner = primary.owner();
        const auto clipboard = make();
        clipboard->setText(QStringLiteral("x"));
        clipboard->setPng(ready("png"));
        QCOMPARE(primary.owner(), owner);
    }

    void isReadByAnOrdinaryProgram()
    {
        const QString xclip = QStandardPaths::findExecutable(QStringLiteral("xclip"));
        if (xclip.isEmpty())
            QSKIP("xclip is missing");
        const QByteArray png = noise(25 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        QCOMPARE(runXclip(xclip, {"-t", "TARGETS"}).split('\n').contains("image/png"), true);
        QVERIFY(runXclip(xclip, {"-t", "image/png"}) == png);
        clipboard->setText(QStringLiteral("schön"));
        QCOMPARE(runXclip(xclip, {"-t", "UTF8_STRING"}), QByteArray("schön"));
    }

    void outlivesTheProgram_data()
    {
        QTest::addColumn<HeldKind>("kind");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("picture") << HeldKind::png << noise(25 * 1000 * 1000)
                                 << QByteArray("image/png");
        QTest::newRow("text") << HeldKind::text << QByteArray("grüße") << QByteArray("UTF8_STRING");
    }
    void outlivesTheProgram()
    {
        QFETCH(HeldKind, kind);
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, target);
        QStringList targets;
        {
            const auto clipboard = make();
            if (kind == HeldKind::png)
                clipboard->setPng(ready(bytes));
            else
                clipboard->setText(QString::fromUtf8(bytes));
            targets = whileServing([this] { return SelectionReader(m_display).targets(); });
            clipboard->handOver();
        }
        // Nobody in this process serves any more.
        SelectionReader reader(m_display);
        QCOMPARE(reader.targets(), targets);
        for (int i = 0; i < 2; ++i) {
            const auto value = reader.read(target.constData());
            QVERIFY(value);
            QVERIFY(value->bytes == bytes);
        }
        const auto holders = holderProcesses();
        QCOMPARE(holders.size(), 1);
        reader.take();
        QTRY_VERIFY(holderProcesses().isEmpty());
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
        const auto value = SelectionReader(m_display).read("image/png");
        QVERIFY(value);
        QCOMPARE(value->bytes, QByteArray("just in time"));
    }

    void finishesItsReadersBeforeItQuits()
    {
        const QByteArray png = noise(25 * 1000 * 1000);
        std::future<bool> reader;
        {
            const auto clipboard = make();
            clipboard->setPng(ready(png));
            std::promise<void> started;
            reader = std::async(std::launch::async, [&, this] {
                const auto value = SelectionReader(m_display).read("image/png", [&](int piece) {
                    if (piece == 1)
                        started.set_value();
                    return true;
                });
                return value && value->bytes == png;
            });
            whileServing([&] {
                started.get_future().wait();
                return true;
            });
            clipboard->handOver();
        }
        QVERIFY(reader.get());
    }

    void leavesAnothersClipboardAloneAtTheEnd()
    {
        SelectionReader other(m_display);
        const auto clipboard = make();
        clipboard->setText(QStringLiteral("ours"));
        other.take();
        const auto owner = other.owner();
        clipboard->handOver(); // has not heard of the loss yet
        QCOMPARE(other.owner(), owner);
        QVERIFY(holderProcesses().isEmpty());
    }

    void quitsWithoutAHolderToo()
    {
        const auto clipboard =
            X11Clipboard::create(QStringLiteral("/nowhere"), QString::fromLatin1(m_display));
        clipboard->setText(QStringLiteral("x"));
        clipboard->handOver();
        QVERIFY(holderProcesses().isEmpty());
    }

    void outlivesTheProgramBesideAClipboardManager()
    {
        const QString manager = QStandardPaths::findExecutable(QStringLiteral("xfce4-clipman"));
        if (manager.isEmpty())
            QSKIP("xfce4-clipman is missing");
        QProcess session;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(m_display));
        session.setProcessEnvironment(environment);
        session.start(QStringLiteral("dbus-run-session"), {"--", manager});
        SelectionReader managers(m_display, "CLIPBOARD_MANAGER");
        QTRY_VERIFY_WITH_TIMEOUT(managers.owner() != 0, 10000);
        const QByteArray png = noise(3 * 1000 * 1000);
        QElapsedTimer timer;
        {
            const auto clipboard = make();
            clipboard->setPng(ready(png));
            timer.start();
            clipboard->handOver();
        }
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        const auto value = SelectionReader(m_display).read("image/png");
        session.terminate();
        session.waitForFinished(5000);
        QVERIFY(value);
        QVERIFY(value->bytes == png);
        QCOMPARE(SelectionReader(m_display).read("image/png")->bytes, png);
    }

private:
    std::unique_ptr<X11Clipboard> make() const
    {
        return X11Clipboard::create(holder(), QString::fromLatin1(m_display));
    }
    static QString holder()
    {
        return QFileInfo(qEnvironmentVariable("TOVEK_PROGRAM")).path() + "/tovek-clipboard";
    }
    static QByteArray noise(int size)
    {
        QByteArray bytes((size + 3) / 4 * 4, Qt::Uninitialized);
        QRandomGenerator(quint32(size))
            .fillRange(reinterpret_cast<quint32 *>(bytes.data()), bytes.size() / 4);
        bytes.truncate(size);
        return bytes;
    }
    static QFuture<QByteArray> ready(const QByteArray &bytes)
    {
        QPromise<QByteArray> promise;
        promise.start();
        promise.addResult(bytes);
        promise.finish();
        return promise.future();
    }
    /// Running holders of this test's display.
    QStringList holderProcesses() const
    {
        QStringList found;
        const auto entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
        for (const QString &entry : entries) {
            QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(entry));
            if (!commandLine.open(QIODevice::ReadOnly))
                continue;
            const auto arguments = commandLine.readAll().split('\0');
            if (arguments.size() > 2 && arguments[0].endsWith("/tovek-clipboard")
                && arguments[1] == m_display)
                found << entry;
        }
        return found;
    }
    QByteArray runXclip(const QString &xclip, const QStringList &arguments) const
    {
        return whileServing([&] {
            QProcess process;
            process.start(
                xclip,
                QStringList{"-d", QString::fromLatin1(m_display), "-selection", "clipboard", "-o"}
                    + arguments);
            process.waitForFinished(20000);
            return process.readAllStandardOutput();
        });
    }

    QProcess m_server;
    QByteArray m_display;
};

QTEST_GUILESS_MAIN(TestX11Clipboard)
#include "tst_X11Clipboard.moc"
