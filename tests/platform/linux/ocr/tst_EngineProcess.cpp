// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/EngineProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <signal.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

std::unique_ptr<LineEngine> standIn(const char *way, std::chrono::milliseconds patience)
{
    const QString program = QCoreApplication::applicationDirPath() + "/tovek-ocr-stand-in";
    return EngineProcess::create({QFile::encodeName(program), "folder", way, patience});
}

LineStrip strip(int width)
{
    LineStrip strip;
    strip.width = width;
    strip.grey.assign(std::size_t(width) * LineStrip::height, 255);
    return strip;
}

} // namespace

class TestEngineProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void bearsAPageThatTakesLongerThanItsPatience()
    {
        const auto engine = standIn("steady", 2s);
        QVERIFY(engine);
        QElapsedTimer timer;
        timer.start();
        int lines = 0;
        while (timer.elapsed() < 3000) {
            const auto symbols = engine->read(strip(50), LineEngine::Models::all);
            QVERIFY2(symbols, qPrintable(QString::number(lines)));
            QCOMPARE(symbols->size(), std::size_t(1));
            QCOMPARE(symbols->front().text, QString("a"));
            ++lines;
        }
        QVERIFY(lines > 1);
    }

    void givesUpAnEngineThatAnswersNothing_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("short line") << 50;
        QTest::newRow("longest line") << (1 << 15);
    }
    void givesUpAnEngineThatAnswersNothing()
    {
        QFETCH(int, width);
        const auto engine = standIn("hangs", 500ms);
        QVERIFY(engine);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!engine->read(strip(width), LineEngine::Models::all));
        QVERIFY(timer.elapsed() >= 499);
    }

    void givesUpAnEngineThatNeverGetsReady() { QVERIFY(!standIn("silent", 300ms)); }

    void noticesAtOnceThatAnEngineEnded()
    {
        const auto engine = standIn("ends", 60s);
        QVERIFY(engine);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!engine->read(strip(50), LineEngine::Models::all));
        QVERIFY(timer.elapsed() < 30000);
    }

    void refusesAnAnswerThatCannotBe()
    {
        const auto engine = standIn("boasts", 60s);
        QVERIFY(engine);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!engine->read(strip(50), LineEngine::Models::all));
        QVERIFY(timer.elapsed() < 30000); // not after waiting for all of it
    }

    void endsItsProcessEvenWhenItHangs()
    {
        auto engine = standIn("hangs", 300ms);
        QVERIFY(engine);
        const int process = static_cast<EngineProcess &>(*engine).processId();
        QCOMPARE(::kill(process, 0), 0);
        QVERIFY(!engine->read(strip(50), LineEngine::Models::all));
        engine.reset();
        QCOMPARE(::kill(process, 0), -1);
    }
};

QTEST_GUILESS_MAIN(TestEngineProcess)
#include "tst_EngineProcess.moc"
