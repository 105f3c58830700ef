// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeKeyboardLayout.h"
#include "fakes/LogCapture.h"
#include "platform/wayland/keys/SwayHotKeys.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <cstring>

using namespace tovek;

namespace {

constexpr KeyCombo copy{8, 0x1100};

/// Speaks sway's protocol on a thread of its own, since the hot keys wait for its answers.
class FakeSway : public QObject
{
public:
    explicit FakeSway(const QString &path)
    {
        moveToThread(&m_thread);
        m_thread.start();
        run([this, path] {
            m_server = new QLocalServer(this);
            connect(m_server, &QLocalServer::newConnection, this, [this] { take(); });
            m_server->listen(path);
        });
    }
    ~FakeSway() override
    {
        run([this] { delete m_server; });
        m_thread.quit();
        m_thread.wait();
    }

    QStringList commands()
    {
        QStringList all;
        run([&] { all = std::exchange(m_commands, {}); });
        return all;
    }
    void dropEverybody()
    {
        run([this] {
            for (auto *socket : m_server->findChildren<QLocalSocket *>())
                socket->abort();
        });
    }
    void tellBinding(const QString &command)
    {
        const QJsonObject binding{{"command", command}};
        const QJsonObject event{{"change", "run"}, {"binding", binding}};
        run([&] { send(*m_listener, 0x80000005, QJsonDocument(event).toJson()); });
    }

private:
    template <typename Call>
    void run(const Call &call)
    {
        QMetaObject::invokeMethod(this, call, Qt::BlockingQueuedConnection);
    }
    void take()
    {
        QLocalSocket *socket = m_server->nextPendingConnection();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { answer(*socket); });
    }
    void answer(QLocalSocket &socket)
    {
        while (socket.bytesAvailable() >= 14) {
            const QByteArray header = socket.read(14);
            quint32 length = 0;
            quint32 type = 0;
            std::memcpy(&length, header.constData() + 6, 4);
            std::memcpy(&type, header.constData() + 10, 4);
            const QByteArray payload = socket.read(length);
            if (type == 2)
                m_listener = &socket;
            else
                m_commands << QString::fromUtf8(payload);
            send(socket, type, type == 2 ? R"({"success":true})" : R"([{"success":true}])");
        }
    }
    static void send(QLocalSocket &socket, quint32 type, const QByteArray &payload)
    {
        const auto length = quint32(payload.size());
        socket.write("i3-ipc");
        socket.write(reinterpret_cast<const char *>(&length), 4);
        socket.write(reinterpret_cast<const char *>(&type), 4);
        socket.write(payload);
        socket.flush();
    }

    QThread m_thread;
    QLocalServer *m_server = nullptr;
    QLocalSocket *m_listener = nullptr;
    QStringList m_commands;
};

} // namespace

/// What sway's socket can do to us; that sway itself does as expected is in the hot keys' contract.
class TestSwayHotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isNotThereWithoutASocket()
    {
        QVERIFY(!SwayHotKeys::create({}, m_layout));
        QVERIFY(!SwayHotKeys::create(m_folder.filePath(QStringLiteral("nobody")), m_layout));
    }

    void bindsAgainWhenItHasLostTheConnection()
    {
        const LogCapture log;
        FakeSway sway(m_folder.filePath(QStringLiteral("lost")));
        const auto keys = SwayHotKeys::create(m_folder.filePath(QStringLiteral("lost")), m_layout);
        QVERIFY(keys);
        keys->startDispatching();
        QCOMPARE(keys->grab(1, copy), 0);
        const QStringList bound = sway.commands();
        QCOMPARE(bound.size(), 2);
        sway.dropEverybody();
        QStringList again;
        QTRY_COMPARE(again += sway.commands(), bound);

        QStringList told;
        keys->onPressed = [&](quint32 id) { told << QStringLiteral("down %1").arg(id); };
        sway.tellBinding(bound[0].mid(bound[0].indexOf(QStringLiteral("nop"))));
        QTRY_COMPARE(told, QStringList("down 1"));
    }

    void tellsNothingOfOthersBindings()
    {
        FakeSway sway(m_folder.filePath(QStringLiteral("others")));
        const auto keys =
            SwayHotKeys::create(m_folder.filePath(QStringLiteral("others")), m_layout);
        QVERIFY(keys);
        keys->startDispatching();
        QCOMPARE(keys->grab(1, copy), 0);
        QStringList told;
        keys->onPressed = [&](quint32 id) { told << QString::number(id); };
        const QString ours = sway.commands().value(0);
        for (const char *other : {"exec grim", "nop", "nop tovek 1 1 down", ""})
            sway.tellBinding(QString::fromLatin1(other));
        sway.tellBinding(ours.mid(ours.indexOf(QStringLiteral("nop"))));
        QTRY_COMPARE(told, QStringList("1"));
    }

    void takesItsBindingsBackAtTheEnd()
    {
        FakeSway sway(m_folder.filePath(QStringLiteral("end")));
        auto keys = SwayHotKeys::create(m_folder.filePath(QStringLiteral("end")), m_layout);
        QVERIFY(keys);
        QCOMPARE(keys->grab(1, copy), 0);
        sway.commands();
        keys.reset();
        QCOMPARE(sway.commands(),
                 QStringList({"unbindcode Ctrl+Mod4+54", "unbindcode --release Ctrl+Mod4+54"}));
    }

private:
    QTemporaryDir m_folder;
    FakeKeyboardLayout m_layout;
};

QTEST_GUILESS_MAIN(TestSwayHotKeys)
#include "tst_SwayHotKeys.moc"
