// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/ClipboardReader.h"
#include "support/XServer.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

// The clipboard's owner is this process itself, through the toolkit; it answers while the reader
// waits.
class TestClipboardReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void findsNothingOnAnEmptyClipboard()
    {
        QGuiApplication::clipboard()->clear();
        ClipboardReader reader(QString::fromLocal8Bit(qgetenv("DISPLAY")));
        QVERIFY(reader.types().isEmpty());
        QVERIFY(!reader.read(QStringLiteral("image/png")));
    }

    void readsWhatIsOffered_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("comesInPieces");
        QTest::newRow("a few bytes") << 10 << false;
        QTest::newRow("more than a request holds") << 40'000'000 << true;
    }
    void readsWhatIsOffered()
    {
        QFETCH(int, size);
        QByteArray bytes(size, 'x');
        bytes[size / 2] = 'y';
        auto *data = new QMimeData;
        data->setData(QStringLiteral("image/png"), bytes);
        QGuiApplication::clipboard()->setMimeData(data);
        ClipboardReader reader(QString::fromLocal8Bit(qgetenv("DISPLAY")));
        QVERIFY(reader.hasOwner());
        QCOMPARE(reader.types(), QStringList{QStringLiteral("image/png")});
        QVERIFY(reader.read(QStringLiteral("image/png"), std::chrono::seconds(30)) == bytes);
        QTEST(reader.cameInPieces(), "comesInPieces");
        // The toolkit answers with nothing where the protocol would have it refuse.
        QVERIFY(reader.read(QStringLiteral("text/plain")).value_or(QByteArray()).isEmpty());
    }

    // Last: this process sees no newer event, and so has no time at which to take it back.
    void takesTheClipboardFromItsOwner()
    {
        ClipboardReader reader(QString::fromLocal8Bit(qgetenv("DISPLAY")));
        QVERIFY(reader.hasOwner());
        reader.clear();
        QVERIFY(!reader.hasOwner());
    }
};

int main(int argc, char **argv)
{

    XServer server;
    if (const QString reason = XServer::missing(); !reason.isEmpty()) {
        std::printf("SKIP: %s\n", qPrintable(reason));
        return 0;
    }
    if (!server.start())
        return 1;
    qputenv("DISPLAY", server.displayName().toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    TestClipboardReader test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ClipboardReader.moc"
