// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/X11ClipboardFixture.h"

#include <QElapsedTimer>
#include <QTimer>

using namespace tovek;

/// What becomes of the clipboard when the program ends.
class TestX11ClipboardAtTheEnd : public QObject, protected X11ClipboardFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { startServer(); }
    void cleanupTestCase() { stopServer(); }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }
    void cleanup() { endHolders(); }

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

    void quitsWithoutAHolderToo_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("there is none") << QByteArray();
        QTest::newRow("it stands still") << QByteArray("kill -STOP $$");
        QTest::newRow("it is killed") << QByteArray("kill -KILL $$");
        QTest::newRow("it lies") << QByteArray("exit 0");
    }
    void quitsWithoutAHolderToo()
    {
        QFETCH(QByteArray, script);
        const QTemporaryDir folder;
        QFile holder(folder.filePath(QStringLiteral("holder")));
        if (!script.isEmpty()) {
            QVERIFY(holder.open(QIODevice::WriteOnly));
            holder.write("#!/bin/sh\n" + script + "\n");
            QVERIFY(holder.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
            holder.close();
        }
        const auto clipboard =
            X11Clipboard::create(holder.fileName(), QString::fromLatin1(m_display));
        clipboard->setText(QStringLiteral("x"));
        QElapsedTimer timer;
        timer.start();
        clipboard->handOver();
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
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
};

QTEST_GUILESS_MAIN(TestX11ClipboardAtTheEnd)
#include "tst_X11ClipboardAtTheEnd.moc"
