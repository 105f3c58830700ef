// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowLook.h"
#include "fakes/FakeClock.h"
#include "foundation/UserDefaults.h"
#include "foundation/WhenReady.h"
#include "look/Accent.h"
#include "look/ModernStyle.h"
#include "platform/WindowColors.h"
#include "update/Updater.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

class Colors : public WindowColors
{
public:
    WindowTheme theme() const override { return wanted; }
    QFuture<WindowTheme> ask() const override
    {
        ++questions;
        return readyFuture(wanted);
    }
    void turn(bool toDark)
    {
        wanted.isDark = toDark;
        onChanged();
    }
    void turn(const QColor &accent)
    {
        wanted.accent = accent;
        onChanged();
    }

    WindowTheme wanted;
    mutable int questions = 0;
};

/// An updater whose program writes down what it is told, until that ends.
struct Updates
{
    Updates()
    {
        QFile file(program);
        if (file.open(QIODevice::WriteOnly))
            file.write("#!/bin/sh\nwhile read line; do echo \"$line\" >> \"$0.told\"; done\n");
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        updater.start();
    }
    QByteArray told() const
    {
        QFile file(program + QStringLiteral(".told"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    QString program = folder.filePath(QStringLiteral("update"));
    UserDefaults defaults{folder.filePath(QStringLiteral("defaults.json"))};
    FakeClock clock;
    Updater updater{{program, QStringLiteral("1.0")}, defaults, clock};
};

const QColor purple(0x91, 0x41, 0xac);

QColor highlight()
{
    return QApplication::palette().color(QPalette::Highlight);
}

bool isDark()
{
    return ModernStyle::isDark(QApplication::palette());
}

} // namespace

class TestWindowLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void followsTheDesktop()
    {
        Colors colors;
        Updates updates;
        WindowLook look(&colors, updates.updater);
        colors.turn(true); // no window yet
        QVERIFY(!isDark());
        QCOMPARE(colors.questions, 0);
        look.prepare();
        QVERIFY(isDark());
        colors.turn(false);
        QVERIFY(!isDark());
        colors.turn(true);
        QVERIFY(isDark());
        colors.turn(false);
    }

    /// Where no window was opened yet, for what lies on the screen without one.
    void tellsWhatIsNoWindow()
    {
        Colors colors;
        colors.wanted.isDark = true;
        Updates updates;
        WindowLook look(&colors, updates.updater);
        QList<bool> told;
        look.onTold = [&](bool dark) { told << dark; };
        look.learn();
        QTRY_COMPARE(told, QList<bool>{true});
        QVERIFY(!isDark());
        look.learn();
        QCOMPARE(colors.questions, 1);
        colors.turn(false);
        QTRY_COMPARE(told, (QList<bool>{true, false}));
        look.prepare();
        QCOMPARE(told, (QList<bool>{true, false, false}));
    }

    void tellsTheProgramThatUpdates()
    {
        Colors colors;
        colors.wanted.isDark = true;
        Updates updates;
        WindowLook look(&colors, updates.updater);
        updates.updater.checkForUpdates();
        QTRY_COMPARE(updates.told(), QByteArray("dark\n"));
        colors.turn(false);
        QTRY_COMPARE(updates.told(), QByteArray("dark\nlight\n"));
        colors.turn(purple);
        QTRY_COMPARE(updates.told(), QByteArray("dark\nlight\nlight #9141ac\n"));
        QVERIFY(!isDark());
    }

    void showsTheLinesOfADarkMenu()
    {
        const ModernStyle style;
        QStyleOptionMenuItem line;
        line.menuItemType = QStyleOptionMenuItem::Separator;
        line.rect = QRect(0, 0, 40, 9);
        line.palette = QPalette(QColor(0x3a, 0x3a, 0x3d), QColor(0x26, 0x26, 0x28));
        const QColor menu(0x1e, 0x1e, 0x20);
        QImage image(line.rect.size(), QImage::Format_RGB32);
        image.fill(menu);
        QPainter painter(&image);
        style.drawControl(QStyle::CE_MenuItem, &line, &painter, nullptr);
        painter.end();
        QVERIFY(image.pixelColor(20, 4).lightness() > menu.lightness() + 30);
        QCOMPARE(image.pixelColor(20, 2), menu);
        QCOMPARE(style.styleHint(QStyle::SH_EtchDisabledText, nullptr, nullptr, nullptr), 0);
    }

    void followsTheAccent()
    {
        Colors colors;
        Updates updates;
        WindowLook look(&colors, updates.updater);
        const QColor without = highlight();
        look.prepare();
        QCOMPARE(highlight(), without);
        colors.turn(purple);
        QCOMPARE(highlight().name(), purple.name());
        QCOMPARE(QApplication::palette().color(QPalette::HighlightedText), QColor(Qt::white));
        colors.turn(true);
        QVERIFY(isDark());
        QVERIFY(highlight().name() != purple.name()); // hardly to be seen on dark windows
        QCOMPARE(highlight().hsvHue() / 10, purple.hsvHue() / 10);
        colors.turn(false);
        QVERIFY(!isDark());
        QCOMPARE(highlight().name(), purple.name());
        colors.turn(true);
        colors.turn(QColor());
        QVERIFY(isDark());
        QVERIFY(highlight().blueF() > highlight().redF());
        colors.turn(false);
        QCOMPARE(highlight(), without);
    }

    void keepsTextOnTheAccentReadable_data()
    {
        QTest::addColumn<QColor>("accent");
        QTest::addColumn<QColor>("window");
        for (const char *name :
             {"black", "white", "yellow", "#3584e4", "#2190a4", "#3a944a", "#c88800", "#ed5b00",
              "#e62d42", "#d56199", "#9141ac", "#6f8396"}) {
            QTest::addRow("%s on light", name) << QColor(name) << QColor("#efefef");
            QTest::addRow("%s on dark", name) << QColor(name) << QColor("#262628");
        }
    }
    void keepsTextOnTheAccentReadable()
    {
        QFETCH(QColor, accent);
        QFETCH(QColor, window);
        const QColor used = readableAccent(accent, window);
        QVERIFY2(contrastOf(used, accentText) >= 4.5, qPrintable(used.name()));
        QVERIFY2(contrastOf(used, window) >= 3, qPrintable(used.name()));
    }

    void leavesAnAccentAloneThatIsReadable()
    {
        QCOMPARE(readableAccent(purple, QColor("#efefef")).name(), purple.name());
    }

    void isThePalettesWithoutColors()
    {
        Updates updates;
        WindowLook look(nullptr, updates.updater);
        look.prepare();
        QVERIFY(!isDark());
    }
};

QTEST_MAIN(TestWindowLook)
#include "tst_WindowLook.moc"
