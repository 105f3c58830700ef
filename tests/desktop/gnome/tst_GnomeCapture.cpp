// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on GNOME, where it sees the screen through the portal and lies over it on XWayland.

#include "support/GnomeDesktop.h"
#include "support/Pixels.h"
#include "support/Skip.h"
#include "support/Wait.h"

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr int escape = 1;
constexpr int enter = 28;
constexpr auto patience = 20s;

} // namespace

class TestGnomeCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(GnomeDesktop::missing());
        QVERIFY2(m_desktop.start(), qPrintable(m_desktop.error()));
        QVERIFY(m_desktop.run(QStringLiteral(TOVEK_TEXT_WINDOW),
                              {"0", "0", "500", "300", "DejaVu Sans", "20", "light", "Some words"},
                              {{"QT_QPA_PLATFORM", "wayland"}}));
        QVERIFY(waitUntil([this] { return isFocused(QStringLiteral("text_window")); }, patience));
        m_tovek = m_desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"), {"--background"});
        QVERIFY(m_tovek->waitForLine(QStringLiteral("Wayland: capturing over the desktop's portal"),
                                     patience));
    }

    void cleanup()
    {
        if (QTest::currentTestFailed())
            qWarning() << m_tovek->lines() << m_tovek->errorLines() << m_desktop.focusedTitle();
    }

    void asksForPermissionFirst()
    {
        QVERIFY(waitUntil([this] { return m_desktop.act(QStringLiteral("start-capture")); }));
        QVERIFY(waitUntil([this] { return isFocused(QStringLiteral("Tovek")); }, patience));
        const auto question = QStringLiteral("Main.modalCount > 0");
        const auto isAsked = [&] { return m_desktop.evaluate(question) == "true"; };
        QVERIFY(tapUntil(enter, isAsked)); // "Ask Me Now"
        m_desktop.tap(escape);
        QVERIFY(m_tovek->waitForLine(QStringLiteral("No permission for screenshots"), patience));
        // It says now how to be asked again.
        QVERIFY(waitUntil([this] { return isFocused(QStringLiteral("Tovek")); }, patience));
        QVERIFY(tapUntil(escape, [this] { return isFocused(QStringLiteral("text_window")); }));
        QVERIFY(m_desktop.unmanagedTitles().isEmpty());
    }

    void givesKeysAndFocusBackAfterEscape()
    {
        permit();
        for (int i = 0; i < 2; ++i) {
            QVERIFY(startCapture("start-capture"));
            m_desktop.tap(escape);
            QVERIFY(waitUntil([this] { return m_desktop.unmanagedTitles().isEmpty(); }, patience));
            QVERIFY(
                waitUntil([this] { return isFocused(QStringLiteral("text_window")); }, patience));
        }
        QCOMPARE(m_desktop.pictures(), QStringList());
    }

    void copiesExactPixelsOfEachMonitor_data()
    {
        QTest::addColumn<QRect>("selection");
        QTest::newRow("the window") << QRect(120, 150, 240, 160);
        QTest::newRow("the other monitor") << QRect(1900, 500, 300, 200);
    }
    void copiesExactPixelsOfEachMonitor()
    {
        QFETCH(QRect, selection);
        permit();
        const QImage before = m_desktop.look();
        QVERIFY(startCapture("capture-image"));
        m_desktop.moveTo(selection.topLeft());
        m_desktop.button(true);
        m_desktop.moveTo(selection.center());
        m_desktop.moveTo(selection.bottomRight() + QPoint(1, 1));
        m_desktop.button(false);
        QVERIFY(waitUntil([this] { return m_desktop.focusedTitle() != "Tovek"; }, patience));
        QImage pasted;
        QVERIFY(waitUntil(
            [&] {
                pasted = QImage::fromData(m_desktop.output(QStringLiteral("wl-paste"), {}), "PNG");
                return pasted.size() == selection.size();
            },
            patience));
        QCOMPARE(differentPixels(pasted, before.copy(selection)), 0);
        // Until the next one, the toast.
        QVERIFY(waitUntil([this] { return m_desktop.unmanagedTitles().isEmpty(); }, patience));
    }

    void leavesWhatWasCopiedWhenItQuits()
    {
        const QByteArray copied = m_desktop.output(QStringLiteral("wl-paste"), {});
        QVERIFY(!copied.isEmpty());
        QVERIFY(m_desktop.act(QStringLiteral("quit")));
        QVERIFY(waitUntil([&] { return !m_desktop.act("no-such-action"); }, patience));
        // The shell hears of the new owner a moment after it is one.
        QVERIFY(waitUntil(
            [&] { return m_desktop.output(QStringLiteral("wl-paste"), {}) == copied; }, patience));
    }

private:
    void permit()
    {
        for (const QString &name : {QString(), QStringLiteral("org.tovek.Tovek")})
            QVERIFY(m_desktop.permitScreenshots(name));
    }
    /// The shell gives an X window its keys some time after it says so.
    bool tapUntil(int key, const std::function<bool()> &condition) const
    {
        for (int i = 0; i < 4; ++i) {
            m_desktop.tap(key);
            if (waitUntil(condition, 5s))
                return true;
        }
        return false;
    }
    bool isFocused(const QString &title) const { return m_desktop.focusedTitle() == title; }
    bool startCapture(const char *action)
    {
        return m_desktop.act(QLatin1String(action))
            && waitUntil(
                   [this] {
                       return m_desktop.unmanagedTitles().size() == GnomeDesktop::monitors().size()
                           && isFocused(QStringLiteral("Tovek"));
                   },
                   patience);
    }

    GnomeDesktop m_desktop;
    Program *m_tovek = nullptr;
};

QTEST_GUILESS_MAIN(TestGnomeCapture)
#include "tst_GnomeCapture.moc"
