// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What an answer of KWin's screenshot service says of later ones.

#include "platform/wayland/capture/KWinPictures.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

using namespace tovek;

namespace {

const QString kwin = QStringLiteral("org.kde.KWin");

} // namespace

/// KWin's service, in a thread of its own, since who asks waits.
class PretendedKWin : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.KWin.ScreenShot2")

public:
    QString error; ///< the answer; empty: a picture

public Q_SLOTS:
    QVariantMap CaptureArea(int, int, uint, uint, const QVariantMap &,
                            const QDBusUnixFileDescriptor &)
    {
        if (!error.isEmpty())
            sendErrorReply(error, QStringLiteral("not now"));
        return {};
    }
};

class TestKWinAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
            QSKIP("dbus-daemon is not installed");
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"),
                        QStringLiteral("--print-address")});
        QVERIFY(m_daemon.waitForReadyRead(5000));
        m_address = QString::fromUtf8(m_daemon.readLine().trimmed());
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
        m_service.moveToThread(&m_thread);
        m_thread.start();
    }
    void cleanupTestCase()
    {
        m_thread.quit();
        m_thread.wait();
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    void isAbsentWithoutKWin() { QVERIFY(kwinAccess() == KWinAccess::absent); }

    void isAbsentWithoutTheService()
    {
        const Served served(*this, Serves::nothing);
        QVERIFY(kwinAccess() == KWinAccess::absent);
    }

    void tellsFromTheAnswer_data()
    {
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("access");
        const QString own = QStringLiteral("org.kde.KWin.ScreenShot2.Error.");
        QTest::newRow("a picture") << QString() << int(KWinAccess::granted);
        QTest::newRow("no leave") << own + "NoAuthorized" << int(KWinAccess::refused);
        // Asleep, or without a graphics card for a moment: that does not say that it stays so.
        QTest::newRow("cancelled") << own + "Cancelled" << int(KWinAccess::granted);
        QTest::newRow("another failure")
            << QStringLiteral("org.freedesktop.DBus.Error.Failed") << int(KWinAccess::granted);
    }
    void tellsFromTheAnswer()
    {
        QFETCH(QString, error);
        QFETCH(int, access);
        m_service.error = error;
        const Served served(*this, Serves::pictures);
        QCOMPARE(int(kwinAccess()), access);
    }

private:
    enum class Serves { nothing, pictures };
    /// KWin is there for as long as this is.
    struct Served
    {
        Served(TestKWinAccess &ofTest, Serves serves) : test(ofTest)
        {
            test.inThread([&] {
                QDBusConnection bus = QDBusConnection::connectToBus(test.m_address, kwin);
                if (serves == Serves::pictures)
                    bus.registerObject(QStringLiteral("/org/kde/KWin/ScreenShot2"), &test.m_service,
                                       QDBusConnection::ExportAllSlots);
                bus.registerService(kwin);
            });
        }
        ~Served()
        {
            test.inThread([] { QDBusConnection::disconnectFromBus(kwin); });
        }
        TestKWinAccess &test;
    };
    void inThread(const std::function<void()> &call)
    {
        QMetaObject::invokeMethod(&m_service, call, Qt::BlockingQueuedConnection);
    }

    QProcess m_daemon;
    QString m_address;
    PretendedKWin m_service;
    QThread m_thread;
};

QTEST_GUILESS_MAIN(TestKWinAccess)
#include "tst_KWinAccess.moc"
