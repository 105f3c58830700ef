// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/Version.h"
#include "update/program/Installation.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_home->path()).mkpath(QStringLiteral("mounted/usr/bin")));
        QVERIFY(QDir(m_home->path()).mkpath(QStringLiteral("programs")));
        touch("mounted/usr/bin/tovek-update");
        touch("programs/Tovek.AppImage");
        touch("elsewhere");
    }

    void knowsAnAppImage()
    {
        const auto found = find("mounted/usr/bin/tovek-update", "programs/Tovek.AppImage");
        QVERIFY(found);
        QVERIFY(found->kind == PackageKind::appImage);
        QCOMPARE(found->file, path("programs/Tovek.AppImage"));
        QCOMPARE(found->downloads, path("programs"));
    }

    void replacesTheFileAndNotTheLink()
    {
        QVERIFY(QFile::link(path("programs/Tovek.AppImage"), path("link")));
        const auto found = find("mounted/usr/bin/tovek-update", "link");
        QVERIFY(found);
        QCOMPARE(found->file, path("programs/Tovek.AppImage"));
        QCOMPARE(found->downloads, path("programs"));
    }

    void doesNotTakeAnotherAppImageForItsOwn_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("appImage");
        QTest::newRow("started by one")
            << QStringLiteral("elsewhere") << QStringLiteral("programs/Tovek.AppImage");
        QTest::newRow("one that is gone") << QStringLiteral("mounted/usr/bin/tovek-update")
                                          << QStringLiteral("programs/Gone.AppImage");
        QTest::newRow("a folder") << QStringLiteral("mounted/usr/bin/tovek-update")
                                  << QStringLiteral("programs");
    }
    void doesNotTakeAnotherAppImageForItsOwn()
    {
        QFETCH(QString, program);
        QFETCH(QString, appImage);
        QVERIFY(!find(program, appImage));
    }

    void knowsADebianPackage()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("dpkg-query")).isEmpty())
            QSKIP("no Debian system");
        const auto found = findInstallation(QStringLiteral("/bin/dpkg"), {});
        // Of a merged /usr, dpkg knows files by one of two names only.
        const auto other = findInstallation(QStringLiteral("/usr/bin/dpkg"), {});
        QVERIFY(found || other);
        const Installation installation = found.value_or(other.value_or(Installation()));
        QVERIFY(installation.kind == PackageKind::debian);
        QVERIFY(installation.file.isEmpty());
        QVERIFY(installation.downloads.endsWith(QStringLiteral("/.cache/tovek/updates")));
        QVERIFY(!findInstallation(path("elsewhere"), {}));
    }

    void knowsTheSystem() { QVERIFY(Version::fromString(systemVersion())); }

private:
    QString path(const QString &name) const { return m_home->filePath(name); }
    void touch(const QString &name) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    std::optional<Installation> find(const QString &program, const QString &appImage) const
    {
        QProcessEnvironment environment;
        environment.insert(QStringLiteral("APPIMAGE"), path(appImage));
        environment.insert(QStringLiteral("APPDIR"), path(QStringLiteral("mounted")));
        return findInstallation(path(program), environment);
    }

    std::unique_ptr<QTemporaryDir> m_home;
};

QTEST_GUILESS_MAIN(TestInstallation)
#include "tst_Installation.moc"
