// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/CanberraSoundOutput.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <cstdlib>

using namespace tovek;

/// Records what a sound server of the test's own would have played.
class TestCanberraSoundOutput : public QObject
{
    Q_OBJECT

private:
    static constexpr int rate = 44100;
    QTemporaryDir folder;
    QProcess server;
    bool areSoundsEnabled = true;
    QByteArray data;
    std::atomic<int> failures = 0;
    CanberraSoundOutput output{[this] { return areSoundsEnabled; }};

    static QByteArray sound()
    {
        QFile file(qEnvironmentVariable("TOVEK_SOURCE_DIR")
                   + QStringLiteral("/resources/copy.wav"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    std::unique_ptr<SoundPlayer> makePlayer()
    {
        return output.makePlayer(data, [this](const QString &) { ++failures; });
    }
    /// Mono samples of all that was played while the function ran and half a second after.
    QByteArray record(const std::function<void()> &play) const
    {
        QProcess recorder;
        recorder.start(QStringLiteral("parec"),
                       {"--device=null.monitor", "--format=s16le", "--channels=1",
                        QStringLiteral("--rate=%1").arg(rate), "--latency-msec=10"});
        // Its first bytes are silence: it listens.
        if (!recorder.waitForReadyRead(5000))
            return {};
        play();
        QTest::qWait(500); // the sound's own length
        recorder.terminate();
        recorder.waitForFinished();
        return recorder.readAllStandardOutput();
    }
    /// How many samples are clearly heard.
    static int loudSamples(const QByteArray &bytes)
    {
        const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
        int loud = 0;
        for (qsizetype i = 0; i < bytes.size() / 2; ++i)
            loud += std::abs(samples[i]) > 1000;
        return loud;
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *program : {"pulseaudio", "parec"}) {
            if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
                QSKIP(qPrintable(QString::fromLatin1(program) + " is not installed"));
        }
        if (!QLibrary(QStringLiteral("canberra"), 0).load())
            QSKIP("libcanberra is not installed");
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
        qputenv("HOME", folder.path().toUtf8());
        qputenv("CANBERRA_DRIVER", "pulse");
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        data = sound();
        failures = 0;
    }
    void cleanupTestCase()
    {
        server.terminate();
        server.waitForFinished();
    }

    void isSilentWithoutAServer()
    {
        QElapsedTimer timer;
        timer.start();
        {
            const auto player = makePlayer();
            player->playFromStart();
        }
        QVERIFY(timer.elapsed() < 500);
        QCOMPARE(failures, 0);
    }

    void isHeardAndObeysTheSwitch()
    {
        server.start(QStringLiteral("pulseaudio"),
                     {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                      "module-null-sink sink_name=null", "-L", "module-native-protocol-unix"});
        QVERIFY(server.waitForStarted());
        QTRY_VERIFY(QFile::exists(folder.filePath(QStringLiteral("pulse/native"))));
        const auto player = makePlayer();

        const int once = loudSamples(record([&] { player->playFromStart(); }));
        QVERIFY2(once > rate / 40, qPrintable(QString::number(once)));

        areSoundsEnabled = false;
        QCOMPARE(loudSamples(record([&] { player->playFromStart(); })), 0);
        areSoundsEnabled = true;

        // The second play cuts the first one off: less is heard than of two whole sounds.
        const int twice = loudSamples(record([&] {
            player->playFromStart();
            QTest::qWait(60); // in the middle of the sound
            player->playFromStart();
        }));
        QVERIFY2(twice > once && twice < 2 * once - rate / 80,
                 qPrintable(QStringLiteral("%1 after %2").arg(twice).arg(once)));
    }

    void tellsDataThatIsNoSound()
    {
        data = "no sound";
        const auto player = makePlayer();
        QTRY_COMPARE(failures, 1);
        player->playFromStart();
    }
};

QTEST_GUILESS_MAIN(TestCanberraSoundOutput)
#include "tst_CanberraSoundOutput.moc"
