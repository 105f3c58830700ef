// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The programs around this one stop, die, or make way for a successor, in every state of a capture.

#include "desktop/Session.h"
#include "faults/Processes.h"
#include "support/Skip.h"
#include "support/XConnection.h"

#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <future>

using namespace tovek;

namespace {

enum class Fault { stopped, killed, restarted };
enum class State { idle, open, selecting, selected, drawing, typing };

constexpr State everyState[]{State::idle,     State::open,    State::selecting,
                             State::selected, State::drawing, State::typing};
constexpr QPoint corner(150, 150), opposite(350, 300);
/// What a person takes for at once.
constexpr qint64 atOnceMs = 1000;
/// How much longer than with everything in order it may take all the same, where the machine is so
/// busy that it is more.
constexpr qint64 mostTimes = 3;
const QString holder(QStringLiteral("tovek-clipboard"));

struct VictimSession : Session
{
    VictimSession(QString program, DesktopPlan desktopPlan)
        : Session(std::move(desktopPlan))
        , victim(std::move(program))
    {
        readsText = victim == QLatin1String("tovek-ocr");
    }

    bool startVictim()
    {
        if (victim == holder)
            return leaveAHolder();
        static const std::map<QString, QStringList> options{
            {"picom", {"--config", "/dev/null", "--backend", "xrender", "--no-vsync", "--shadow"}},
            {"pulseaudio",
             {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
              "module-null-sink", "-L", "module-native-protocol-unix"}}};
        const auto found = options.find(victim);
        return desktop.run(victim, found == options.end() ? QStringList() : found->second)
            && waitUntil([&] { return pid() > 0; });
    }
    /// A copy of a program that has ended, and the next program.
    bool leaveAHolder()
    {
        if (!tovek->program().isRunning() && !tovek->start())
            return false;
        if (!copy({400, 400}, {460, 440}) || pasted().isEmpty()
            || !waitUntil([&] { return pid() == 0; })) // one that is left from before
            return false;
        kill(pid_t(tovek->program().pid()), SIGTERM);
        return tovek->program().waitForExit() == 0 && waitUntil([&] { return pid() > 0; })
            && tovek->start();
    }
    /// 0 where it does not run, which is a recogniser's right.
    pid_t pid() const
    {
        if (victim == holder)
            return clipboardHolder(desktop.displayName());
        const bool isOurs = victim == QLatin1String("tovek-ocr");
        const QList<pid_t> all =
            childrenNamed(victim.toLatin1(), isOurs ? tovek->program().pid() : qint64(getpid()));
        return all.isEmpty() ? 0 : all.constLast();
    }
    bool strike(Fault fault)
    {
        const pid_t struck = pid();
        if (struck == 0)
            return victim == QLatin1String("tovek-ocr");
        stopped = fault == Fault::stopped ? struck : 0;
        if (fault == Fault::stopped) {
            stop(struck);
            return true;
        }
        kill(struck, SIGKILL);
        const bool isFramer = victim == QLatin1String("openbox");
        return waitUntil([&] {
                   return pid() != struck && !(isFramer && hasWindowManager(desktop.displayName()));
               })
            && (fault == Fault::killed || startVictim());
    }
    /// Not while it has the display server to itself, as compositing managers do for moments: then
    /// nobody else has a desktop, and nothing that we do or leave changes that.
    void stop(pid_t struck) const
    {
        while (true) {
            kill(struck, SIGSTOP);
            auto answer = std::async(std::launch::async,
                                     [this] { XConnection(desktop.displayName()).sync(); });
            if (answer.wait_for(std::chrono::seconds(1)) == std::future_status::ready)
                return;
            kill(struck, SIGCONT);
        }
    }
    bool recover(Fault fault)
    {
        if (stopped)
            kill(stopped, SIGCONT);
        return victim == holder || fault != Fault::killed || victim == QLatin1String("tovek-ocr")
            || startVictim();
    }
    /// What a state begins with: an empty clipboard, or one that a holder keeps.
    bool prepare()
    {
        if (victim == holder)
            return leaveAHolder();
        ClipboardReader(desktop.displayName()).clear();
        return true;
    }

