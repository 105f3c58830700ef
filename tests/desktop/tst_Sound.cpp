// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What is heard of the running program, recorded from a sound server of the test's own.

#include "desktop/Session.h"
#include "support/SettingsDaemon.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QLibrary>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QtEndian>

#include <csignal>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr int rate = 44100;
constexpr int quiet = 300; // of 32767
constexpr qsizetype wavHeader = 44;

using Samples = QList<qint16>;

Samples samplesOf(const QByteArray &bytes)
{
    Samples samples(bytes.size() / 2);
    qFromLittleEndian<qint16>(bytes.constData(), samples.size(), samples.data());
    return samples;
}

Samples soundItself()
{
    QFile file(qEnvironmentVariable("TOVEK_SOURCE_DIR") + QStringLiteral("/resources/copy.wav"));
    return file.open(QIODevice::ReadOnly) ? samplesOf(file.readAll().mid(wavHeader)) : Samples();
}

/// Stretches in which something is heard, each with its first and last sample. Less than 50 ms of
/// silence do not end one.
QList<std::pair<qsizetype, qsizetype>> heard(const Samples &samples)
{
    constexpr qsizetype patience = rate / 20;
    QList<std::pair<qsizetype, qsizetype>> stretches;
    for (qsizetype i = 0; i < samples.size(); ++i) {
        if (std::abs(int(samples[i])) < quiet)
            continue;
        if (stretches.isEmpty() || i - stretches.back().second > patience)
            stretches.append({i, i});
        stretches.back().second = i;
    }
    return stretches;
}

/// The monitor of a sink without hardware swallows some milliseconds of what begins suddenly.
constexpr qsizetype swallowed = rate / 50;

/// Whether the sound begins at this sample of the recording: a while of its first tone is the same,
/// to the sample. (One wave later or earlier it is very much alike.)
bool beginsAt(const Samples &recording, qsizetype at, const Samples &sound)
{
    constexpr qsizetype end = rate / 25;
    constexpr int most = 10; // the server may round
    if (at < 0 || at + end > recording.size())
        return false;
    for (qsizetype i = swallowed; i < end; ++i) {
        if (std::abs(recording[at + i] - sound[i]) > most)
            return false;
    }
    return true;
}

/// Where the sound begins in the recording.
QList<qsizetype> beginnings(const Samples &recording, const Samples &sound)
{
    QList<qsizetype> found;
    for (const auto &[first, last] : heard(recording)) {
        for (qsizetype at = first - swallowed; at <= last; ++at) {
            if (beginsAt(recording, at, sound))
                found.append(at);
        }
    }
    return found;
}

/// A session with a sound server whose only output is nobody's ear.
struct SoundSession : Session
{
    bool startServer()
    {
        server = desktop.run(QStringLiteral("pulseaudio"),
                             {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                              "-L", "module-null-sink sink_name=null rate=44100", "-L",
                              "module-native-protocol-unix"});
        return server && waitUntil([&] {
                   return QFile::exists(runFolder() + QStringLiteral("/pulse/native"));
               });
    }
    QString runFolder() const
    {
        return desktop.environment().value(QStringLiteral("XDG_RUNTIME_DIR"));
    }
    QString file() const { return desktop.home() + QStringLiteral("/recording"); }

    bool startRecording()
    {
        QFile::remove(file());
        recorder =
            desktop.run(QStringLiteral("parec"),
                        {"--device=null.monitor", "--format=s16le", "--channels=1",
                         QStringLiteral("--rate=%1").arg(rate), "--latency-msec=10", file()});
        // Its first bytes are silence: it listens.
        return recorder && waitUntil([&] { return QFile(file()).size() > 0; });
    }
    /// All that was heard since; waits until nothing has been heard for half a second.
    Samples recording()
    {
        constexpr qsizetype tail = rate / 2;
        Samples samples;
        const bool isOver = waitUntil([&] {
            QFile bytes(file());
            if (!bytes.open(QIODevice::ReadOnly))
                return false;
            const QByteArray all = bytes.readAll();
            samples = samplesOf(all.left(all.size() / 2 * 2));
            const auto stretches = heard(samples);
            return samples.size() > 2 * tail
                && (stretches.isEmpty() || samples.size() - stretches.back().second > tail);
        });
        recorder->stop();
        return isOver ? samples : Samples();
    }

    Program *server = nullptr;
    Program *recorder = nullptr;
};

} // namespace

class TestSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString reason = TestDesktop::missing(); !reason.isEmpty())
            QSKIP(qPrintable(reason));
        for (const char *program : {"pulseaudio", "parec"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                QSKIP(qPrintable(QLatin1String(program) + QStringLiteral(" is not installed")));
        }
        if (!QLibrary(QStringLiteral("canberra"), 0).load())
            QSKIP("libcanberra is not installed");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isHeardOnceForEveryCopyAndSave()
    {
        SoundSession session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        QVERIFY(session.startServer());
        QVERIFY(session.tovek->start());
        const Samples sound = soundItself();
        QVERIFY(!sound.isEmpty());
        const struct
        {
            const char *key; // that ends the capture
            int sounds;
        } endings[]{{"Return", 1}, {"Control_L+s", 1}, {"Escape", 0}};
        for (const auto &ending : endings) {
            QVERIFY(session.startRecording());
            QVERIFY2(session.open(), ending.key);
            session.select({150, 150}, {301, 277});
            QVERIFY2(session.tap(ending.key), ending.key);
            QVERIFY2(session.isClosed(), ending.key);
            const Samples recording = session.recording();
            QVERIFY2(!recording.isEmpty(), ending.key);
            const auto starts = beginnings(recording, sound);
            QVERIFY2(starts.size() == ending.sounds,
                     qPrintable(QStringLiteral("%1: %2").arg(ending.key).arg(starts.size())));
            if (starts.isEmpty())
                continue;
            // All of it, to its fading end.
            const auto whole = heard(sound).constFirst();
            const auto seen = heard(recording);
            QVERIFY2(seen.size() == 1, ending.key);
            const qsizetype difference =
                (seen[0].second - seen[0].first) - (whole.second - whole.first);
            QVERIFY2(std::abs(difference) < swallowed, qPrintable(QString::number(difference)));
        }
    }

    void startsAfreshOnARapidSecondCopy()
    {
        SoundSession session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        QVERIFY(session.startServer());
        QVERIFY(session.tovek->start());
        const Samples sound = soundItself();
        const auto copyQuickly = [&] {
            QVERIFY(
                session.tovek->open(QLatin1String(RunningTovek::captureImage), session.monitors()));
            session.tovek->hand().move({150, 150});
            session.tovek->hand().press();
            session.tovek->hand().move({301, 277});
            session.tovek->hand().release();
            QVERIFY(session.isClosed());
        };
        // The first copy loads what plays the sound. On a machine that is too busy the second comes
        // when the first has been heard to its end.
        for (int attempt = 0; attempt < 10; ++attempt) {
            QVERIFY(session.startRecording());
            copyQuickly();
            // As fast as a hand may be.
            const QDeadlineTimer pause(100);
            QVERIFY(waitUntil([&] { return pause.hasExpired(); }));
            copyQuickly();
            const Samples recording = session.recording();
            const auto starts = beginnings(recording, sound);
            QCOMPARE(starts.size(), 2);
            const auto seen = heard(recording);
            if (starts[1] - starts[0] > rate / 4)
                continue;
            // After the second beginning there is the sound alone: nothing of the first goes on.
            QCOMPARE(seen.size(), 1);
            double worst = 0;
            for (qsizetype i = swallowed; i < sound.size(); ++i)
                worst =
                    std::max(worst, std::abs(double(recording[starts[1] + i]) - double(sound[i])));
            QVERIFY2(worst < 100, qPrintable(QString::number(worst)));
            return;
        }
        QSKIP("this machine is too busy for two copies within a quarter of a second");
    }

    void isSilentWhereTheDesktopWantsNoEventSounds()
    {
        SoundSession session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        const SettingsDaemon off(session.desktop.displayName(), "Net/EnableEventSounds", 0);
        QVERIFY(session.startServer());
        QVERIFY(session.tovek->start());
        QVERIFY(session.startRecording());
        QVERIFY(session.copy({150, 150}, {301, 277}));
        const Samples recording = session.recording();
        QVERIFY(!recording.isEmpty());
        QVERIFY(heard(recording).isEmpty());
    }

    void copiesAndQuitsWhenTheSoundServerHasStopped_data()
    {
        QTest::addColumn<int>("copiesBefore");
        QTest::newRow("before the sound is loaded") << 0;
        QTest::newRow("after the first copy") << 1;
    }
    void copiesAndQuitsWhenTheSoundServerHasStopped()
    {
        QFETCH(int, copiesBefore);
        SoundSession session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        QVERIFY(session.startServer());
        QVERIFY(session.tovek->start());
        for (int i = 0; i < copiesBefore; ++i)
            QVERIFY(session.copy({150, 150}, {250, 250}));
        QCOMPARE(kill(pid_t(session.server->pid()), SIGSTOP), 0);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(session.open());
            session.select({150, 150}, {301, 277});
            QElapsedTimer timer;
            timer.start();
            QVERIFY(session.tap("Return"));
            QCOMPARE(QImage::fromData(session.pasted()).size(), QSize(151, 127));
            QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
        }
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(kill(pid_t(session.tovek->program().pid()), SIGTERM), 0);
        QCOMPARE(session.tovek->program().waitForExit(), std::optional(0));
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    }

    void copiesWithoutASoundServer()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select({150, 150}, {301, 277});
        QElapsedTimer timer;
        timer.start();
        QVERIFY(session.tap("Return"));
        QCOMPARE(QImage::fromData(session.pasted()).size(), QSize(151, 127));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(session.tovek->program().errorLines(), QStringList());
        QCOMPARE(session.tovek->program().lines().filter(QStringLiteral("audio")), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestSound)
#include "tst_Sound.moc"
