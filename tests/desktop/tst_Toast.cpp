// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The short message that confirms a result, as a person sees it, and sees through it.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr int margin = 40; // points of the panel around the toast
constexpr int shortest = 40; // points, a toast's height
const QString copied = QStringLiteral("Image copied to clipboard");

std::optional<SeenWindow> toastIn(const Session &session)
{
    for (const SeenWindow &window : session.tovek->eye().windows()) {
        if (window.isUnmanaged && !window.title.isEmpty()
            && window.windowClass == QStringLiteral("tovek")
            && !session.monitors().contains(window.native))
            return window;
    }
    return std::nullopt;
}

bool shows(const Session &session, const QString &message)
{
    const auto toast = toastIn(session);
    return toast && toast->title == message;
}

/// A copy's toast once the overlays have gone and it has come to rest; nothing when it did not.
std::optional<SeenWindow> copyAndLook(Session &session, QPoint from, QPoint to)
{
    if (!session.copy(from, to) || !waitUntil([&] { return shows(session, copied); }))
        return std::nullopt;
    const auto toast = toastIn(session);
    if (!toast || session.tovek->eye().lookWhenStill(toast->native).isNull())
        return std::nullopt;
    return toastIn(session);
}

struct SeenToast
{
    QRect native;
    QImage screen; ///< all of it, while the toast was there
};

/// As `copyAndLook`, anew where the toast had gone before it was looked at.
std::optional<SeenToast> copyAndSee(Session &session, QPoint from, QPoint to)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto toast = copyAndLook(session, from, to);
        const QImage screen = toast ? session.tovek->eye().look() : QImage();
        if (toast && shows(session, copied))
            return SeenToast{toast->native, screen};
        if (!session.tovek->waitUntilGone())
            break;
    }
    return std::nullopt;
}

int brightness(const QImage &image)
{
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qGray(image.pixel(x, y));
    }
    return int(sum / std::max(1, image.width() * image.height()));
}

/// How much neighbours differ on average: the picture has grain, which no blur leaves over.
int grain(const QImage &image)
{
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 1; x < image.width(); ++x)
            sum += std::abs(qGray(image.pixel(x, y)) - qGray(image.pixel(x - 1, y)));
    }
    return int(sum / std::max(1, (image.width() - 1) * image.height()));
}

/// The smallest rectangle that holds all dark pixels.
QRect darkPart(const QImage &image)
{
    QRect dark;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 90)
                dark |= QRect(x, y, 1, 1);
        }
    }
    return dark;
}

QStringList focusEvents(const Session &session)
{
    return session.picture->lines().filter(QStringLiteral("focus"));
}

} // namespace

