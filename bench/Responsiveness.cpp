// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Responsiveness.h"

#include "Measure.h"
#include "Pictures.h"
#include "Stage.h"
#include "support/Eye.h"

#include <algorithm>
#include <cstdio>
#include <poll.h>
#include <thread>
#include <utility>

namespace tovek::bench {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A mouse of 250 reports a second.
constexpr auto interval = 4ms;
/// The recogniser gives up sooner.
constexpr auto longestRecognition = 40s;
constexpr auto afterwards = 3s;
/// The words are looked for once in so many events, so that the looking costs little.
constexpr int eventsPerLook = 10;
/// About a second: those of a large page come in parts.
constexpr int looksAtRest = 25;
constexpr double budgetMs = 16;

/// Asks a window whether its program still answers, as a window manager does. The answer comes
/// from the program's main thread, after all events that were sent before.
class Questioner
{
public:
    Questioner(const QString &displayName, xcb_window_t window)
        : m_connection(displayName)
        , m_window(window)
        , m_protocols(m_connection.atom("WM_PROTOCOLS"))
        , m_ping(m_connection.atom("_NET_WM_PING"))
    {
        const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, m_connection.root(), XCB_CW_EVENT_MASK, &mask);
        m_connection.sync();
    }

    /// Milliseconds until the answer.
    double ask()
    {
        return millisecondsOf([this] {
            xcb_client_message_event_t question{};
            question.response_type = XCB_CLIENT_MESSAGE;
            question.format = 32;
            question.window = m_window;
            question.type = m_protocols;
            question.data.data32[0] = m_ping;
            question.data.data32[1] = ++m_serial;
            question.data.data32[2] = m_window;
            xcb_send_event(m_connection, false, m_window, XCB_EVENT_MASK_NO_EVENT,
                           reinterpret_cast<const char *>(&question));
            xcb_flush(m_connection);
            const auto end = Clock::now() + 10s;
            while (!isAnswered()) {
                pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
                if (Clock::now() > end || poll(&waiting, 1, 10000) < 0)
                    giveUp(QStringLiteral("the program does not answer"));
            }
        });
    }

private:
    bool isAnswered()
    {
        bool isAnswered = false;
        while (const XPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            isAnswered = isAnswered
                || ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE
                    && message->type == m_protocols && message->data.data32[1] == m_serial);
        }
        return isAnswered;
    }

    XConnection m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_protocols;
    xcb_atom_t m_ping;
    uint32_t m_serial = 0;
};

/// Times of single events, in milliseconds.
struct Times
{
    std::vector<double> waited; ///< from the event until the program had dealt with it
    std::vector<double> used; ///< of the processor, by the main thread
};

/// Moves the mouse over the selection, one event after the other.
class Mover
{
public:
    explicit Mover(Stage &stage)
        : m_stage(stage)
        , m_eye(stage.displayName())
        , m_pid(stage.pid(Subject::tovek))
        , m_questioner(stage.displayName(), overlay())
        , m_used(mainThreadNanoseconds(m_pid))
    {
        if (m_used == 0)
            giveUp(QStringLiteral("the system does not tell the time of a thread"));
    }

