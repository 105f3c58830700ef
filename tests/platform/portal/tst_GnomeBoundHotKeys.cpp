// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// With the settings' own tool, on settings of the test's own.

#include "fakes/FakeKeyboardLayout.h"
#include "platform/portal/GnomeBindings.h"
#include "platform/portal/GnomeBoundHotKeys.h"
#include "support/Skip.h"
#include "support/Wait.h"

#include <QProcess>
#include <QStandardPaths>

using namespace tovek;

namespace {

const char schema[] = R"(<schemalist>
<schema id="org.gnome.settings-daemon.plugins.media-keys"
  path="/org/gnome/settings-daemon/plugins/media-keys/">
<key name="custom-keybindings" type="as"><default>[]</default></key>
<key name="home" type="as"><default>['&lt;Super&gt;e']</default></key>
</schema>
<schema id="org.gnome.settings-daemon.plugins.media-keys.custom-keybinding">
<key name="name" type="s"><default>''</default></key>
<key name="command" type="s"><default>''</default></key>
<key name="binding" type="s"><default>''</default></key>
</schema>
<schema id="org.gnome.shell.keybindings" path="/org/gnome/shell/keybindings/">
<key name="show-screenshot-ui" type="as"><default>['Print']</default></key>
</schema>
</schemalist>)";

const auto mediaKeys = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys");
const auto folder =
    QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/");
constexpr KeyCombo controlShift3{20, ComboModifier::control | ComboModifier::shift};
constexpr KeyCombo print{105, 0};

} // namespace

class TestGnomeBoundHotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *tool : {"gsettings", "glib-compile-schemas"}) {
            if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty())
                SKIP_BECAUSE(QLatin1String(tool) + QStringLiteral(" is not installed"));
        }
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_layout.characters = {{20, QStringLiteral("3")}};
        m_folder = std::make_unique<QTemporaryDir>();
        QFile file(m_folder->filePath(QStringLiteral("test.gschema.xml")));
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(schema);
        file.close();
        QCOMPARE(QProcess::execute(QStringLiteral("glib-compile-schemas"), {m_folder->path()}), 0);
        qputenv("GSETTINGS_SCHEMA_DIR", m_folder->path().toLocal8Bit());
        qputenv("GSETTINGS_BACKEND", "keyfile");
        qputenv("XDG_CONFIG_HOME", m_folder->path().toLocal8Bit());
        m_keys = GnomeBoundHotKeys::create(m_layout);
        QVERIFY(m_keys);
        m_refused.clear();
        m_keys->onRefused = [this](quint32 id) { m_refused << id; };
        m_keys->purposeOf = [](KeyCombo) {
            return HotKeyPurpose{"capture-image", "Capture Image",
                                 "'/opt/it''s/tovek' --capture-image"};
        };
    }

    void writesACustomShortcut()
    {
        QVERIFY(!m_keys->reportsRelease());
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitForPaths({ownPath()}));
        QCOMPARE(get(ownPath(), "binding"), "<Control><Shift>3");
        QCOMPARE(get(ownPath(), "name"), "Tovek: Capture Image");
        QCOMPARE(get(ownPath(), "command"), "'/opt/it''s/tovek' --capture-image");
    }
    void leavesThoseOfOthersAlone()
    {
        const QString other = folder + QStringLiteral("custom0/");
        set(mediaKeys, "custom-keybindings", GnomeBindings::quoted(QStringList{other}));
        set(schemaOf(other), "binding", "'<Super>t'");
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitForPaths({other, ownPath()}));
        QCOMPARE(get(other, "binding"), "<Super>t");
        m_keys->release(1);
        QVERIFY(waitForPaths({other}));
        QCOMPARE(get(other, "binding"), "<Super>t");
        QCOMPARE(get(ownPath(), "binding"), "");
    }
    void followsAnotherKey()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitForPaths({ownPath()}));
        m_keys->release(1);
        QCOMPARE(m_keys->grab(2, {100, 0}), 0);
        QVERIFY(waitUntil([&] { return get(ownPath(), "binding") == "F8"; }));
        QCOMPARE(paths(), QStringList{ownPath()});
    }
    void refusesWhatTheDesktopUses_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::newRow("the shell") << 105U << 0U;
        QTest::newRow("another program's shortcut") << 100U << ComboModifier::control;
    }
    void refusesWhatTheDesktopUses()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        const QString other = folder + QStringLiteral("custom0/");
        set(mediaKeys, "custom-keybindings", GnomeBindings::quoted(QStringList{other}));
        set(schemaOf(other), "binding", "'<Primary>F8'");
        QCOMPARE(m_keys->grab(5, {keyCode, modifiers}), 0);
        QVERIFY(waitUntil([&] { return m_refused == QList<quint32>{5}; }));
        QCOMPARE(paths(), QStringList{other});
    }
    void takesAKeyThatBecameFree()
    {
        QCOMPARE(m_keys->grab(1, print), 0);
        QVERIFY(waitUntil([&] { return m_refused == QList<quint32>{1}; }));
        set("org.gnome.shell.keybindings", "show-screenshot-ui", "@as []");
        QCOMPARE(m_keys->grab(2, print), 0);
        QVERIFY(waitForPaths({ownPath()}));
        QCOMPARE(get(ownPath(), "binding"), "Print");
    }
    void staysAfterTheProgram()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitForPaths({ownPath()}));
        m_keys.reset();
        QCoreApplication::processEvents();
        QCOMPARE(paths(), QStringList{ownPath()});
    }
    void goesBeforeTheProgramIsUninstalled()
    {
        const QString other = folder + QStringLiteral("custom0/");
        set(mediaKeys, "custom-keybindings", GnomeBindings::quoted(QStringList{other}));
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitForPaths({other, ownPath()}));
        const QString program = qEnvironmentVariable("TOVEK_PROGRAM");
        QCOMPARE(QProcess::execute(program, {QStringLiteral("--remove-shortcuts")}), 0);
        QCOMPARE(paths(), QStringList{other});
    }
    void isNotMadeWithoutSuchSettings()
    {
        qputenv("GSETTINGS_SCHEMA_DIR", "/nonexistent");
        if (!gsettings({"list-keys", mediaKeys}).isEmpty())
            QSKIP("GNOME's settings daemon is installed here");
        QVERIFY(!GnomeBoundHotKeys::create(m_layout));
    }

    void readsAndWritesTexts_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"plain", "it's", "a \"b\"", "it's \"b\"", "back\\slash", ""})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void readsAndWritesTexts()
    {
        QFETCH(QString, text);
        QCOMPARE(GnomeBindings::listOf(GnomeBindings::quoted(text)), QStringList{text});
        const QStringList two{text, QStringLiteral("other")};
        QCOMPARE(GnomeBindings::listOf(GnomeBindings::quoted(two)), two);
        set(schemaOf(folder + "x/"), "name", GnomeBindings::quoted(text));
        QCOMPARE(get(folder + "x/", "name"), text);
    }

private:
    static QString ownPath() { return folder + QStringLiteral("tovek-capture-image/"); }
    static QString schemaOf(const QString &path)
    {
        return mediaKeys + QStringLiteral(".custom-keybinding:") + path;
    }
    static QString gsettings(const QStringList &arguments)
    {
        QProcess tool;
        tool.setStandardErrorFile(QProcess::nullDevice());
        tool.start(QStringLiteral("gsettings"), arguments);
        tool.waitForFinished();
        return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
    }
    static void set(const QString &schemaAndPath, const char *key, const QString &value)
    {
        gsettings({QStringLiteral("set"), schemaAndPath, QLatin1String(key), value});
    }
    static QString get(const QString &path, const char *key)
    {
        return GnomeBindings::listOf(
                   gsettings({QStringLiteral("get"), schemaOf(path), QLatin1String(key)}))
            .value(0);
    }
    static QStringList paths()
    {
        return GnomeBindings::listOf(
            gsettings({QStringLiteral("get"), mediaKeys, QStringLiteral("custom-keybindings")}));
    }
    static bool waitForPaths(const QStringList &expected)
    {
        return waitUntil([&] { return paths() == expected; });
    }

    FakeKeyboardLayout m_layout;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<GnomeBoundHotKeys> m_keys;
    QList<quint32> m_refused;
};

QTEST_GUILESS_MAIN(TestGnomeBoundHotKeys)
#include "tst_GnomeBoundHotKeys.moc"
