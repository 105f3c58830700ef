// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The programs around this one stop, die, or make way for a successor, in every state of a capture.

#include "desktop/Session.h"
#include "faults/Processes.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTest>

#include <csignal>

using namespace tovek;

namespace {

enum class Fault { stopped, killed, restarted };
enum class State { idle, open, selecting, selected, drawing, typing };

constexpr State everyState[]{State::idle,     State::open,    State::selecting,
                             State::selected, State::drawing, State::typing};
constexpr QPoint corner(150, 150), opposite(350, 300);
/// What a person takes for at once, times what a busy machine makes of it.
constexpr int atOnceMs = 4000;

struct VictimSession : Session
{
    VictimSession(QString program, DesktopPlan desktopPlan)
        : Session(std::move(desktopPlan))
        , victim(std::move(program))
    {
    }

    bool startVictim()
    {
        static const std::map<QString, QStringList> options{
            {"picom", {"--config", "/dev/null", "--backend", "xrender", "--no-vsync", "--shadow"}},
            {"pulseaudio",
             {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
              "module-null-sink", "-L", "module-native-protocol-unix"}}};
        const auto found = options.find(victim);
        return desktop.run(victim, found == options.end() ? QStringList() : found->second)
            && waitUntil([&] { return pid() > 0; });
    }
    /// 0 where it does not run, which is a recogniser's right.
    pid_t pid() const
    {
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
        kill(struck, fault == Fault::stopped ? SIGSTOP : SIGKILL);
        return fault == Fault::stopped
            || (waitUntil([&] { return pid() != struck; })
                && (fault == Fault::killed || startVictim()));
    }
    bool recover(Fault fault)
    {
        if (stopped)
            kill(stopped, SIGCONT);
        return fault != Fault::killed || victim == QLatin1String("tovek-ocr") || startVictim();
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
    /// From there to an image on the clipboard.
    bool finish(State state)
    {
        if (state == State::idle
            && !tovek->open(QLatin1String(RunningTovek::captureScreenshot), monitors()))
            return false;
        if (state == State::idle || state == State::open)
            tovek->hand().drag(corner, opposite);
        else if (state == State::selecting || state == State::drawing)
            tovek->hand().release();
        else if (state == State::typing && !(tap("b") && tap("Escape")))
            return false;
        QElapsedTimer timer;
        timer.start();
        return tap("Return") && isClosed() && timer.elapsed() < atOnceMs;
    }

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
        for (const char *victim : {"openbox", "picom", "dunst", "pulseaudio", "tovek-ocr"}) {
            const QString name = QLatin1String(victim);
            QTest::addRow("%s stopped", victim) << name << Fault::stopped;
            QTest::addRow("%s killed", victim) << name << Fault::killed;
            if (name != QLatin1String("tovek-ocr"))
                QTest::addRow("%s restarted", victim) << name << Fault::restarted;
        }
    }
    void livesWithoutAProgram()
    {
        QFETCH(QString, victim);
        QFETCH(Fault, fault);
        DesktopPlan plan;
        plan.hasCompositor = victim == QLatin1String("picom");
        skipBecause(TestDesktop::missing(plan));
        if (!victim.startsWith(QLatin1String("tovek"))
            && QStandardPaths::findExecutable(victim).isEmpty())
            QSKIP(qPrintable(victim + QStringLiteral(" is not installed")));
        VictimSession s(victim, plan);
        QVERIFY2(s.startDesktop(), qPrintable(s.error));
        const bool isThere = s.tovek->start() && (s.pid() > 0 || s.startVictim());
        QVERIFY(isThere || victim == QLatin1String("tovek-ocr"));
        for (const State state : everyState) {
            const QByteArray which = "state " + QByteArray::number(int(state));
            ClipboardReader(s.desktop.displayName()).clear();
            QVERIFY2(s.reach(state), which.constData());
            QVERIFY2(s.strike(fault), which.constData());
            QVERIFY2(s.finish(state), which.constData());
            const QImage copied = QImage::fromData(s.pasted());
            QVERIFY2(copied.size() == QSize(200, 150), which.constData());
            // The next one, with a file, while it is still away.
            QVERIFY2(s.reach(State::selected), which.constData());
            QVERIFY2(s.tap("Control_L+s") && s.isClosed(), which.constData());
            const QByteArray saved = s.saved();
            QVERIFY2(QImage::fromData(saved).size() == QSize(200, 150), which.constData());
            QVERIFY(
                QFile::remove(QDir(s.desktop.downloads()).filePath(s.savedNames().constFirst())));
            QVERIFY2(s.recover(fault), which.constData());
        }
        QVERIFY(s.tovek->program().isRunning());
    }
};

QTEST_GUILESS_MAIN(TestEveryState)
#include "tst_EveryState.moc"
