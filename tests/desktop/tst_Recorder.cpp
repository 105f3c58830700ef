// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/SettingsHand.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

const char capture[] = "captureScreenshot";
const char image[] = "captureImage";

} // namespace

/// Shortcuts recorded with real keys in the real window.
class TestRecorder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_hand = std::make_unique<SettingsHand>();
        QVERIFY(m_hand->start());
        QVERIFY(m_hand->openShortcuts());
    }
    void cleanup() { m_hand.reset(); }

    void recordsReplacesAndClears()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->endsRecording(0, "Control_L+Shift_L+c"));
        QVERIFY(m_hand->comesToStore(capture, "8 4608"));
        QVERIFY(waitUntil([&] { return hand().isTaken("Control_L+Shift_L+c"); }));

        QVERIFY(m_hand->startsRecording(0));
        // What it has now does not act while it records.
        QVERIFY(m_hand->endsRecording(0, "Super_L+Shift_L+d"));
        QVERIFY(m_hand->comesToStore(capture, "2 768"));
        QVERIFY(waitUntil([&] { return hand().isTaken("Super_L+Shift_L+d"); }));
        QVERIFY(waitUntil([&] { return !hand().isTaken("Control_L+Shift_L+c"); }));
        QVERIFY(hand().tap("Super_L+Shift_L+d"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").size() == 1; }));
        QVERIFY(!m_hand->eye->lookWhenStill().isNull());
        QVERIFY(hand().tap("Escape"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").isEmpty(); }));

        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(hand().tap("BackSpace"));
        QVERIFY(m_hand->comesToStore(capture, ""));
        QVERIFY(m_hand->isRecording(0));
        QVERIFY(waitUntil([&] { return !hand().isTaken("Super_L+Shift_L+d"); }));
        QVERIFY(m_hand->endsRecording(0, "F5"));
        QVERIFY(m_hand->comesToStore(capture, "96 0"));
    }

    void capturesNothingByTheKeysThatItRecorded_data()
    {
        QTest::addColumn<bool>("isRecordedAgain");
        QTest::newRow("held past the repeat delay") << false;
        QTest::newRow("the ones that it has already") << true;
    }
    void capturesNothingByTheKeysThatItRecorded()
    {
        QFETCH(bool, isRecordedAgain);
        for (int round = 0; round < (isRecordedAgain ? 2 : 1); ++round) {
            QVERIFY(m_hand->startsRecording(0));
            QVERIFY(hand().hold("Control_L+Alt_L+k"));
            QVERIFY(waitUntil([&] { return !m_hand->isRecording(0); }));
            QVERIFY(m_hand->comesToStore(capture, "40 6144"));
            QTest::qWait(1000); // repeats from 660 ms on
            QVERIFY(hand().letGo("Control_L+Alt_L+k"));
            QVERIFY(!waitUntil([&] { return !m_hand->eye->overlays("tovek").isEmpty(); }, 700ms));
        }
        QVERIFY(hand().tap("Control_L+Alt_L+k"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").size() == 1; }));
        QVERIFY(!m_hand->eye->lookWhenStill().isNull());
        QVERIFY(hand().tap("Escape"));
    }

    void clearsByItsButton()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->endsRecording(0, "F5"));
        QVERIFY(m_hand->comesToStore(capture, "96 0"));
        const QRect field = m_hand->field(0);
        hand().click(QPoint(field.right() - 12, field.center().y()));
        QVERIFY(m_hand->comesToStore(capture, ""));
        QVERIFY(waitUntil([&] { return !hand().isTaken("F5"); }));
    }

    void keepsWhatItHasOnEscape()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->endsRecording(0, "F5"));
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->endsRecording(0, "Escape"));
        QCOMPARE(m_hand->shortcut(capture), QStringLiteral("96 0"));
        QVERIFY(m_hand->isOpen("Shortcuts"));
    }

    void goesToTheNextFieldWithTab()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->endsRecording(0, "Tab"));
        QVERIFY(waitUntil([&] { return m_hand->isRecording(1); }));
        QVERIFY(m_hand->endsRecording(1, "Control_L+Escape"));
        QVERIFY(m_hand->comesToStore(image, "53 4096"));
        QCOMPARE(m_hand->shortcut(capture), QString());
    }

    void takesNoLetterWithShiftAlone()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(hand().tap("Shift_L+a"));
        QVERIFY(hand().tap("b"));
        // The keys come one after another: when this one has acted, those have been refused.
        QVERIFY(m_hand->endsRecording(0, "Shift_L+F6"));
        QVERIFY(m_hand->comesToStore(capture, "97 512"));
    }

    void refusesWhatAMenuItemAnswersTo()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(hand().tap("Control_L+q"));
        QVERIFY(m_hand->isAlertOpen());
        QVERIFY(hand().tap("Return"));
        QVERIFY(m_hand->isBack());
        QVERIFY(waitUntil([&] { return m_hand->isRecording(0); }));
        QCOMPARE(m_hand->shortcut(capture), QString());
        QVERIFY(m_hand->program->isRunning());
        QVERIFY(m_hand->endsRecording(0, "F5"));
        QVERIFY(m_hand->comesToStore(capture, "96 0"));
    }

    void asksAboutWhatTheWindowManagerHolds()
    {
        QVERIFY(hand().isTaken("Alt_L+F4"));
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(hand().tap("Alt_L+F4"));
        QVERIFY(m_hand->isAlertOpen());
        QVERIFY(hand().tap("Return"));
        QVERIFY(m_hand->isBack());
        QVERIFY(waitUntil([&] { return m_hand->isRecording(0); }));
        QCOMPARE(m_hand->shortcut(capture), QString());

        QVERIFY(hand().tap("Alt_L+F4"));
        QVERIFY(m_hand->isAlertOpen());
        QVERIFY(hand().tap("Tab"));
        QVERIFY(hand().tap("space"));
        QVERIFY(m_hand->isBack());
        QVERIFY(m_hand->comesToStore(capture, "118 2048"));
        QVERIFY(!m_hand->isRecording(0));
    }

    void endsWithAClickFourPointsOutside()
    {
        const QRect field = m_hand->field(1);
        QVERIFY(m_hand->startsRecording(1));
        for (const QPoint inside : {field.center(), QPoint(field.left() - 2, field.center().y()),
                                    QPoint(field.center().x(), field.bottom() + 2)}) {
            hand().click(inside);
            // Were the click not over yet, the key would find the field still recording as well.
            QVERIFY(hand().tap("b"));
            QVERIFY(!waitUntil([&] { return !m_hand->isRecording(1); }, 300ms));
        }
        hand().click(QPoint(field.left() - 4, field.center().y()));
        QVERIFY(waitUntil([&] { return !m_hand->isRecording(1); }));
        QVERIFY(m_hand->startsRecording(1));
        hand().click(QPoint(field.center().x(), field.bottom() + 5));
        QVERIFY(waitUntil([&] { return !m_hand->isRecording(1); }));
        QCOMPARE(m_hand->shortcut(image), QString());
    }

    void letsACaptureHaveTheKeyboard()
    {
        QVERIFY(m_hand->startsRecording(0));
        QVERIFY(m_hand->activateAction("start-capture"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").size() == 1; }));
        QVERIFY(!m_hand->eye->lookWhenStill().isNull());
        QVERIFY(hand().tap("Escape"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").isEmpty(); }));
        QVERIFY(m_hand->isOpen("Shortcuts"));
        QCOMPARE(m_hand->shortcut(capture), QString());
    }

    void offersPrint()
    {
        hand().click(m_hand->corner() + QPoint(243, 105));
        // The window manager's usual settings give that key to another program.
        if (hand().isTaken("Print")) {
            QVERIFY(m_hand->isAlertOpen());
            QVERIFY(hand().tap("Tab"));
            QVERIFY(hand().tap("space"));
            QVERIFY(m_hand->isBack());
        }
        QVERIFY(m_hand->comesToStore(capture, "105 0"));
    }

private:
    Hand &hand() const { return *m_hand->hand; }

    std::unique_ptr<SettingsHand> m_hand;
};

QTEST_GUILESS_MAIN(TestRecorder)
#include "tst_Recorder.moc"
