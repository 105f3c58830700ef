// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/CommandsTabView.h"
#include "platform/linux/UserBoundHotKeys.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace tovek;

class TestCommandsTabView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void copiesTheLineOfEachCommand()
    {
        const UserBoundHotKeys keys{QStringLiteral("niri")};
        QStringList copied;
        CommandsTabView view(
            QStringLiteral("/opt/tovek"),
            [&](KeyCombo combo, const QString &command) {
                return keys.commandBinding(combo, command);
            },
            [&](const QString &text) { copied << text; });
        const QStringList lines{
            QStringLiteral("Print { spawn \"/opt/tovek\" \"--capture\"; }"),
            QStringLiteral("Shift+Print { spawn \"/opt/tovek\" \"--capture-image\"; }"),
            QStringLiteral("Ctrl+Print { spawn \"/opt/tovek\" \"--capture-text\"; }")};
        QStringList shown;
        for (const auto *line : view.findChildren<QLineEdit *>())
            shown << line->text();
        QCOMPARE(shown, lines);
        for (auto *button : view.findChildren<QPushButton *>()) {
            button->click();
            QCOMPARE(button->text(), QStringLiteral("Copied"));
        }
        QCOMPARE(copied, lines);
    }

    void saysWhereTheLinesBelong()
    {
        CommandsTabView view(
            QStringLiteral("tovek"),
            [](KeyCombo, const QString &command) {
                return CommandBinding{QStringLiteral("the drawer on the left"), command};
            },
            [](const QString &) {});
        const auto labels = view.findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
            return label->text().contains(QStringLiteral("the drawer on the left"));
        }));
    }
};

QTEST_MAIN(TestCommandsTabView)
#include "tst_CommandsTabView.moc"
