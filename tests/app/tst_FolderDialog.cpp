// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/FolderDialog.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestFolderDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
    }

    void asksForOneFolder()
    {
        const QTemporaryDir folder;
        const FolderDialog dialog(folder.path());
        QCOMPARE(dialog.windowTitle(),
                 QStringLiteral("Select the folder where screenshots will be saved"));
        QCOMPARE(dialog.labelText(QFileDialog::Accept), QStringLiteral("Choose"));
        QCOMPARE(dialog.fileMode(), QFileDialog::Directory);
        QVERIFY(dialog.testOption(QFileDialog::ShowDirsOnly));
        QVERIFY(!dialog.testOption(QFileDialog::ReadOnly)); // folders can be made
        QCOMPARE(dialog.directory().path(), folder.path());
    }
};

QTEST_MAIN(TestFolderDialog)
#include "tst_FolderDialog.moc"
