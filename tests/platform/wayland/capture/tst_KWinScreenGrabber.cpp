// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Pictures from KWin's screenshot service, and what its answers say of later ones.

#include "platform/wayland/capture/KWinPictures.h"
#include "platform/wayland/capture/KWinScreenGrabber.h"
#include "support/Picture.h"
#include "support/Pixels.h"
#include "support/compositor/TestCompositor.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

#include <unistd.h>

using namespace tovek;

namespace {

const QString kwin = QStringLiteral("org.kde.KWin");
constexpr int longestWaitMs = 3500;

} // namespace

/// KWin's service, in a thread of its own, since who asks waits.
class PretendedKWin : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.KWin.ScreenShot2")

public:
    QString error; ///< the answer; empty: a picture
    QImage picture; ///< as it is sent
    int lostTails = 0; ///< so many pictures end too early
    bool isSilent = false;

public Q_SLOTS:
    QVariantMap CaptureScreen(const QString &, const QVariantMap &,
                              const QDBusUnixFileDescriptor &pipe)
    {
        setDelayedReply(true);
        if (isSilent)
            return {};
        if (!error.isEmpty()) {
            sendErrorReply(error, QStringLiteral("not now"));
            return {};
        }
        // The reply comes before the pixels.
        connection().send(message().createReply(
            QVariant(QVariantMap{{QStringLiteral("type"), QStringLiteral("raw")},
                                 {QStringLiteral("width"), uint(picture.width())},
                                 {QStringLiteral("height"), uint(picture.height())},
                                 {QStringLiteral("stride"), uint(picture.bytesPerLine())},
                                 {QStringLiteral("format"), uint(picture.format())}})));
        const qsizetype lost = lostTails-- > 0 ? 5000 : 0;
        (void)!write(pipe.fileDescriptor(), picture.constBits(),
                     size_t(picture.sizeInBytes() - lost));
        return {};
    }
    QVariantMap CaptureArea(int, int, uint, uint, const QVariantMap &,
                            const QDBusUnixFileDescriptor &)
    {
        if (!error.isEmpty())
            sendErrorReply(error, QStringLiteral("not now"));
        return {};
    }
};

class TestKWinScreenGrabber : public QObject
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
        pretend(picture(size));
        m_service.error = error;
        const Served served(*this, Serves::pictures);
        QCOMPARE(int(kwinAccess()), access);
    }

    void takesItsPictures_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QSize>("sent");
        QTest::addColumn<int>("lostTails");
        QTest::newRow("as they are") << int(QImage::Format_RGB32) << size << 0;
        QTest::newRow("with alpha") << int(QImage::Format_ARGB32_Premultiplied) << size << 0;
        QTest::newRow("red first") << int(QImage::Format_RGBA8888_Premultiplied) << size << 0;
        QTest::newRow("a pixel more") << int(QImage::Format_RGB32) << size + QSize(1, 1) << 0;
        QTest::newRow("a tail lost") << int(QImage::Format_RGB32) << size << 1;
    }
    void takesItsPictures()
    {
        QFETCH(int, format);
        QFETCH(QSize, sent);
        QFETCH(int, lostTails);
        pretend(picture(sent).convertToFormat(QImage::Format(format)));
        m_service.lostTails = lostTails;
        const Served served(*this, Serves::pictures);
        Desk desk;
        QVERIFY(desk.grabber);
        QCOMPARE(differentPixels(desk.captured(), picture(size)), 0);
    }

    void saysWhyThereIsNone_data()
    {
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("lostTails");
        QTest::addColumn<QString>("failure");
        const QString own = QStringLiteral("org.kde.KWin.ScreenShot2.Error.");
        QTest::newRow("refused")
            << own + "NoAuthorized" << 0
            << QStringLiteral("KWin refused the picture (%1NoAuthorized)").arg(own);
        QTest::newRow("cancelled")
            << own + "Cancelled" << 0
            << QStringLiteral("KWin can take no picture now (%1Cancelled)").arg(own);
        QTest::newRow("tails lost")
            << QString() << 9 << QStringLiteral("KWin did not send all of the picture");
        QTest::newRow("silent") << QStringLiteral("silent") << 0
                                << QStringLiteral("the compositor does not answer");
    }
    void saysWhyThereIsNone()
    {
        QFETCH(QString, error);
        QFETCH(int, lostTails);
        pretend(picture(size));
        const Served served(*this, Serves::pictures);
        Desk desk;
        QVERIFY(desk.grabber);
        m_service.isSilent = error == QLatin1String("silent");
        m_service.error = m_service.isSilent ? QString() : error;
        m_service.lostTails = lostTails;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(desk.captured().isNull());
        QVERIFY2(timer.elapsed() < longestWaitMs, qPrintable(QString::number(timer.elapsed())));
        QTEST(desk.grabber->failure(), "failure");
    }

private:
    static constexpr QSize size{300, 200};
    static QImage picture(QSize ofSize)
    {
        QImage image(ofSize, QImage::Format_RGB32);
        for (int y = 0; y < ofSize.height(); ++y)
            for (int x = 0; x < ofSize.width(); ++x)
                image.setPixel(x, y, pictureColor(uint32_t(x), uint32_t(y)));
        return image;
    }
    void pretend(const QImage &image)
    {
        m_service.picture = image;
        m_service.error.clear();
        m_service.lostTails = 0;
        m_service.isSilent = false;
    }
    /// A screen, and the program's side of it.
    struct Desk
    {
        Desk()
        {
            if (!compositor.start())
                qFatal("no compositor");
            const UseCompositor use(compositor);
            connection = WaylandConnection::open();
            outputs = std::make_shared<WaylandOutputs>(connection);
            grabber = KWinScreenGrabber::create(connection, outputs);
        }
        QImage captured()
        {
            const auto content = grabber->shareableContent();
            if (!content)
                return {};
            const auto result = grabber->capture(*content, content->displays.front(), {}).result();
            return result.frozen ? result.frozen->pixels().result() : QImage();
        }
        TestCompositor compositor{{{{QStringLiteral("Virtual-0"), picture(size)}}}};
        std::shared_ptr<WaylandConnection> connection;
        std::shared_ptr<WaylandOutputs> outputs;
        std::unique_ptr<ScreenGrabber> grabber;
    };
    enum class Serves { nothing, pictures };
    /// KWin is there for as long as this is.
    struct Served
    {
        Served(TestKWinScreenGrabber &ofTest, Serves serves) : test(ofTest)
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
        TestKWinScreenGrabber &test;
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

QTEST_GUILESS_MAIN(TestKWinScreenGrabber)
#include "tst_KWinScreenGrabber.moc"