    bool reach(State state)
    {
        if (state == State::idle)
            return true;
        if (!tovek->open(QLatin1String(RunningTovek::captureScreenshot), monitors()))
            return false;
        if (state == State::open)
            return true;
        tovek->hand().dragAndHold(corner, opposite);
        if (state == State::selecting)
            return true;
        tovek->hand().release();
        if (state == State::selected)
            return true;
        if (!tap(state == State::drawing ? "r" : "t"))
            return false;
        if (state == State::drawing) {
            tovek->hand().dragAndHold({200, 200}, {300, 250});
            return true;
        }
        tovek->hand().click({200, 200});
        return tap("a");
    }
    /// A capture that was open covers the screen.
    bool isUsable(State state)
    {
        return state == State::idle
            || takes(opening, [&] { return waitUntil([&] { return tovek->covers(monitors()); }); });
    }
    /// From there to an image on the clipboard.
    bool finish(State state)
    {
        if (state == State::idle && !opens())
            return false;
        if (state == State::idle || state == State::open)
            tovek->hand().drag(corner, opposite);
        else if (state == State::selecting || state == State::drawing)
            tovek->hand().release();
        else if (state == State::typing && !(tap("b") && tap("Escape")))
            return false;
        return ends("Return");
    }
    /// The overlays come, and hold the keyboard.
    bool opens()
    {
        return takes(opening, [&] {
            return tovek->open(QLatin1String(RunningTovek::captureScreenshot), monitors());
        });
    }
    /// They go, and the desktop is usable.
    bool ends(const char *chord)
    {
        return takes(ending, [&] { return tap(chord) && isClosed(); });
    }
    bool takes(qint64 &withoutFault, const std::function<bool()> &action)
    {
        QElapsedTimer timer;
        timer.start();
        if (!action())
            return false;
        const qint64 needed = timer.elapsed();
        longest = std::max(longest, needed);
        if (isMeasuring)
            withoutFault = std::max(withoutFault, needed);
        const qint64 limit = std::max(atOnceMs, mostTimes * withoutFault);
        if (needed >= limit)
            error = QStringLiteral("took %1 ms of %2").arg(needed).arg(limit);
        return needed < limit;
    }
    /// One capture with everything in order, to know the machine.
    bool measure()
    {
        isMeasuring = true;
        const bool isDone = opens() && (tovek->hand().drag(corner, opposite), ends("Return"));
        isMeasuring = false;
        longest = 0;
        return isDone && !pasted().isEmpty();
    }

    qint64 opening = 0, ending = 0;
    qint64 longest = 0;
    bool isMeasuring = false;
    QString victim;
    pid_t stopped = 0;
};

} // namespace

class TestEveryState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void livesWithoutAProgram_data()
    {
        QTest::addColumn<QString>("victim");
        QTest::addColumn<Fault>("fault");
        for (const char *victim :
             {"openbox", "picom", "dunst", "pulseaudio", "tovek-ocr", "tovek-clipboard"}) {
            const QString name = QLatin1String(victim);
            QTest::addRow("%s stopped", victim) << name << Fault::stopped;
            QTest::addRow("%s killed", victim) << name << Fault::killed;
            if (!name.startsWith(QLatin1String("tovek")))
                QTest::addRow("%s restarted", victim) << name << Fault::restarted;
        }
    }
    void livesWithoutAProgram()
    {
        QFETCH(QString, victim);
        QFETCH(Fault, fault);
        DesktopPlan plan;
        plan.hasCompositor = victim == QLatin1String("picom");
        SKIP_BECAUSE(TestDesktop::missing(plan));
        if (!victim.startsWith(QLatin1String("tovek"))
            && QStandardPaths::findExecutable(victim).isEmpty())
            QSKIP(qPrintable(victim + QStringLiteral(" is not installed")));
        VictimSession s(victim, plan);
        QVERIFY2(s.startDesktop(), qPrintable(s.error));
        QVERIFY2(s.tovek->start() && s.measure(), qPrintable(s.error));
        QVERIFY(s.pid() > 0 || s.startVictim() || victim == QLatin1String("tovek-ocr"));
        for (const State state : everyState) {
            QVERIFY(s.prepare());
            const auto which = [&] {
                return "state " + QByteArray::number(int(state)) + ": " + s.error.toUtf8();
            };
            QVERIFY2(s.reach(state), which().constData());
            QVERIFY2(s.strike(fault), which().constData());
            QVERIFY2(s.isUsable(state), which().constData());
            QVERIFY2(s.finish(state), which().constData());
            const QImage copied = QImage::fromData(s.pasted());
            QVERIFY2(copied.size() == QSize(200, 150), which().constData());
            // The next one, with a file, while it is still away.
            QVERIFY2(s.opens(), which().constData());
            s.select(corner, opposite);
            QVERIFY2(s.ends("Control_L+s"), which().constData());
            const QByteArray saved = s.saved();
            QVERIFY2(QImage::fromData(saved).size() == QSize(200, 150), which().constData());
            QVERIFY(
                QFile::remove(QDir(s.desktop.downloads()).filePath(s.savedNames().constFirst())));
            QVERIFY2(s.recover(fault), which().constData());
        }
        QVERIFY(s.tovek->program().isRunning());
        qInfo("at most %lld ms; with everything in order %lld ms to open, %lld ms to end",
              s.longest, s.opening, s.ending);
    }
};

QTEST_GUILESS_MAIN(TestEveryState)
#include "tst_EveryState.moc"
