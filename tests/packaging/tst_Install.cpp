// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "packaging/Prefix.h"

#include <QFileInfo>
#include <QRegularExpression>
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
        QTest::newRow("libexec/tovek/tovek-clipboard") << true;
        QTest::newRow("libexec/tovek/tovek-clipboard-wayland") << true;
        QTest::newRow("libexec/tovek/tovek-ocr") << true;
        QTest::newRow("share/applications/org.tovek.Tovek.desktop") << false;
        QTest::newRow("share/dbus-1/services/org.tovek.Tovek.service") << false;
        QTest::newRow("share/icons/hicolor/scalable/apps/org.tovek.Tovek.svg") << false;
    }
    void bringsAllThatTheProgramNeeds()
    {
        QFETCH(bool, isProgram);
        const QFileInfo file(m_prefix.path(QString::fromLatin1(QTest::currentDataTag())));
        QVERIFY(file.isFile());
        QCOMPARE(file.isExecutable(), isProgram);
        QVERIFY(file.size() > 0);
    }

private:
    Prefix m_prefix;
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_Install.moc"
