// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/X11ClipboardFixture.h"

#include <QDeadlineTimer>
#include <QThread>

using namespace std::chrono_literals;
using namespace tovek;

/// The clipboard among other programs on a real X server.
class TestX11Clipboard : public QObject, protected X11ClipboardFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { startServer(); }
    void cleanupTestCase() { stopServer(); }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }
    void cleanup() { endHolders(); }

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

    void survivesTheLossOfItsConnection_data()
    {
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("still ours") << false;
        QTest::newRow("taken by another program meanwhile") << true;
    }
    void survivesTheLossOfItsConnection()
    {
        QFETCH(bool, isTaken);
        const auto clipboard = make();
        int failures = 0;
        clipboard->onFailed = [&](Clipboard::Content) { ++failures; };
        clipboard->setPng(ready("png"));
        SelectionReader other(m_display);
        xcb_connection_t *killer = xcb_connect(m_display.constData(), nullptr);
        const xcb_window_t before = other.owner();
        xcb_kill_client(killer, before);
        xcb_flush(killer);
        // Our loop stands still until another program could have taken the clipboard.
        QDeadlineTimer patience(5s);
        while (other.owner() == before && !patience.hasExpired())
            QThread::yieldCurrentThread();
        QCOMPARE(other.owner(), xcb_window_t(XCB_WINDOW_NONE));
        if (isTaken)
            other.take();
        const xcb_window_t owner = other.owner();
        if (isTaken) {
            QTest::qWait(100);
            QCOMPARE(other.owner(), owner);
        } else {
            QTRY_VERIFY(other.owner() != XCB_WINDOW_NONE);
            const auto value =
                whileServing([this] { return SelectionReader(m_display).read("image/png"); });
            QVERIFY(value);
            QCOMPARE(value->bytes, QByteArray("png"));
        }
        clipboard->setText(QStringLiteral("later"));
        const auto text =
            whileServing([this] { return SelectionReader(m_display).read("UTF8_STRING"); });
        QVERIFY(text);
        QCOMPARE(text->bytes, QByteArray("later"));
        QCOMPARE(failures, 0);
        xcb_disconnect(killer);
    }

    void tellsAPictureThatCannotBeMade()
    {
        const auto clipboard = make();
        QList<Clipboard::Content> failures;
        clipboard->onFailed = [&](Clipboard::Content content) { failures.append(content); };
        clipboard->setPng(ready({}));
        QCOMPARE(failures, QList<Clipboard::Content>{Clipboard::Content::picture});
    }

    void survivesAReaderThatVanishes()
    {
        const QByteArray png = noise(25 * 1000 * 1000);
        const auto clipboard = make();
        clipboard->setPng(ready(png));
        // Connected before the others leave: else the server gives it their window's number, and
        // it would receive what was still on its way to them.
        SelectionReader stays(m_display);
        whileServing([this] {
            SelectionReader(m_display).read("image/png", [](int piece) { return piece < 3; });
            SelectionReader(m_display).request("image/png");
            return true;
        });
        const auto value = whileServing([&] { return stays.read("image/png"); });
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

private:
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
};

QTEST_GUILESS_MAIN(TestX11Clipboard)
#include "tst_X11Clipboard.moc"