class TestToast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        DesktopPlan plan;
        plan.hasCompositor = true;
        plan.monitors = {QRect(0, 0, 10, 10)};
        SKIP_BECAUSE(TestDesktop::missing(plan));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void standsAtOneFifthOfTheHeight_data() { desktops(); }
    void standsAtOneFifthOfTheHeight()
    {
        QFETCH(double, scale);
        QFETCH(bool, isComposited);
        Session session(plan(isComposited), scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        const QImage before = session.tovek->eye().lookWhenStill();
        const auto toast = copyAndSee(session, {150, 150}, {301, 277});
        QVERIFY(toast);
        const QRect panel = toast->native;
        const QRect content = panel.marginsRemoved(QMargins() + qRound(margin * scale));
        QVERIFY(std::abs(panel.center().x() - 640) <= 1);
        QVERIFY(std::abs(content.y() + content.height() - 640) <= 1);
        QVERIFY(std::abs(content.height() - shortest * scale) <= 1);

        // The message is dark on light and lies within its padding, in the middle of the height.
        const QImage &seen = toast->screen;
        const QRect text = darkPart(seen.copy(content));
        QVERIFY(text.left() >= qFloor(16 * scale) && text.top() >= qFloor(10 * scale));
        QVERIFY(content.width() - text.right() >= qFloor(16 * scale));
        QVERIFY(text.width() > content.width() - 40 * scale);
        QVERIFY(std::abs(text.center().y() - content.height() / 2) <= qCeil(2 * scale));

        // The edge itself is there, not only a window: frosted glass above it, a shadow below it.
        const int strip = qFloor(4 * scale);
        const QRect above(560, content.y() + content.height() - 2 * strip, 160, strip);
        const QRect below = above.translated(0, 3 * strip);
        QVERIFY(grain(before.copy(above)) > 4);
        QCOMPARE(grain(seen.copy(above)), 0);
        QVERIFY(brightness(seen.copy(above)) > brightness(before.copy(above)));
        QVERIFY(brightness(seen.copy(below)) < brightness(before.copy(below)));
        // Nothing is left of it.
        QVERIFY(waitUntil([&] { return !toastIn(session); }));
        QVERIFY(
            waitUntil([&] { return differentPixels(before, session.tovek->eye().look()) == 0; }));
    }

    void standsOnTheScreenOfTheSelection()
    {
        DesktopPlan two;
        two.size = {1824, 900};
        two.monitors = {{800, 132, 1024, 768}, {0, 0, 800, 600}};
        Session session(two);
        QVERIFY2(session.start(), qPrintable(session.error));
        for (const QRect &monitor : two.monitors) {
            const QPoint from = monitor.topLeft() + QPoint(100, 100);
            const auto toast = copyAndSee(session, from, from + QPoint(150, 120));
            QVERIFY(toast);
            QVERIFY(std::abs(toast->native.center().x() - monitor.center().x()) <= 1);
            const int bottom = toast->native.y() + toast->native.height() - margin;
            QVERIFY(std::abs(bottom - (monitor.y() + monitor.height() * 4 / 5)) <= 1);
        }
    }

    void isReplacedByTheNext()
    {
        Session session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        // The save fails after it has been confirmed.
        QVERIFY(session.tovek->start(
            1, {{QStringLiteral("saveFolderPath"), QStringLiteral("/proc/self")}}));
        QVERIFY(session.open());
        session.select({150, 150}, {301, 277});
        QVERIFY(session.tap("Control_L+s"));
        const auto toasts = [&] {
            const QList<SeenWindow> windows = session.tovek->eye().windows();
            return std::count_if(windows.begin(), windows.end(), [](const SeenWindow &window) {
                return window.isUnmanaged && !window.title.isEmpty();
            });
        };
        qsizetype most = 0;
        QVERIFY(waitUntil([&] {
            most = std::max<qsizetype>(most, toasts());
            return shows(session, QStringLiteral("Failed to save image"));
        }));
        QVERIFY(session.isClosed());
        QCOMPARE(toasts(), 1);
        QVERIFY2(most <= 2, "more than an overlay and a toast");
    }

    void staysItsTimeWhateverWasThereBefore()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const auto isThere = [&] { return toastIn(session).has_value(); };
        for (int pass = 0; pass < 2; ++pass) {
            // The second time, the timers of the first toast are still under way.
            QVERIFY(session.copy({150, 150}, {301, 277}));
            QVERIFY(waitUntil(isThere));
            QElapsedTimer timer;
            timer.start();
            if (pass == 0) {
                QVERIFY(waitUntil([&] { return timer.elapsed() > 900; }));
                continue;
            }
            QVERIFY(waitUntil([&] { return !isThere(); }));
            QVERIFY2(timer.elapsed() > 1600, qPrintable(QString::number(timer.elapsed())));
        }
    }

    void leavesTheFocusAlone()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        session.tovek->hand().click({300, 300});
        QVERIFY(session.picture->waitForLine(QStringLiteral("focus in")));
        const auto eventsOf = [&](const char *ending) {
            const qsizetype first = focusEvents(session).size();
            if (!session.open())
                return QStringList(QStringLiteral("no overlay"));
            session.select({150, 150}, {301, 277});
            const bool isOver = session.tap(ending) && session.isClosed()
                && waitUntil([&] { return !toastIn(session); });
            // A key that arrives tells that all earlier events have arrived as well.
            const qsizetype lines = session.picture->lines().size();
            return isOver && session.tap("y")
                    && session.picture->waitForLine(QStringLiteral("key up 29"), 10s, lines)
                ? focusEvents(session).mid(first)
                : QStringList(QStringLiteral("not over"));
        };
        const xcb_window_t active = session.tovek->eye().activeWindow();
        const QStringList without = eventsOf("Escape");
        QCOMPARE(eventsOf("Return"), without);
        QCOMPARE(session.tovek->eye().activeWindow(), active);
    }

    void letsClicksThrough_data() { desktops(); }
    void letsClicksThrough()
    {
        QFETCH(double, scale);
        QFETCH(bool, isComposited);
        Session session(plan(isComposited), scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        bool wasInTime = false;
        for (int attempt = 0; attempt < 3 && !wasInTime; ++attempt) {
            const auto toast = copyAndLook(session, {150, 150}, {301, 277});
            if (!toast)
                continue; // it went before it could be looked at
            const qsizetype lines = session.picture->lines().size();
            session.tovek->hand().click(toast->native.center());
            QVERIFY(session.picture->waitForLine(QStringLiteral("button down 1"), 10s, lines));
            wasInTime = shows(session, copied);
        }
        QVERIFY(wasInTime);
    }

    void isInNoCapture_data() { desktops(); }
    void isInNoCapture()
    {
        QFETCH(double, scale);
        QFETCH(bool, isComposited);
        Session session(plan(isComposited), scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        const Eye &eye = session.tovek->eye();
        bool wasInTime = false;
        for (int attempt = 0; attempt < 3 && !wasInTime; ++attempt) {
            session.tovek->hand().move({600, 100});
            QVERIFY(session.tovek->waitUntilGone());
            const QImage before = eye.lookWhenStill();
            const auto toast = copyAndLook(session, {150, 150}, {301, 277});
            if (!toast)
                continue; // it went before it could be looked at
            QVERIFY(differentPixels(before.copy(toast->native), eye.look(toast->native)) > 1000);
            wasInTime = shows(session, copied);
            QVERIFY(session.tovek->open(QLatin1String(RunningTovek::captureScreenshot),
                                        session.monitors()));
            QVERIFY(!toastIn(session));
            QCOMPARE(differentPixels(before, eye.look()), 0);
            session.before = before;
            const QRect part = toast->native;
            session.select(part.topLeft(), part.bottomRight());
            QVERIFY(session.tap("Return"));
            QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                     session.expected(part.topLeft(), part.bottomRight())),
                     0);
        }
        QVERIFY(wasInTime);
    }

private:
    static DesktopPlan plan(bool isComposited)
    {
        DesktopPlan plan;
        plan.hasCompositor = isComposited;
        return plan;
    }
    static void desktops()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<bool>("isComposited");
        QTest::newRow("plain") << 1.0 << false;
        QTest::newRow("plain, scale 1.5") << 1.5 << false;
        QTest::newRow("composited") << 1.0 << true;
        QTest::newRow("composited, scale 2") << 2.0 << true;
    }
};

QTEST_GUILESS_MAIN(TestToast)
#include "tst_Toast.moc"