    /// Until the condition, which is asked now and then. False when it was not met in time.
    template <typename Condition>
    bool moveUntil(const Condition &condition, std::chrono::milliseconds longest, Times &times)
    {
        const auto end = Clock::now() + longest;
        for (auto next = Clock::now(); next < end; next = std::max(next + interval, Clock::now())) {
            std::this_thread::sleep_until(next);
            takeUsed(times);
            if (++m_events % eventsPerLook == 0 && condition())
                return true;
            const QSize size = m_stage.size();
            m_stage.scene().move({size.width() / 4 + m_events % (size.width() / 2),
                                  size.height() / 4 + m_events % (size.height() / 2)});
            times.waited.push_back(m_questioner.ask());
        }
        takeUsed(times);
        return false;
    }
    /// Recognised words are blue; the page is grey. Some may be left unread, so that all lines are
    /// looked at.
    bool seesWords() const { return bluePixels() * 100 > lookedAt().width() * lookedAt().height(); }
    /// No more of them have come for a while.
    bool seesAllWords()
    {
        const int before = std::exchange(m_bluePixels, bluePixels());
        m_looksSince = m_bluePixels == before ? m_looksSince + 1 : 0;
        return m_looksSince >= looksAtRest && seesWords();
    }

private:
    QRect lookedAt() const { return {60, 0, 40, m_stage.size().height()}; }
    int bluePixels() const
    {
        const QImage part = m_eye.look(lookedAt());
        int blue = 0;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x)
                blue += qBlue(part.pixel(x, y)) - qRed(part.pixel(x, y)) > 12;
        }
        return blue;
    }
    xcb_window_t overlay() const
    {
        const QList<SeenWindow> overlays = m_eye.overlays(QStringLiteral("tovek"));
        if (overlays.isEmpty())
            giveUp(QStringLiteral("there is no overlay to ask"));
        return overlays.first().id;
    }
    void takeUsed(Times &times)
    {
        const qint64 used = mainThreadNanoseconds(m_pid);
        times.used.push_back(double(used - m_used) / 1e6);
        m_used = used;
    }

    Stage &m_stage;
    Eye m_eye;
    pid_t m_pid;
    Questioner m_questioner;
    qint64 m_used;
    int m_events = 0;
    int m_bluePixels = 0;
    int m_looksSince = 0;
};

double quantile(std::vector<double> values, double part)
{
    const auto at = values.begin() + std::ptrdiff_t(part * double(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

void printRow(QSize size, const char *when, double seconds, const Times &times)
{
    const auto over = std::count_if(times.waited.begin(), times.waited.end(),
                                    [](double time) { return time > budgetMs; });
    std::printf("| %dx%d %s | %.1f | %zu | %.2f | %.2f | %.2f | %d | %.2f | %.2f | %.0f |\n",
                size.width(), size.height(), when, seconds, times.waited.size(),
                quantile(times.waited, 0.5), quantile(times.waited, 0.99),
                quantile(times.waited, 1), int(over), quantile(times.used, 0.99),
                quantile(times.used, 1), budgetMs);
    std::fflush(stdout);
}

void measure(QSize size)
{
    Stage stage(pageOfText(size), {{QStringLiteral("highlightText"), true}});
    stage.start(Subject::tovek);
    waitFor(1s);
    stage.open(Subject::tovek);
    waitFor(1s); // the engines are loaded
    stage.press(0);
    waitFor(20ms);
    stage.drag(0, 1, 15, 4ms);
    waitFor(100ms);
    Mover mover(stage);
    if (mover.seesWords())
        giveUp(QStringLiteral("words are marked before they can have been recognised"));
    Times during, after;
    stage.release();
    const auto begin = Clock::now();
    if (!mover.moveUntil([&] { return mover.seesAllWords(); }, longestRecognition, during))
        giveUp(QStringLiteral("no words were recognised"));
    const std::chrono::duration<double> time = Clock::now() - begin;
    printRow(size, "recognising", time.count(), during);
    mover.moveUntil([] { return false; }, afterwards, after);
    printRow(size, "afterwards", std::chrono::duration<double>(afterwards).count(), after);
    stage.close();
}

} // namespace

void printResponsiveness(const std::vector<QSize> &screens)
{
    std::printf(
        "\n## Motion events while a page of text is recognised (ms)\n\n"
        "| screen | seconds | events | answered: median | 99 of 100 | longest | over budget "
        "| main thread's processor time: 99 of 100 | most | budget |\n"
        "|---|---|---|---|---|---|---|---|---|---|\n");
    for (const QSize screen : screens)
        measure(screen);
}

} // namespace tovek::bench
