// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PermissionManager.h"
#include "capture/PermissionRequestView.h"
#include "capture/PermissionWindowController.h"
#include "fakes/FakeCapturePermission.h"
#include "fakes/FakeFrontmostApp.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestPermissionWindow : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        FakeCapturePermission permission;
        PermissionManager manager{permission};
        FakeFrontmostApp frontmost;
        QString symbol;
        double symbolSize = 0;
        PermissionWindowController controller{
            manager, frontmost, [this](const QString &name, const QColor &, double points, double) {
                symbol = name;
                symbolSize = points;
                return QImage(60, 60, QImage::Format_ARGB32_Premultiplied);
            }};
        QPushButton *button(const QString &text) const
        {
            for (auto *button : controller.window()->findChildren<QPushButton *>())
                if (button->text() == text && button->accessibleName() == text)
                    return button;
            return nullptr;
        }
    };

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void asksNobodyWhetherThereIsPermission()
    {
        Setup s;
        QVERIFY(!s.manager.hasPermission());
        s.permission.isGranted = true;
        QVERIFY(s.manager.hasPermission());
        QVERIFY(s.permission.calls.isEmpty());
    }

    void fitsItsTexts_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("points");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        for (const char *family : {"DejaVu Sans", "Noto Sans", "Cantarell"}) {
            for (int points : {10, 12, 16, 22}) {
                for (auto direction : {Qt::LeftToRight, Qt::RightToLeft})
                    QTest::addRow("%s %d %s", family, points,
                                  direction == Qt::LeftToRight ? "ltr" : "rtl")
                        << family << points << direction;
            }
        }
    }
    void fitsItsTexts()
    {
        QFETCH(QString, family);
        QFETCH(int, points);
        QFETCH(Qt::LayoutDirection, direction);
        if (!QFontDatabase::families().contains(family))
            QSKIP("the font is not installed");
        const QFont font = QApplication::font();
        QApplication::setFont(QFont(family, points));
        QApplication::setLayoutDirection(direction);
        Setup s;
        s.permission.given = CaptureAdvice{
            QStringLiteral("A long title that says why there can be no picture of this screen"),
            QStringLiteral("What to do about it, told in many words that take more than one line, "
                           "whatever the font of the desktop is and whichever way it runs."),
            {QStringLiteral("Do this first, which is explained at some length so that it wraps"),
             QStringLiteral("Then do that")},
            true};
        s.controller.show();
        QWidget *window = s.controller.window();
        QApplication::processEvents();
        for (const auto *label : window->findChildren<QLabel *>()) {
            const int height = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            QVERIFY2(label->height() >= height, qPrintable(label->text()));
            QVERIFY2(label->wordWrap() || label->width() >= label->sizeHint().width(),
                     qPrintable(label->text()));
            const QRect place(label->mapTo(window, QPoint()), label->size());
            QVERIFY2(window->rect().contains(place), qPrintable(label->text()));
        }
        for (const auto *button : window->findChildren<QPushButton *>()) {
            QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
            QVERIFY(window->rect().contains(button->geometry()));
        }
        QApplication::setFont(font);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void followsThePalette()
    {
        Setup s;
        s.controller.show();
        const auto *label = s.controller.window()->findChildren<QLabel *>().at(2);
        const QPalette before = QApplication::palette();
        QPalette dark = before;
        dark.setColor(QPalette::WindowText, Qt::white);
        QApplication::setPalette(dark);
        QApplication::processEvents();
        const QColor color = label->palette().color(QPalette::WindowText);
        QApplication::setPalette(QPalette());
        QCOMPARE(color.rgb(), QColor(Qt::white).rgb());
    }

    void showsOneWindowHoweverOften()
    {
        Setup s;
        s.controller.show();
        QWidget *window = s.controller.window();
        QVERIFY(window->isVisible());
        QCOMPARE(window->size(), QSize(420, 280));
        QVERIFY(window->windowFlags() & Qt::WindowStaysOnTopHint);
        s.controller.show();
        QCOMPARE(s.controller.window(), window);
        QCOMPARE(s.frontmost.broughtForward.size(), 2U);
        QCOMPARE(s.symbol, QStringLiteral("rectangle.dashed.badge.record"));
        QCOMPARE(s.symbolSize, 56.0);
    }

    void saysWhatToDo()
    {
        Setup s;
        s.controller.show();
        QStringList texts;
        for (const auto *label : s.controller.window()->findChildren<QLabel *>())
            if (!label->text().isEmpty())
                texts << label->text();
        QCOMPARE(texts,
                 QStringList({"Screen Recording Permission Required",
                              "Tovek needs screen recording permission to capture screenshots. "
                              "This allows the app to see and capture the content on your screen.",
                              "1.", "Click \"Open System Settings\" below", "2.",
                              "Find Tovek in the list and enable it", "3.",
                              "You may need to restart Tovek"}));
    }

    void saysWhyNothingCanBeCaptured()
    {
        Setup s;
        s.permission.given = CaptureAdvice{"No Way", "Nobody may see it.", {"Go elsewhere"}, false};
        s.controller.show();
        QStringList texts;
        for (const auto *label : s.controller.window()->findChildren<QLabel *>())
            if (!label->text().isEmpty())
                texts << label->text();
        QCOMPARE(texts, QStringList({"No Way", "Nobody may see it.", "1.", "Go elsewhere"}));
        QVERIFY(!s.button("Open System Settings"));
        QVERIFY(s.button("Close"));
        QTest::keyClick(s.controller.window(), Qt::Key_Return);
        QVERIFY(!s.controller.window());
        QVERIFY(s.permission.calls.isEmpty());
    }

    void staysWhileTheDesktopAsks()
    {
        Setup s;
        s.permission.asksAtOnce = true;
        s.permission.given = CaptureAdvice{"May I?", "It asks.", {"Say yes"}, true, "Ask"};
        s.controller.show();
        s.button("Ask")->click();
        QVERIFY(s.controller.window() && s.controller.window()->isVisible());
        s.permission.answer(true);
        QVERIFY(!s.controller.window());
    }
    void saysHowToGoOnAfterANo()
    {
        Setup s;
        s.permission.asksAtOnce = true;
        s.controller.show();
        s.button("Open System Settings")->click();
        s.permission.given =
            CaptureAdvice{"Refused", "It said no.", {"Think again"}, true, "Again"};
        s.permission.answer(false);
        QVERIFY(s.controller.window()->isVisible());
        QVERIFY(s.button("Again"));
    }
    void staysAwayWhenNobodyWaitsForTheAnswer()
    {
        Setup s;
        s.permission.asksAtOnce = true;
        s.controller.show();
        s.button("Open System Settings")->click();
        s.controller.window()->close();
        s.permission.answer(false);
        QVERIFY(!s.controller.window());
    }

    void obeysItsKeysAndButtons_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("calls");
        const QStringList opened{"request", "settings"};
        QTest::newRow("Return") << int(Qt::Key_Return) << QString() << opened;
        QTest::newRow("Escape") << int(Qt::Key_Escape) << QString() << QStringList();
        QTest::newRow("Open System Settings") << 0 << "Open System Settings" << opened;
        QTest::newRow("Cancel") << 0 << "Cancel" << QStringList();
    }
    void obeysItsKeysAndButtons()
    {
        QFETCH(int, key);
        QFETCH(QString, button);
        Setup s;
        s.controller.show();
        const QPointer<QWidget> window = s.controller.window();
        if (key)
            QTest::keyClick(window, Qt::Key(key));
        else
            s.button(button)->click();
        QVERIFY(!s.controller.window());
        QTEST(s.permission.calls, "calls");
        QTRY_VERIFY(!window);
    }

    void isBuiltAfreshAfterItsTitleBarClosedIt()
    {
        Setup s;
        s.controller.show();
        const QPointer<QWidget> first = s.controller.window();
        first->close();
        QVERIFY(s.controller.window());
        s.controller.show();
        QVERIFY(s.controller.window() != first);
        QVERIFY(s.controller.window()->isVisible());
        QVERIFY(!first);
    }
};

QTEST_MAIN(TestPermissionWindow)
#include "tst_PermissionWindow.moc"
