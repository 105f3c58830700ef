// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeMutter.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/LogCapture.h"
#include "platform/mutter/MutterScreenGrabber.h"
#include "support/Skip.h"
#include "support/TestBus.h"

#include <QElapsedTimer>

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

QImage picture(QSize size, QRgb color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    image.setPixel(2, 3, 0xffffee11);
    return image;
}

const QImage left = picture({100, 80}, 0xff112233);
const QImage right = picture({60, 90}, 0xff445566);

} // namespace

/// Beside what all grabbers do (platform/ScreenGrabber).
class TestMutterScreenGrabber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestBus::isInstalled() ? QString() : QStringLiteral("no dbus-daemon"));
        QVERIFY(m_bus.start());
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_mutter = std::make_unique<FakeMutter>();
        m_mutter->setMonitors({{"DP-1", {0, 0}, left}, {"HDMI-1", {100, 0}, right}});
        m_screens = {{11, {0, 0, 100, 80}, {0, 0, 100, 80}},
                     {22, {100, 0, 60, 90}, {100, 0, 60, 90}}};
    }
    void cleanup()
    {
        m_grabber.reset();
        m_mutter.reset();
    }

    void recordsEachMonitorOnceAndStops()
    {
        make(m_mutter->program());
        QCOMPARE(shots(), QList<QImage>({left, right}));
        QTRY_COMPARE(m_mutter->calls,
                     QStringList({"GetCurrentState", "CreateSession", "RecordMonitor DP-1",
                                  "RecordMonitor HDMI-1", "Start", "Stop"}));
        for (const QVariantMap &options : m_mutter->options) {
            QCOMPARE(options.value("cursor-mode"), QVariant(0u));
            QCOMPARE(options.value("is-recording"), QVariant(true));
        }
    }

    void takesAScreenThatIsTurnedAsAPersonSeesIt()
    {
        m_mutter->setMonitors({{"DP-1", {0, 0}, left, 2}, {"HDMI-1", {100, 0}, right, 3}});
        make(m_mutter->program());
        QCOMPARE(shots(), QList<QImage>({left, right}));
    }

    void leavesNoProcessBehind()
    {
        make(m_mutter->program("echo $$ > " + m_folder.filePath("pid") + "; exec sleep 60"));
        {
            const QFuture<std::optional<ShareableContent>> content = m_grabber->freeze();
            QTRY_VERIFY(QFileInfo(m_folder.filePath("pid")).size() > 0);
            m_grabber.reset();
            QVERIFY(content.isFinished());
            QVERIFY(!content.result());
        }
        QFile file(m_folder.filePath("pid"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const pid_t process = file.readAll().trimmed().toInt();
        QTRY_VERIFY(kill(process, 0) != 0);
    }

    void givesTheSamePicturesToWhoAsksTwice()
    {
        make(m_mutter->program());
        const auto first = m_grabber->freeze();
        const auto second = m_grabber->freeze();
        QTRY_VERIFY(first.isFinished() && second.isFinished());
        QVERIFY(first.result());
        QCOMPARE(first.result()->snapshot, second.result()->snapshot);
        QCOMPARE(m_mutter->calls.count("CreateSession"), 1);
    }

    void asksAnotherGrabberWhereItFails_data()
    {
        QTest::addColumn<QString>("refused");
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no session") << "CreateSession"
                                    << ""
                                    << "refused";
        QTest::newRow("no monitors") << "GetCurrentState"
                                     << ""
                                     << "refused";
        QTest::newRow("no recording") << "RecordMonitor"
                                      << ""
                                      << "refused";
        QTest::newRow("no start") << "Start"
                                  << ""
                                  << "refused";
        QTest::newRow("the stream fails")
            << ""
            << "echo 'a line of the library' >&2; echo 'no stream' >&2; exit 1"
            << "no stream";
        QTest::newRow("the program breaks down") << ""
                                                 << "kill -SEGV $$"
                                                 << "tovek-screencast broke down";
        QTest::newRow("the program hangs") << ""
                                           << "exec sleep 60"
                                           << "it took too long";
        QTest::newRow("another stream's frame") << ""
                                                << "echo 3"
                                                << "it took too long";
    }
    void asksAnotherGrabberWhereItFails()
    {
        QFETCH(QString, refused);
        QFETCH(QString, script);
        QFETCH(QString, reason);
        m_mutter->refused = refused;
        make(m_mutter->program(script));
        if (reason == QLatin1String("it took too long"))
            m_grabber->setLimit(500ms);
        LogCapture log;
        failsOver();
        QCOMPARE(log.lines(),
                 QStringList("Mutter's ScreenCast gave no picture (" + reason
                             + "): asking the desktop's portal for one"));
    }

    void asksAnotherGrabberWithoutItsProgram()
    {
        make(m_folder.filePath("nothing"));
        failsOver();
    }

    void asksAnotherGrabberWhereTheMonitorsAreOthers()
    {
        m_screens.pop_back();
        make(m_mutter->program());
        m_other->images = {{11, right}};
        QCOMPARE(shots(), QList<QImage>({right}));
        QVERIFY(!m_mutter->calls.contains("Start"));
    }

    void waitsForNoBusThatIsSilent()
    {
        // It takes connections and answers none.
        const QByteArray path = QFile::encodeName(m_folder.filePath("silent"));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        const int bus = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        QCOMPARE(bind(bus, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        QCOMPARE(listen(bus, 5), 0);
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);
        make(m_mutter->program());
        m_grabber->setLimit(1s);
        QElapsedTimer timer;
        timer.start();
        failsOver();
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        close(bus);
    }

    void saysWhyWhereTheOtherFailsToo()
    {
        m_mutter->refused = "Start";
        make(m_mutter->program());
        m_other->hasContent = false;
        m_other->whyNone = "refused as well";
        QVERIFY(!m_grabber->shareableContent());
        QCOMPARE(m_grabber->failure(), QStringLiteral("refused as well"));
        // Another time it may be there again.
        m_mutter->refused.clear();
        QCOMPARE(shots(), QList<QImage>({left, right}));
    }

    void isOfferedWhereMutterIs()
    {
        QVERIFY(MutterScreenCast::isOffered(QDBusConnection::sessionBus()));
        m_mutter.reset();
        QVERIFY(!MutterScreenCast::isOffered(QDBusConnection::sessionBus()));
    }

private:
    void make(const QString &program)
    {
        auto other = std::make_unique<FakeScreenGrabber>();
        m_other = other.get();
        m_grabber = std::make_unique<MutterScreenGrabber>(
            program, [this] { return m_screens; }, std::move(other));
        m_grabber->setLimit(20s); // of a busy machine
    }
    QList<QImage> shots()
    {
        const auto content = m_grabber->shareableContent();
        QList<QImage> images;
        for (const CaptureDisplay &display :
             content ? content->displays : std::vector<CaptureDisplay>()) {
            const auto result = m_grabber->capture(*content, display, {}).result();
            images << (result.frozen ? result.frozen->pixels().result() : QImage());
        }
        return images;
    }
    void failsOver()
    {
        m_other->images = {{11, right}, {22, left}};
        QCOMPARE(shots(), QList<QImage>({right, left}));
    }

    TestBus m_bus;
    QTemporaryDir m_folder;
    std::unique_ptr<FakeMutter> m_mutter;
    std::vector<PortalDisplay> m_screens;
    FakeScreenGrabber *m_other = nullptr;
    std::unique_ptr<MutterScreenGrabber> m_grabber;
};

QTEST_MAIN(TestMutterScreenGrabber)
#include "tst_MutterScreenGrabber.moc"
