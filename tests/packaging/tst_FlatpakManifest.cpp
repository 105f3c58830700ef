// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

class TestFlatpakManifest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_manifest = QJsonDocument::fromJson(file.readAll()).object();
        QVERIFY(!m_manifest.isEmpty());
    }

    void isForThisProgram()
    {
        const QString id = m_manifest.value("id").toString();
        QVERIFY(QFile::exists(source() + "/packaging/" + id + ".desktop"));
        QVERIFY(QFile::exists(source() + "/packaging/icons/" + id + "-symbolic.svg"));
        QCOMPARE(m_manifest.value("command").toString(), "tovek");
    }

    void asksForNothingMore()
    {
        // A window, a notification, a place in the panel, to hear when the screen is locked, and
        // the folder that screenshots go to: no network, no home, no other program. All else is the
        // portals'. Not among it: the sound server, which would let the program record as well; and
        // GNOME's own name for its locker, over which a program can end the lock.
        const QStringList allowed{"--socket=wayland",
                                  "--socket=fallback-x11",
                                  "--share=ipc",
                                  "--talk-name=org.freedesktop.Notifications",
                                  "--talk-name=org.kde.StatusNotifierWatcher",
                                  "--talk-name=org.freedesktop.ScreenSaver",
                                  "--filesystem=xdg-download"};
        QStringList asked;
        for (const QJsonValue &argument : m_manifest.value("finish-args").toArray()) {
            if (!argument.toString().startsWith("--env="))
                asked << argument.toString();
        }
        QCOMPARE(asked, allowed);
    }

    void pinsWhatItFetches()
    {
        static const QRegularExpression checksum(QStringLiteral("^[0-9a-f]{64}$"));
        int fetched = 0;
        for (const QJsonValue &module : m_manifest.value("modules").toArray()) {
            for (const QJsonValue &entry : module.toObject().value("sources").toArray()) {
                const QJsonObject from = entry.toObject();
                if (from.value("type").toString() == "dir")
                    continue;
                ++fetched;
                QVERIFY2(checksum.match(from.value("sha256").toString()).hasMatch(),
                         qPrintable(from.value("url").toString()));
            }
        }
        QCOMPARE(fetched, 3);
    }

    void isUnderstoodByTheBuilder()
    {
        const QString builder = QStandardPaths::findExecutable(QStringLiteral("flatpak-builder"));
        if (builder.isEmpty())
            QSKIP("flatpak-builder is not installed");
        const QTemporaryDir folder; // it keeps a state where it runs
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.start(builder, {"--show-manifest", path()});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        // It says what it does not know, and goes on.
        QCOMPARE(process.readAllStandardError(), QByteArray());
    }

private:
    static QString source() { return qEnvironmentVariable("TOVEK_SOURCE_DIR"); }
    static QString path() { return source() + "/packaging/flatpak/org.tovek.Tovek.json"; }

    QJsonObject m_manifest;
};

QTEST_APPLESS_MAIN(TestFlatpakManifest)
#include "tst_FlatpakManifest.moc"
