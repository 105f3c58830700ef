// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowLook.h"
#include "fakes/FakeClock.h"
#include "foundation/UserDefaults.h"
#include "foundation/WhenReady.h"
#include "look/ModernStyle.h"
#include "platform/WindowColors.h"
#include "update/Updater.h"

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

class Colors : public WindowColors
{
public:
    bool areDark() const override { return isDark; }
    QFuture<bool> ask() const override
    {
        ++questions;
        return readyFuture(isDark);
    }
    void turn(bool toDark)
    {
        isDark = toDark;
        onChanged();
    }

    bool isDark = false;
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

    void tellsTheProgramThatUpdates()
    {
        Colors colors;
        colors.isDark = true;
        Updates updates;
        WindowLook look(&colors, updates.updater);
        updates.updater.checkForUpdates();
        QTRY_COMPARE(updates.told(), QByteArray("dark\n"));
        colors.turn(false);
        QTRY_COMPARE(updates.told(), QByteArray("dark\nlight\n"));
        QVERIFY(!isDark());
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
