// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Settings.h"
#include "foundation/UserDefaults.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void holdsBeforeTheUserHasChosen()
    {
        QVERIFY(Settings::highlightText.in(m_defaults));
        QVERIFY(Settings::showInMenuBar.in(m_defaults));
        QCOMPARE(Settings::saveFolderPath.in(m_defaults), QString());
        QVERIFY(!QFile::exists(m_defaults.path()));
    }

    void passesOverValuesOfAnotherType()
    {
        m_defaults.setString(QStringLiteral("highlightText"), QStringLiteral("no"));
        m_defaults.setBoolean(QStringLiteral("saveFolderPath"), true);
        QVERIFY(Settings::highlightText.in(m_defaults));
        QCOMPARE(Settings::saveFolderPath.in(m_defaults), QString());
    }

    void storesUnderItsKey()
    {
        Settings::showInMenuBar.set(m_defaults, false);
        Settings::saveFolderPath.set(m_defaults, QStringLiteral("/a"));
        QCOMPARE(m_defaults.boolean(QStringLiteral("showInMenuBar")), std::optional(false));
        QCOMPARE(m_defaults.string(QStringLiteral("saveFolderPath")),
                 std::optional(QStringLiteral("/a")));
        QVERIFY(!Settings::showInMenuBar.in(m_defaults));
    }

    /// Two places with a key of their own had two defaults.
    void isTheOnlyPlaceThatNamesAKey()
    {
        const QString source = qEnvironmentVariable("TOVEK_SOURCE_DIR") + QStringLiteral("/src");
        QStringList places;
        QDirIterator files(source, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray text = file.readAll();
            for (const char *key : {Settings::highlightText.key, Settings::showInMenuBar.key,
                                    Settings::saveFolderPath.key}) {
                if (text.contains('"' + QByteArray(key) + '"'))
                    places.append(file.fileName().mid(source.size()));
            }
        }
        places.removeDuplicates();
        QCOMPARE(places, QStringList{QStringLiteral("/foundation/Settings.h")});
    }

private:
    QTemporaryDir m_dir;
    UserDefaults m_defaults{m_dir.filePath(QStringLiteral("d.json"))};
};

QTEST_APPLESS_MAIN(TestSettings)
#include "tst_Settings.moc"
