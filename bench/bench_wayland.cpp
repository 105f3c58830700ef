// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a user of the running program waits for on sway with two outputs, and what it costs while
// nobody uses it, beside a floor that captures and shows with the same protocols. Prints Markdown.
//
// bench_wayland [CASE]...
//   first open drag idle; all of them by default
// TOVEK_PROGRAM names another build of the program.

#include "Measure.h"
#include "ProcessFigures.h"
#include "Witness.h"
#include "desktop/wayland/WaylandSession.h"

#include <QGuiApplication>

#include <cstdio>
#include <thread>

using namespace tovek;
using namespace tovek::bench;
using namespace std::chrono_literals;

namespace {

constexpr int runs = 15;
constexpr int firstRuns = 7;
constexpr auto tapTime = 80ms;
constexpr auto settleTime = 400ms;
/// The program compares pictures with and without a cursor a while after its start.
constexpr auto startTime = 5s;
constexpr auto idleTime = 30s;

struct Stage
{
    Stage() : session({{{QSize(1920, 1080), 1}, {QSize(1920, 1080), 1}}})
    {
        session.settings.insert(QStringLiteral("KeyboardShortcuts_captureScreenshot"),
                                QStringLiteral("{\"carbonKeyCode\":23,\"carbonModifiers\":6144}"));
        session.readsText = true;
        if (!session.start())
            giveUp(session.error);
        witness = std::make_unique<Witness>(session.desktop.socket());
        if (!witness->isWorking())
            giveUp(QStringLiteral("sway lacks what the eye needs"));
        session.point(0, {600, 600});
        startFloor();
        std::this_thread::sleep_for(startTime);
    }

    void startFloor()
    {
        floor =
            session.desktop.run(QStringLiteral(TOVEK_FLOOR),
                                {session.desktop.environment().value(QStringLiteral("SWAYSOCK"))});
        if (!floor || !floor->waitForLine(QStringLiteral("ready")))
            giveUp(QStringLiteral("the floor did not start"));
    }
    void restart(Subject subject)
    {
        program(subject).stop();
        if (subject == Subject::floor) {
            startFloor();
            return;
        }
        session.tovek = session.desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"),
                                            {QStringLiteral("--background")});
        if (!session.tovek || !waitUntil([&] { return session.act("no-such-action"); }))
            giveUp(QStringLiteral("the program does not start"));
    }
    Program &program(Subject subject)
    {
        return subject == Subject::floor ? *floor : *session.tovek;
    }

    /// Milliseconds from the release of the key until each output was covered.
    double open(Subject subject)
    {
        const QString keys =
            subject == Subject::floor ? QStringLiteral("F8") : QStringLiteral("Control_L+Alt_L+5");
        if (!witness->waitUntilUncovered() || !session.hand->hold(keys))
            giveUp(QStringLiteral("an overlay does not go"));
        std::this_thread::sleep_for(tapTime);
        const double letGo = millisecondsOf([&] { (void)session.hand->letGo(keys); });
        const auto time = witness->waitUntilCovered();
        if (!time)
            giveUp(QStringLiteral("no overlay came"));
        std::this_thread::sleep_for(settleTime);
        return letGo + *time;
    }
    void close()
    {
        (void)session.hand->tap(QStringLiteral("Escape"));
        std::this_thread::sleep_for(50ms);
        (void)session.hand->tap(QStringLiteral("Escape"));
        if (!witness->waitUntilUncovered())
            giveUp(QStringLiteral("an overlay does not close"));
        std::this_thread::sleep_for(settleTime);
    }

    WaylandSession session;
    std::unique_ptr<Witness> witness;
    Program *floor = nullptr;
};

const QStringList besideAFloor{"program", "floor", "ratio", "budget"};

void printRow(const Pair &pair, double budget)
{
    std::printf("| %.2f | %.2f | %.2f | %.1f |\n", median(pair.tovek), median(pair.floor),
                median(pair.tovek) / median(pair.floor), budget);
    std::fflush(stdout);
}

void openFirst(Stage &stage)
{
    Pair times;
    for (int run = 0; run < firstRuns; ++run) {
        for (const Subject subject : subjects) {
            stage.restart(subject);
            std::this_thread::sleep_for(startTime);
            times.add(subject, stage.open(subject));
            stage.close();
        }
    }
    printHead("Shortcut released to both outputs covered, first of a process", "ms: median",
              besideAFloor);
    printRow(times, 1.6);
}

void openWarm(Stage &stage)
{
    const Pair times = timesOfOpening(stage, runs);
    printHead("Shortcut released to both outputs covered", "ms: median", besideAFloor);
    printRow(times, 1.3);
}

/// Microseconds of the processors that one motion event of a drag takes.
double dragCost(Stage &stage, Subject subject)
{
    constexpr int events = 200;
    constexpr auto interval = 4ms; // a mouse of 250 reports a second
    WaylandHand &hand = *stage.session.hand;
    hand.move({300, 200});
    stage.open(subject);
    hand.press();
    const auto drag = [&](int from, int to, int steps) {
        const auto begin = std::chrono::steady_clock::now();
        for (int step = 1; step <= steps; ++step) {
            std::this_thread::sleep_until(begin + step * interval);
            const double at = from + double(to - from) * step / steps;
            hand.move({300 + at, 200 + at / 2});
        }
    };
    drag(0, 100, 20);
    std::this_thread::sleep_for(settleTime); // the veil has come down
    const pid_t pid = pid_t(stage.program(subject).pid());
    const qint64 before = cpuNanoseconds(pid);
    drag(100, 900, events / 2);
    drag(900, 100, events / 2);
    std::this_thread::sleep_for(20ms);
    const qint64 after = cpuNanoseconds(pid);
    hand.release();
    std::this_thread::sleep_for(50ms);
    stage.close();
    return double(after - before) / 1000 / events;
}

void dragCosts(Stage &stage)
{
    Pair costs;
    for (int run = 0; run < firstRuns; ++run) {
        for (const Subject subject : subjects)
            costs.add(subject, dragCost(stage, subject));
    }
    printHead("Processor time for one motion event of a drag", "µs: median", besideAFloor);
    printRow(costs, 3);
}

void idle(Stage &stage)
{
    stage.restart(Subject::tovek);
    std::this_thread::sleep_for(startTime);
    const pid_t pid = pid_t(stage.program(Subject::tovek).pid());
    const Switches before = switchesOf(pid);
    std::this_thread::sleep_for(idleTime);
    const qint64 wakeUps = switchesBetween(before, switchesOf(pid));
    const Memory memory = memoryOf(pid, {});
    printHead("Idle", "for 30 s", {"wake-ups", "proportional MB", "the same, alone"});
    std::printf("| %lld | %.1f | %.1f |\n", qlonglong(wakeUps), memory.pss, memory.alone);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("TOVEK_PROGRAM"))
        qputenv("TOVEK_PROGRAM", TOVEK_BINARY);
    const QGuiApplication application(argc, argv);
    const QStringList chosen = application.arguments().mid(1);
    if (const QString missing = WaylandDesktop::missing(); !missing.isEmpty())
        giveUp(missing);
    Stage stage;
    const std::pair<const char *, void (*)(Stage &)> cases[]{
        {"first", &openFirst}, {"open", &openWarm}, {"drag", &dragCosts}, {"idle", &idle}};
    for (const auto &[name, measure] : cases) {
        if (chosen.isEmpty() || chosen.contains(QLatin1String(name)))
            measure(stage);
    }
    return 0;
}
