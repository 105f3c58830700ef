// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClock.h"
#include "fakes/FakeScreens.h"
#include "fakes/FakeToastShell.h"
#include "feedback/Toast.h"

#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

/// Toasts on fakes: what is on which screen at which time.
class TestToast : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup() { screens.screens = {FakeScreens::screen(1, {0, 0, 1000, 500})}; }
        FakeClock clock;
        FakeScreens screens;
        FakeToastShell shell;
        QStringList symbols;
        std::function<void(const QColor &)> onSymbol;
        Toast toast{clock, screens, shell,
                    [this](const QString &name, const QColor &color, double, double scale) {
                        symbols << name;
                        if (onSymbol)
                            onSymbol(color);
                        QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
                        image.fill(Qt::red);
                        image.setDevicePixelRatio(scale);
                        return image;
                    }};
        FakeToastWindow &window() { return *shell.windows.back(); }
        void show(const QString &message = QStringLiteral("Done"))
        {
            toast.show(message, QStringLiteral("doc.text"));
        }
    };

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsTheSmallestToastForOneCharacter()
    {
        Setup s;
        s.show(QStringLiteral("x"));
        QCOMPARE(s.window().native, QRect(410, 320, 180, 120));
        QCOMPARE(s.window().title, QStringLiteral("x"));
        QCOMPARE(s.symbols, QStringList{QStringLiteral("doc.text")});
    }

    void liesOnTheScreenAskedFor_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<QRect>("native");
        QTest::newRow("scale 1") << 1.0 << QRect(1000 + 310, 480, 180, 120);
        QTest::newRow("scale 2") << 2.0 << QRect(1000 + 620, 960, 360, 240);
        QTest::newRow("scale 1.5") << 1.5 << QRect(1000 + 465, 720, 270, 180);
    }
    void liesOnTheScreenAskedFor()
    {
        QFETCH(double, scale);
        Setup s;
        const Screen second = FakeScreens::screen(2, {1000, 200, 800, 700}, scale);
        s.screens.screens.push_back(second);
        s.toast.show(QStringLiteral("x"), QStringLiteral("doc.text"), second);
        QTEST(s.window().native, "native");
        QCOMPARE(s.window().shown.size(), s.window().native.size());
    }

    void isDarkOnADarkDesktop_data()
    {
        QTest::addColumn<bool>("isDesktopDark");
        QTest::addColumn<QColor>("window");
        QTest::addColumn<bool>("isDark");
        const QColor light(239, 239, 239);
        const QColor dark(42, 42, 42);
        QTest::newRow("light") << false << light << false;
        QTest::newRow("the palette knows") << false << dark << true;
        QTest::newRow("the desktop tells") << true << light << true;
        QTest::newRow("both say so") << true << dark << true;
    }
    void isDarkOnADarkDesktop()
    {
        QFETCH(bool, isDesktopDark);
        QFETCH(QColor, window);
        const QPalette before = QGuiApplication::palette();
        QPalette palette = before;
        palette.setColor(QPalette::Window, window);
        QGuiApplication::setPalette(palette);
        Setup s;
        s.toast.isDesktopDark = isDesktopDark;
        QColor symbol;
        s.onSymbol = [&](const QColor &color) { symbol = color; };
        s.show();
        QGuiApplication::setPalette(before);
        QTEST(symbol.lightness() > 128, "isDark");
    }

    void needsNoScreen()
    {
        Setup s;
        s.screens.screens.clear();
        s.show(QStringLiteral("x"));
        QCOMPARE(s.window().native, QRect(0, 0, 180, 120));
    }

    void springsUpShrinksAndGoes()
    {
        Setup s;
        s.show();
        QVERIFY(s.window().isVisible);
        const QImage hidden = s.window().shown;
        QCOMPARE(hidden.pixelColor(hidden.rect().center()).alpha(), 0);
        s.clock.advance(100ms);
        QVERIFY(s.window().shown != hidden);
        s.clock.advance(600ms); // 0.7 s: at rest
        const QImage atRest = s.window().shown;
        QCOMPARE(atRest.pixelColor(atRest.rect().center()).alpha(), 255);
        const int frames = s.window().frames;
        s.clock.advance(799ms); // 1.499 s
        QCOMPARE(s.window().frames, frames);
        s.clock.advance(100ms);
        QVERIFY(s.window().shown != atRest);
        s.clock.advance(200ms); // 1.799 s
        QCOMPARE(s.shell.windows.size(), 1U);
        s.clock.advance(1ms);
        QVERIFY(s.shell.windows.empty());
        QVERIFY(!s.toast.isShown());
    }

    void staysUntilALongMessageIsRead_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("a confirmation") << 24 << 1500;
        QTest::newRow("the name of a file") << 48 << 1500;
        QTest::newRow("advice") << 73 << 3250;
        QTest::newRow("the text of an error") << 400 << 6000;
    }
    void staysUntilALongMessageIsRead()
    {
        QFETCH(int, length);
        QFETCH(int, milliseconds);
        Setup s;
        s.show(QString(length, QLatin1Char('x')));
        s.clock.advance(std::chrono::milliseconds(milliseconds + 299));
        QVERIFY(s.toast.isShown());
        s.clock.advance(1ms);
        QVERIFY(!s.toast.isShown());
    }

    void leavesNothingRunning()
    {
        Setup s;
        s.show();
        s.clock.advance(5s);
        QCOMPARE(s.clock.pendingCalls(), 0U);
    }

    void replacesTheOneBeforeAtOnce()
    {
        Setup s;
        s.show(QStringLiteral("first"));
        s.clock.advance(1400ms);
        s.show(QStringLiteral("second"));
        QCOMPARE(s.shell.windows.size(), 1U);
        QCOMPARE(s.window().title, QStringLiteral("second"));
        s.clock.advance(1700ms); // the first one's times have long passed
        QCOMPARE(s.shell.windows.size(), 1U);
        s.clock.advance(100ms);
        QVERIFY(s.shell.windows.empty());
    }

    void saysMoreWithoutMoving()
    {
        Setup s;
        s.show(QStringLiteral("first"));
        s.clock.advance(1000ms); // at rest
        QVERIFY(!s.toast.extend(QStringLiteral("another"), QStringLiteral("first and more")));
        const QRect before = s.window().native;
        const QString longer = QStringLiteral("first and more") + QString(59, QLatin1Char('x'));
        QVERIFY(s.toast.extend(QStringLiteral("first"), longer));
        // The first one stays until the other covers it.
        QCOMPARE(s.shell.windows.size(), 2U);
        QCOMPARE(s.shell.windows.front()->title, QStringLiteral("first"));
        QCOMPARE(s.window().title, longer);
        QVERIFY(s.window().isVisible);
        QCOMPARE(s.window().native.united(before), s.window().native);
        const QImage shown = s.window().shown;
        QCOMPARE(shown.pixelColor(shown.rect().center()).alpha(), 255);
        s.clock.advance(100ms);
        QCOMPARE(s.shell.windows.size(), 1U);
        QVERIFY(s.window().shown == shown);
        s.clock.advance(3449ms); // it is up as long as a toast of this length
        QCOMPARE(s.shell.windows.size(), 1U);
        s.clock.advance(1ms);
        QVERIFY(s.shell.windows.empty());
        s.clock.advance(5s);
        QCOMPARE(s.clock.pendingCalls(), 0U);
    }

    void saysMoreWhenItIsAtRestButNotOnItsWayOut()
    {
        Setup s;
        s.show(QStringLiteral("first"));
        s.clock.advance(50ms); // the overlays may still be on the screen, around the toast
        QVERIFY(s.toast.extend(QStringLiteral("first"), QStringLiteral("second")));
        s.clock.advance(349ms);
        QCOMPARE(s.window().title, QStringLiteral("first"));
        s.clock.advance(1ms);
        QCOMPARE(s.window().title, QStringLiteral("second"));
        s.clock.advance(1550ms);
        QVERIFY(s.toast.isShown());
        QVERIFY(!s.toast.extend(QStringLiteral("second"), QStringLiteral("third")));
        s.clock.advance(300ms);
        QVERIFY(!s.toast.isShown());
    }

    void doesNotSayMoreInPlaceOfAnotherToast()
    {
        Setup s;
        s.show(QStringLiteral("first"));
        QVERIFY(s.toast.extend(QStringLiteral("first"), QStringLiteral("second")));
        s.show(QStringLiteral("first"));
        s.clock.advance(1s);
        QCOMPARE(s.window().title, QStringLiteral("first"));
    }

    void keepsWhatLiesBelowWhereItSaysMore()
    {
        Setup s;
        s.shell.canBlend = false;
        s.shell.background = Qt::green;
        s.show(QStringLiteral("first"));
        s.clock.advance(700ms);
        s.shell.background = Qt::red; // with the toast in it
        QVERIFY(s.toast.extend(QStringLiteral("first"), QStringLiteral("first and what follows")));
        s.toast.hideForCapture();
        QVERIFY(s.shell.windows.empty());
        QCOMPARE(s.shell.vanished.size(), 2U);
        const QImage left = s.shell.vanished[0];
        QCOMPARE(left.pixelColor(left.rect().center()), QColor(Qt::green));
        QCOMPARE(left.pixelColor(0, 0), QColor(Qt::red));
    }

    void vanishesForACapture()
    {
        Setup s;
        s.toast.hideForCapture();
        QVERIFY(s.shell.vanished.empty());
        s.show();
        s.clock.advance(700ms);
        s.toast.hideForCapture();
        QVERIFY(s.shell.windows.empty());
        QCOMPARE(s.shell.vanished.size(), 1U);
        QCOMPARE(s.shell.vanished[0].pixelColor(90, 60), QColor(Qt::transparent));
        s.clock.advance(5s);
        QCOMPARE(s.clock.pendingCalls(), 0U);
    }

    void bringsWhatLiesBelowWhereWindowsDoNotBlend()
    {
        Setup s;
        s.shell.canBlend = false;
        s.shell.background = Qt::green;
        s.show();
        QCOMPARE(s.window().shown.pixelColor(0, 0), QColor(Qt::green));
        QCOMPARE(s.window().shown.pixelColor(90, 60), QColor(Qt::green));
        s.clock.advance(700ms);
        QCOMPARE(s.window().shown.pixelColor(0, 0), QColor(Qt::green));
        QVERIFY(s.window().shown.pixelColor(45, 60) != QColor(Qt::green));
        s.toast.hideForCapture();
        QCOMPARE(s.shell.vanished[0].pixelColor(90, 60), QColor(Qt::green));
    }

    void takesWhatLiesBelowFromTheFrozenScreen()
    {
        Setup s;
        s.shell.canBlend = false;
        s.shell.background = Qt::black; // the overlay's dimmed picture
        QRect asked;
        s.toast.frozenPixels = [&](QRect native) {
            asked = native;
            // As captured pixels are: their unused byte is none of alpha.
            QImage frozen(native.size(), QImage::Format_RGB32);
            frozen.fill(0x00ffff00);
            return frozen;
        };
        s.show();
        QCOMPARE(asked, s.window().native);
        QCOMPARE(s.window().shown.pixelColor(0, 0), QColor(Qt::yellow));
    }
};

QTEST_MAIN(TestToast)
#include "tst_Toast.moc"
