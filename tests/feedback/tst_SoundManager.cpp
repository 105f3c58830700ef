// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeSoundOutput.h"
#include "fakes/LogCapture.h"
#include "feedback/SoundManager.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestSoundManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void loadsTheSoundThatComesWithTheProgram()
    {
        FakeSoundOutput output;
        SoundManager manager(output);
        QFile source(qEnvironmentVariable("TOVEK_SOURCE_DIR")
                     + QStringLiteral("/resources/copy.wav"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        QCOMPARE(output.data, source.readAll());
        QVERIFY(output.data.startsWith("RIFF"));
    }

    void playsFromTheStartEveryTime()
    {
        FakeSoundOutput output;
        SoundManager manager(output);
        QCOMPARE(output.plays, 0);
        manager.playCopySound();
        manager.playCopySound();
        QCOMPARE(output.plays, 2);
    }

    void staysSilentWithoutTheAsset()
    {
        FakeSoundOutput sounds;
        LogCapture output;
        SoundManager manager(sounds, QStringLiteral(":/missing.wav"));
        manager.playCopySound();
        manager.playCopySound();
        QCOMPARE(output.lines(), QStringList{"Failed to load copy sound asset"});
        QCOMPARE(sounds.plays, 0);
    }

    void staysSilentWithoutAPlayer()
    {
        FakeSoundOutput sounds;
        sounds.failure = QStringLiteral("not a sound");
        LogCapture output;
        SoundManager manager(sounds);
        manager.playCopySound();
        QCOMPARE(output.lines(), QStringList{"Failed to initialize audio player: not a sound"});
    }
};

QTEST_GUILESS_MAIN(TestSoundManager)
#include "tst_SoundManager.moc"
