// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeKeyboardLayout.h"
#include "platform/linux/Accelerator.h"
#include "platform/linux/DesktopShortcuts.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestDesktopShortcuts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_layout.characters = {{17, QStringLiteral("t")}, {27, QStringLiteral("-")}};
    }

    void writesCombinations_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<QString>("accelerator");
        QTest::newRow("a letter") << 17U << 0x1800U << "<Control><Alt>t";
        QTest::newRow("a sign") << 27U << 0x300U << "<Shift><Super>minus";
        QTest::newRow("Print") << 105U << 0U << "Print";
        QTest::newRow("a key of the keypad") << 82U << 0x1000U << "<Control>KP_0";
        QTest::newRow("a key without a name") << 200U << 0x1000U << "";
    }
    void writesCombinations()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QFETCH(QString, accelerator);
        QCOMPARE(acceleratorOf({keyCode, modifiers}, m_layout), accelerator);
        QCOMPARE(isAccelerator(accelerator, {keyCode, modifiers}, m_layout),
                 !accelerator.isEmpty());
    }

    void readsCombinations_data()
    {
        QTest::addColumn<QString>("accelerator");
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<bool>("isMeant");
        const auto row = [](const char *accelerator, quint32 keyCode, quint32 modifiers,
                            bool isMeant) {
            QTest::addRow("%s is %s%u+%x", accelerator, isMeant ? "" : "not ", keyCode, modifiers)
                << QString::fromLatin1(accelerator) << keyCode << modifiers << isMeant;
        };
        row("<Primary><Alt>t", 17, 0x1800, true);
        row("<Alt><Control>T", 17, 0x1800, true);
        row("<Primary><Alt>t", 17, 0x1000, false);
        row("<Primary>t", 17, 0x1800, false);
        row("<Primary><Alt>t", 0, 0x1800, false);
        row("Print", 105, 0, true);
        row("<Shift>Print", 105, 0x200, true);
        row("F13", 105, 0, true);
        row("<Super>Page_Up", 116, 0x100, true);
        row("<Mod4>Prior", 116, 0x100, true);
        row("<Super>minus", 27, 0x100, true);
        row("<Hyper>t", 17, 0, false);
        row("<Super", 17, 0x100, false);
        row("<Super>", 17, 0x100, false);
        row("", 17, 0, false);
        row("disabled", 17, 0, false);
        row("XF86AudioPlay", 17, 0, false);
    }
    void readsCombinations()
    {
        QFETCH(QString, accelerator);
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QTEST(isAccelerator(accelerator, {keyCode, modifiers}, m_layout), "isMeant");
    }

    void findsCombinationsInGSettings()
    {
        const QString output = QStringLiteral(
            "org.gnome.desktop.wm.keybindings close ['<Alt>F4']\n"
            "org.gnome.desktop.wm.keybindings lower @as []\n"
            "org.gnome.shell.keybindings screenshot ['<Shift>Print', '<Super>p']\n"
            "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding binding '<Super>t'\n"
            "org.gnome.desktop.interface font-name 'Print'\n");
        QCOMPARE(accelerators(DesktopShortcuts::fromGSettings(output)),
                 (QStringList{QStringLiteral("<Alt>F4"), QStringLiteral("<Shift>Print"),
                              QStringLiteral("<Super>p"), QStringLiteral("<Super>t")}));
    }

    void findsCombinationsInXfconf()
    {
        QVariantMap properties{{"/commands/default/<Alt>F2", "run"},
                               {"/commands/custom/<Super>r", "run"},
                               {"/commands/custom/<Super>r/startup-notify", true},
                               {"/commands/custom/<Super>x", ""},
                               {"/xfwm4/default/<Alt>F4", "close_window_key"}};
        QCOMPARE(accelerators(DesktopShortcuts::fromXfconf(properties)),
                 (QStringList{QStringLiteral("<Alt>F2"), QStringLiteral("<Alt>F4")}));
        properties.insert(QStringLiteral("/commands/custom/override"), true);
        const QStringList found = accelerators(DesktopShortcuts::fromXfconf(properties));
        QVERIFY(found.contains(QStringLiteral("<Super>r")));
        QVERIFY(!found.contains(QStringLiteral("<Alt>F2")));
        QVERIFY(!found.contains(QStringLiteral("<Super>x")));
    }

    void saysWhoUsesACombination()
    {
        const auto gnome = DesktopShortcuts::fromGSettings(
            QStringLiteral("org.gnome.shell.keybindings show-screenshot-ui ['Print']\n"));
        QCOMPARE(gnome.value(0).use.user, QStringLiteral("the desktop (“show screenshot ui”)"));
        QVERIFY(gnome.value(0).use.place.startsWith(QStringLiteral("Settings → Keyboard")));
        const auto xfce = DesktopShortcuts::fromXfconf(
            {{"/commands/default/Print", "/usr/bin/xfce4-screenshooter -f"},
             {"/xfwm4/default/<Alt>F4", "close_window_key"}});
        QCOMPARE(xfce.value(0).use.user, QStringLiteral("xfce4-screenshooter"));
        QCOMPARE(xfce.value(0).use.place,
                 QStringLiteral("Settings → Keyboard → Application Shortcuts"));
        QCOMPARE(xfce.value(1).use.user, QStringLiteral("the window manager"));
    }

    void knowsWhichSettingsAreListsOfTheDesktop()
    {
        const auto entries = DesktopShortcuts::fromGSettings(QStringLiteral(
            "org.gnome.shell.keybindings show-screenshot-ui ['Print']\n"
            "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding binding 'F9'\n"));
        QCOMPARE(entries.value(0).setting,
                 QStringLiteral("org.gnome.shell.keybindings show-screenshot-ui"));
        QCOMPARE(entries.value(1).setting, QString());
    }

    void takesAKeyFromGnomeAndGivesItBack()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("glib-compile-schemas")).isEmpty())
            QSKIP("glib-compile-schemas is not installed");
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("test.gschema.xml")));
        QVERIFY(file.open(QFile::WriteOnly));
        file.write("<schemalist><schema id='org.gnome.shell.keybindings' path='/k/'>"
                   "<key name='show-screenshot-ui' type='as'><default>['Print', 'F9']</default>"
                   "</key></schema></schemalist>");
        file.close();
        QCOMPARE(QProcess::execute(QStringLiteral("glib-compile-schemas"), {dir.path()}), 0);
        qputenv("GSETTINGS_SCHEMA_DIR", dir.path().toLocal8Bit());
        qputenv("GSETTINGS_BACKEND", "keyfile");
        const QByteArray config = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", dir.path().toLocal8Bit());
        DesktopShortcuts shortcuts(QStringLiteral("GNOME"), m_layout);
        shortcuts.refresh();
        QVERIFY(shortcuts.canTakeAway({105, 0}));
        QVERIFY(!shortcuts.canTakeAway({17, 0}));
        const QString taken = shortcuts.takeAway({105, 0});
        QVERIFY(!shortcuts.use({105, 0}));
        shortcuts.refresh();
        QVERIFY(!shortcuts.use({105, 0}));
        QVERIFY(shortcuts.use({101, 0}));
        shortcuts.giveBack(taken);
        QVERIFY(shortcuts.use({105, 0}));
        QVERIFY(shortcuts.use({101, 0}));
        qunsetenv("GSETTINGS_SCHEMA_DIR");
        qunsetenv("GSETTINGS_BACKEND");
        qputenv("XDG_CONFIG_HOME", config);
    }

    void asksGnomeOnGnomeOnly()
    {
        QTemporaryDir dir;
        QFile tool(dir.filePath(QStringLiteral("gsettings")));
        QVERIFY(tool.open(QIODevice::WriteOnly));
        tool.write("#!/bin/sh\necho \"org.gnome.shell.keybindings show ['Print']\"\n");
        tool.close();
        QVERIFY(tool.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", dir.path().toUtf8() + ':' + path);
        DesktopShortcuts gnome(QStringLiteral("ubuntu:GNOME"), m_layout);
        gnome.refresh();
        QVERIFY(gnome.contains({105, 0}));
        QVERIFY(!gnome.contains({105, 0x200}));
        DesktopShortcuts other(QStringLiteral("LXQt"), m_layout);
        other.refresh();
        QVERIFY(!other.contains({105, 0}));
        qputenv("PATH", path);
    }

    void waitsHalfASecondAtMost()
    {
        QTemporaryDir dir;
        QFile tool(dir.filePath(QStringLiteral("gsettings")));
        QVERIFY(tool.open(QIODevice::WriteOnly));
        tool.write("#!/bin/sh\nexec sleep 20\n");
        tool.close();
        QVERIFY(tool.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", dir.path().toUtf8() + ':' + path);
        QElapsedTimer time;
        {
            DesktopShortcuts gnome(QStringLiteral("GNOME"), m_layout);
            gnome.refresh();
            time.start();
            QVERIFY(!gnome.contains({105, 0}));
        }
        QVERIFY2(time.elapsed() < 3000, qPrintable(QString::number(time.elapsed())));
        qputenv("PATH", path);
    }

private:
    static QStringList accelerators(const QList<DesktopShortcuts::Entry> &entries)
    {
        QStringList found;
        for (const auto &entry : entries)
            found << entry.accelerator;
        return found;
    }

    FakeKeyboardLayout m_layout;
};

QTEST_GUILESS_MAIN(TestDesktopShortcuts)
#include "tst_DesktopShortcuts.moc"
