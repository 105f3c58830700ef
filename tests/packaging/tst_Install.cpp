// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "packaging/Prefix.h"

#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace tovek;

class TestInstall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_prefix.install(), qPrintable(m_prefix.error)); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void bringsAllThatTheProgramNeeds_data()
    {
        QTest::addColumn<bool>("isProgram");
        QTest::newRow("bin/tovek") << true;
#ifdef TOVEK_WITH_X11
        QTest::newRow("libexec/tovek/tovek-clipboard") << true;
#endif
#ifdef TOVEK_WITH_WAYLAND
        QTest::newRow("libexec/tovek/tovek-clipboard-wayland") << true;
#endif
        QTest::newRow("libexec/tovek/tovek-folder") << true;
        QTest::newRow("libexec/tovek/tovek-ocr") << true;
#ifdef TOVEK_WITH_PIPEWIRE
        QTest::newRow("libexec/tovek/tovek-screencast") << true;
#endif
        QTest::newRow("share/applications/org.tovek.Tovek.desktop") << false;
        QTest::newRow("share/dbus-1/services/org.tovek.Tovek.service") << false;
        QTest::newRow("share/icons/hicolor/scalable/apps/org.tovek.Tovek.svg") << false;
        QTest::newRow("share/icons/hicolor/symbolic/apps/org.tovek.Tovek-symbolic.svg") << false;
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512})
            QTest::addRow("share/icons/hicolor/%dx%d/apps/org.tovek.Tovek.png", size, size)
                << false;
        QTest::newRow("share/bash-completion/completions/tovek") << false;
        QTest::newRow("share/zsh/site-functions/_tovek") << false;
        QTest::newRow("share/fish/vendor_completions.d/tovek.fish") << false;
        QTest::newRow("share/man/man1/tovek.1") << false;
        QTest::newRow("share/metainfo/org.tovek.Tovek.metainfo.xml") << false;
    }
    void bringsAllThatTheProgramNeeds()
    {
        QFETCH(bool, isProgram);
        const QFileInfo file(m_prefix.path(QString::fromLatin1(QTest::currentDataTag())));
        QVERIFY(file.isFile());
        QCOMPARE(file.isExecutable(), isProgram);
        QVERIFY(file.size() > 0);
    }

    void drawsIconsInTheirSize()
    {
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
            const QImage icon(m_prefix.path(
                QStringLiteral("share/icons/hicolor/%1x%1/apps/org.tovek.Tovek.png").arg(size)));
            QCOMPARE(icon.size(), QSize(size, size));
        }
    }

    void passesTheCheckersOfItsPapers_data()
    {
        QTest::addColumn<QStringList>("checker");
        QTest::newRow("share/man/man1/tovek.1")
            << QStringList{"mandoc", "-T", "lint", "-W", "warning"};
        QStringList appStream{"appstreamcli", "validate", "--strict", "--no-net"};
        // From 1.0 on it would rather have a tag for the developer that those before refuse.
        if (said({"appstreamcli", "--version"}).contains("AppStream version: 1"))
            appStream << "--override=developer-name-tag-deprecated=pedantic,"
                         "developer-info-missing=pedantic";
        QTest::newRow("share/metainfo/org.tovek.Tovek.metainfo.xml") << appStream;
    }
    void passesTheCheckersOfItsPapers()
    {
        QFETCH(QStringList, checker);
        if (QStandardPaths::findExecutable(checker.first()).isEmpty())
            QSKIP(qPrintable(checker.first() + " is not installed"));
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(checker.first(),
                      checker.mid(1) + QStringList{m_prefix.path(QTest::currentDataTag())});
        QVERIFY(process.waitForFinished());
        const QByteArray findings = process.readAll();
        QVERIFY2(process.exitCode() == 0, findings.constData());
    }

private:
    static QByteArray said(const QStringList &command)
    {
        QProcess process;
        process.start(command.first(), command.mid(1));
        return process.waitForFinished() ? process.readAll() : QByteArray();
    }

    Prefix m_prefix;
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_Install.moc"
