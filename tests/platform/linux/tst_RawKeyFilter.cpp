// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/RawKeyFilter.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QTest>
#include <QWindow>

using namespace tovek;

namespace {

constexpr quint32 scanCodeOfC = 54;

/// Counts the keys that reach it.
class Window : public QWindow
{
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
    void keyReleaseEvent(QKeyEvent *) override { ++keys; }
};

} // namespace

class TestRawKeyFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_log.clear();
    }

    void offersKeysByTheirPlace()
    {
        Window window;
        RawKeyFilter filter(logging(true));
        filter.setWatching(true);
        send(window, QEvent::KeyPress, Qt::ControlModifier | Qt::MetaModifier);
        send(window, QEvent::KeyRelease, Qt::NoModifier); // let go in the other order
        QCOMPARE(m_log, QStringList({"down 8 1100", "up 8 1100"}));
        QCOMPARE(window.keys, 0);
    }

    void passesOnWhatNobodyTakes()
    {
        Window window;
        RawKeyFilter filter(logging(false));
        filter.setWatching(true);
        send(window, QEvent::KeyPress, Qt::AltModifier | Qt::ShiftModifier);
        send(window, QEvent::KeyRelease, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(m_log, QStringList({"down 8 a00", "up 8 a00"}));
        QCOMPARE(window.keys, 2);
    }

    void tellsAHeldKeyOnce()
    {
        Window window;
        RawKeyFilter filter(logging(true));
        filter.setWatching(true);
        send(window, QEvent::KeyPress, Qt::NoModifier);
        send(window, QEvent::KeyRelease, Qt::NoModifier, true);
        send(window, QEvent::KeyPress, Qt::NoModifier, true);
        QCOMPARE(m_log, QStringList{"down 8 0"});
        QCOMPARE(window.keys, 0);
    }

    void mayBeEndedByTheCallback()
    {
        Window window;
        RawKeyFilter filter([&](KeyCombo, bool) {
            filter.setWatching(false);
            return true;
        });
        filter.setWatching(true);
        send(window, QEvent::KeyPress, Qt::NoModifier);
        send(window, QEvent::KeyPress, Qt::NoModifier);
        QCOMPARE(window.keys, 1);
    }

private:
    RawKeyFilter::Callback logging(bool isTaken)
    {
        return [this, isTaken](KeyCombo combo, bool isDown) {
            m_log.append(QStringLiteral("%1 %2 %3")
                             .arg(isDown ? "down" : "up")
                             .arg(combo.keyCode)
                             .arg(combo.modifiers, 0, 16));
            return isTaken;
        };
    }
    static void send(QWindow &window, QEvent::Type type, Qt::KeyboardModifiers modifiers,
                     bool isRepeated = false)
    {
        QKeyEvent event(type, Qt::Key_C, modifiers, scanCodeOfC, 0, 0, QString(), isRepeated);
        QCoreApplication::sendEvent(&window, &event);
    }

    QStringList m_log;
};

QTEST_MAIN(TestRawKeyFilter)
#include "tst_RawKeyFilter.moc"
