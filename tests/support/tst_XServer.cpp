// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Wait.h"
#include "support/XConnection.h"
#include "support/XServer.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestXServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString reason = XServer::missing(); !reason.isEmpty())
            QSKIP(qPrintable(reason));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void hasTheSizeAndDepthAskedFor_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("depth");
        QTest::newRow("24 bits") << QSize(640, 480) << 24;
        QTest::newRow("16 bits") << QSize(1366, 768) << 16;
    }
    void hasTheSizeAndDepthAskedFor()
    {
        QFETCH(QSize, size);
        QFETCH(int, depth);
        XServer server(size, depth);
        QVERIFY2(server.start(), qPrintable(server.error()));
        const XConnection connection(server.displayName());
        QVERIFY(connection.isOpen());
        QCOMPARE(QSize(connection.screen()->width_in_pixels, connection.screen()->height_in_pixels),
                 size);
        QCOMPARE(int(connection.screen()->root_depth), depth);
    }

    void runsBesideAnother()
    {
        XServer one(QSize(100, 100));
        XServer other(QSize(200, 200));
        QVERIFY(one.start());
        QVERIFY(other.start());
        QVERIFY(one.displayName() != other.displayName());
        QVERIFY(XConnection(one.displayName()).isOpen());
        QVERIFY(XConnection(other.displayName()).isOpen());
    }

    void endsWithItsObject()
    {
        // Its display number may be another server's at once; its process is gone.
        qint64 pid = 0;
        {
            XServer server;
            QVERIFY(server.start());
            pid = server.pid();
        }
        QVERIFY(pid > 0);
        QVERIFY(!QFile::exists(QStringLiteral("/proc/%1").arg(pid)));
    }

    void breaksItsClientsConnectionsWhenKilled()
    {
        XServer server;
        QVERIFY(server.start());
        const XConnection connection(server.displayName());
        server.kill();
        QVERIFY(!server.isRunning());
        connection.sync();
        QVERIFY(!connection.isOpen());
    }

    void hasKeyCodesOfEvdev()
    {
        XServer server;
        QVERIFY(server.start());
        const XConnection connection(server.displayName());
        const XPtr<xcb_get_keyboard_mapping_reply_t> up(xcb_get_keyboard_mapping_reply(
            connection, xcb_get_keyboard_mapping(connection, 111, 1), nullptr));
        QVERIFY(up);
        QCOMPARE(xcb_get_keyboard_mapping_keysyms(up.get())[0], xcb_keysym_t(0xff52));
    }
};

QTEST_GUILESS_MAIN(TestXServer)
#include "tst_XServer.moc"
