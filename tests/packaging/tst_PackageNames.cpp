// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

QDir source()
{
    return QDir(qEnvironmentVariable("TOVEK_SOURCE_DIR"));
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What ./run and ./test say on systems where they install nothing themselves.
class TestPackageNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void namesTheOneCommand_data()
    {
        QTest::addColumn<QByteArray>("system");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QStringList>("names");
        const QString dnf = QStringLiteral("If something is missing: sudo dnf install ");
        const QString zypper = QStringLiteral("If something is missing: sudo zypper install ");
        const QString pacman = QStringLiteral("If something is missing: sudo pacman -S --needed ");
        const QStringList fedora{QStringLiteral("'pkgconfig(xcb-icccm)'"),
                                 QStringLiteral("tesseract-langpack-eng"),
                                 QStringLiteral("xorg-x11-server-Xvfb")};
        QTest::newRow("Fedora") << QByteArray("NAME=\"Fedora Linux\"\nID=fedora\n") << dnf
                                << fedora;
        QTest::newRow("one that comes from Fedora")
            << QByteArray("ID=\"almalinux\"\nID_LIKE=\"rhel centos fedora\"\n") << dnf << fedora;
        QTest::newRow("openSUSE")
            << QByteArray("ID=\"opensuse-tumbleweed\"\nID_LIKE=\"opensuse suse\"\n") << zypper
            << QStringList{QStringLiteral("'pkgconfig(Qt6Widgets)'"),
                           QStringLiteral("tesseract-ocr-traineddata-english"),
                           QStringLiteral("xwayland")};
        QTest::newRow("Arch") << QByteArray("ID=arch\n") << pacman
                              << QStringList{QStringLiteral("xcb-util-wm"),
                                             QStringLiteral("tesseract-data-eng"),
                                             QStringLiteral("xorg-server-xvfb")};
        QTest::newRow("one that nobody knows")
            << QByteArray("ID=else\n")
            << QStringLiteral("An unknown system: please install what corresponds to these")
            << QStringList{QStringLiteral("qt6-base-dev"), QStringLiteral("xvfb")};
    }
    void namesTheOneCommand()
    {
        QFETCH(QByteArray, system);
        QFETCH(QString, start);
        QFETCH(QStringList, names);
        QFile description(m_folder.filePath(QStringLiteral("os-release")));
        QVERIFY(description.open(QIODevice::WriteOnly) && description.write(system) > 0);
        description.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("OS_RELEASE"), description.fileName());
        const QString said = shell(QStringLiteral("need build desktop"), environment);
        QVERIFY2(said.startsWith(start), qPrintable(said));
        QCOMPARE(said.count(u'\n'), 1);
        const QStringList words = said.simplified().split(u' ');
        for (const QString &name : names)
            QVERIFY2(words.contains(name), qPrintable(name));
        QStringList unique = words;
        unique.removeDuplicates();
        QCOMPARE(words, unique);
    }

    void knowsEveryLibraryThatTheBuildLooksFor()
    {
        const QStringList known =
            shell(QStringLiteral("printf '%s ' \"${library_modules[@]}\"")).split(u' ');
        static const QRegularExpression lookup(
            QStringLiteral("pkg_check_modules\\(\\w+ (?:REQUIRED )?IMPORTED_TARGET(?: GLOBAL)?"
                           "((?:\\s+[a-z0-9.-]+)+)\\)"));
        int found = 0;
        for (const char *folder : {"src", "tests"}) {
            QDirIterator files(source().filePath(QLatin1String(folder)),
                               {QStringLiteral("CMakeLists.txt")}, QDir::Files,
                               QDirIterator::Subdirectories);
            while (files.hasNext()) {
                const QString text = QString::fromUtf8(contents(files.next()));
                for (auto it = lookup.globalMatch(text); it.hasNext(); ++found) {
                    for (const QString &name : it.next().captured(1).simplified().split(u' '))
                        QVERIFY2(known.contains(name), qPrintable(name));
                }
            }
        }
        QVERIFY(found > 10);
    }

private:
    /// What the command says, on either stream, with the lists read.
    QString
    shell(const QString &command,
          const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment()) const
    {
        QProcess bash;
        bash.setProcessEnvironment(environment);
        bash.setWorkingDirectory(source().path());
        bash.setProcessChannelMode(QProcess::MergedChannels);
        bash.start(QStringLiteral("bash"),
                   {QStringLiteral("-euc"), QStringLiteral(". scripts/packages.sh; ") + command});
        return bash.waitForFinished() && bash.exitCode() == 0 ? QString::fromUtf8(bash.readAll())
                                                              : QString();
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestPackageNames)
#include "tst_PackageNames.moc"
