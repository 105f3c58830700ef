// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a user of the running program waits for, and what it costs while nobody uses it, beside a
// floor that does no more than the display server must do. Prints Markdown. Program and floor take
// turns, so that a busy machine hits both.
//
// bench_capture [CASE]...
//   open rested first drag copy save start idle used text; all of them by default
// TOVEK_PROGRAM names another build of the program.

#include "Measure.h"
#include "Pictures.h"
#include "Responsiveness.h"
#include "Stage.h"

#include <QGuiApplication>

#include <cstdio>

using namespace tovek;
using namespace tovek::bench;
using namespace std::chrono_literals;

namespace {

constexpr int runs = 9;
const QSize fullHd(1920, 1080);
const QSize ultraHd(3840, 2160);
/// Whatever a process does after its start has ended by then, or after its last capture.
constexpr auto calmTime = 5s;
constexpr auto idleTime = 30s;
constexpr auto restTime = 6s;
/// The thumbnail of the last capture stays in the panel for as long.
constexpr auto previewTime = 20s;

double least(const std::vector<double> &values)
{
    return *std::min_element(values.begin(), values.end());
}

void printOpeningHead(const char *title, const QString &unit)
{
    printHead(title, qPrintable(unit + QStringLiteral(": median, least")),
              {"screen", "program", "floor", "ratio", "of the least", "budget"});
}

void printRow(const char *name, QSize size, const Pair &pair, double budget)
{
    const double ours = median(pair.tovek), floor = median(pair.floor);
    const double leastOurs = least(pair.tovek), leastFloor = least(pair.floor);
    std::printf("| %s%dx%d | %.2f, %.2f | %.2f, %.2f | %.2f | %.2f | %.1f |\n", name, size.width(),
                size.height(), ours, leastOurs, floor, leastFloor, ours / floor,
                leastOurs / leastFloor, budget);
    std::fflush(stdout);
}

void openWarm(Stage &stage)
{
    const Pair times = timesOfOpening(stage, runs);
    printRow("warm ", stage.size(), times, 1.5);
}

/// After the program has given back what only work needs.
void openRested(Stage &stage)
{
    Pair times;
    for (int run = 0; run < runs; ++run) {
        waitFor(restTime);
        for (const Subject subject : subjects) {
            times.add(subject, stage.open(subject));
            stage.close();
        }
    }
    printRow("rested ", stage.size(), times, 1.5);
}

void openFirst(Stage &stage)
{
    Pair times;
    for (int run = 0; run < runs; ++run) {
        for (const Subject subject : subjects) {
            stage.stop(subject);
            stage.start(subject);
            waitFor(700ms);
            times.add(subject, stage.open(subject));
            stage.close();
        }
    }
    printRow("first ", stage.size(), times, 2);
}

/// Microseconds of the processors that one motion event of a drag takes.
double dragCost(Stage &stage, Subject subject)
{
    constexpr int events = 100;
    constexpr auto interval = 4ms; // a mouse of 250 reports a second
    stage.open(subject);
    stage.press(0.2);
    waitFor(300ms); // the veil has come down
    stage.drag(0.2, 0.3, 10, interval);
    waitFor(20ms);
    const qint64 before = cpuNanoseconds(stage.pid(subject));
    stage.drag(0.3, 0.8, events, interval);
    stage.drag(0.8, 0.3, events, interval);
    waitFor(20ms);
    const qint64 after = cpuNanoseconds(stage.pid(subject));
    stage.release();
    waitFor(50ms);
    stage.close();
    return double(after - before) / 1000 / (2 * events);
}

double dragCosts(Stage &stage)
{
    Pair costs;
    for (int run = -1; run < runs; ++run) {
        for (const Subject subject : subjects) {
            const double cost = dragCost(stage, subject);
            if (run >= 0)
                costs.add(subject, cost);
        }
    }
    printRow("", stage.size(), costs, 3);
    return median(costs.tovek);
}

enum class Output { copy, save };

void outputs(Stage &stage, Output output)
{
    Pair times, sizes;
    for (int run = -1; run < runs; ++run) {
        for (const Subject subject : subjects) {
            stage.open(subject);
            stage.selectEverything();
            const Stage::Result result =
                output == Output::copy ? stage.copy() : stage.save(subject);
            if (run < 0)
                continue;
            times.add(subject, result.milliseconds);
            sizes.add(subject, double(result.bytes) / 1e6);
        }
    }
    printRow("", stage.size(), times, 1.3);
    printRow("megabytes ", stage.size(), sizes, 1.1);
}

void starts(Stage &stage)
{
    std::vector<double> ready, shown;
    for (int run = -1; run < runs; ++run) {
        stage.stop(Subject::tovek);
        const auto begin = std::chrono::steady_clock::now();
        const double time = stage.start(Subject::tovek);
        // A key pressed at this very moment must do something.
        for (const Key key : {superKey, shiftKey, cKey})
            stage.scene().key(key, true);
        for (const Key key : {cKey, shiftKey, superKey})
            stage.scene().key(key, false);
        if (!stage.scene().waitUntilCovered())
            giveUp(QStringLiteral("a key pressed right after the start does nothing"));
        const std::chrono::duration<double, std::milli> whole =
            std::chrono::steady_clock::now() - begin;
        waitFor(500ms);
        stage.close();
        if (run < 0)
            continue;
        ready.push_back(time);
        shown.push_back(whole.count());
    }
    std::printf("\n## Start of the process (ms: median, least)\n\n"
                "| | program | budget |\n|---|---|---|\n"
                "| until the shortcut is held | %.1f, %.1f | 60 |\n"
                "| until the overlay of a key pressed then is shown | %.1f, %.1f | |\n",
                median(ready), least(ready), median(shown), least(shown));
    std::fflush(stdout);
}

struct Idleness
{
    qint64 switches;
    size_t threads;
    Memory memory;
};

Idleness watchIdle(Stage &stage, std::chrono::seconds calm = calmTime)
{
    waitFor(calm);
    const pid_t pid = stage.pid(Subject::tovek);
    const Switches before = switchesOf(pid);
    waitFor(idleTime);
    const Switches after = switchesOf(pid);
    return {switchesBetween(before, after), after.size(), stage.memory(Subject::tovek)};
}

void printIdle(const char *when, const Idleness &idle)
{
    std::printf("| %s | %lld | %zu | %.1f | %.1f | %.1f | %.1f |\n", when, qlonglong(idle.switches),
                idle.threads, idle.memory.pss, idle.memory.alone, idle.memory.rss,
                idle.memory.privateDirty);
    std::fflush(stdout);
}

void copyAPart(Stage &stage)
{
    stage.open(Subject::tovek);
    stage.press(0.3);
    stage.drag(0.3, 0.6, 10, 4ms);
    stage.release();
    waitFor(20ms);
    stage.copy();
}

void printIdleHead()
{
    std::printf("\n## Idle for 30 s (budget: 0 wake-ups, 25 MB, 2 MB more after 100 captures)\n\n"
                "| | wake-ups | threads | proportional MB | the same, no other program of the "
                "toolkit | resident | private |\n|---|---|---|---|---|---|---|\n");
}

void idle(Stage &stage)
{
    stage.stop(Subject::tovek);
    stage.start(Subject::tovek);
    printIdleHead();
    printIdle("after the start", watchIdle(stage));
    for (int capture = 0; capture < 100; ++capture)
        copyAPart(stage);
    printIdle("after 100 captures", watchIdle(stage, previewTime + calmTime));
}

/// Everything that a copy and a save set going has been shown and heard, and is over.
void idleInUse(Stage &stage)
{
    stage.stop(Subject::tovek);
    stage.furnish();
    stage.start(Subject::tovek);
    waitFor(700ms);
    stage.open(Subject::tovek);
    stage.selectEverything();
    stage.save(Subject::tovek);
    copyAPart(stage);
    printIdleHead();
    printIdle("with a panel, notifications and sound, after a save and a copy",
              watchIdle(stage, previewTime + calmTime));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList chosen = application.arguments().mid(1);
    const auto isChosen = [&](const char *name) {
        return chosen.isEmpty() || chosen.contains(QLatin1String(name));
    };
    std::unique_ptr<Stage> stages[]{std::make_unique<Stage>(photographicNoise(fullHd)),
                                    std::make_unique<Stage>(photographicNoise(ultraHd))};
    const auto onEach = [&](const char *name, const char *title, const char *unit, auto measure) {
        if (!isChosen(name))
            return;
        printOpeningHead(title, unit);
        for (const auto &stage : stages)
            measure(*stage);
    };
    onEach("first", "Shortcut released to overlay shown, first of a process", "ms", openFirst);
    for (const auto &stage : stages) {
        for (const Subject subject : subjects) {
            stage->stop(subject);
            stage->start(subject);
        }
        waitFor(700ms);
    }
    onEach("open", "Shortcut released to overlay shown", "ms", openWarm);
    onEach("rested", "Shortcut released to overlay shown, after some seconds of rest", "ms",
           openRested);
    std::vector<double> costs;
    onEach("drag", "Processor time for one motion event of a drag", "µs",
           [&](Stage &stage) { costs.push_back(dragCosts(stage)); });
    if (costs.size() == 2)
        std::printf("\nThe larger screen to the smaller: %.2f (budget 1.5)\n", costs[1] / costs[0]);
    onEach("copy", "Return to the whole PNG pasted", "ms",
           [](Stage &stage) { outputs(stage, Output::copy); });
    onEach("save", "Ctrl+S to the whole file", "ms",
           [](Stage &stage) { outputs(stage, Output::save); });
    stages[1].reset();
    if (isChosen("start"))
        starts(*stages[0]);
    if (isChosen("idle"))
        idle(*stages[0]);
    if (isChosen("used"))
        idleInUse(*stages[0]);
    stages[0].reset();
    if (isChosen("text"))
        printResponsiveness({fullHd, ultraHd});
    return 0;
}
