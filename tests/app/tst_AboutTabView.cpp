// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AboutTabView.h"
#include "app/BundleInformation.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace tovek;

class TestAboutTabView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void namesTheVersion_data()
    {
        QTest::addColumn<QVariantMap>("information");
        QTest::addColumn<QString>("line");
        const QString shortVersion = QStringLiteral("CFBundleShortVersionString");
        const QString version = QStringLiteral("CFBundleVersion");
        QTest::newRow("both") << QVariantMap{{shortVersion, QStringLiteral("1.2")},
                                             {version, QStringLiteral("34")}}
                              << QStringLiteral("Version 1.2 (34)");
        QTest::newRow("no build") << QVariantMap{{shortVersion, QStringLiteral("1.2")}}
                                  << QStringLiteral("Version 1.2 (Unknown)");
        QTest::newRow("no string") << QVariantMap{{shortVersion, 1.2}, {version, 34}}
                                   << QStringLiteral("Version Unknown (Unknown)");
    }
    void namesTheVersion()
    {
        QFETCH(QVariantMap, information);
        QTEST(BundleInformation::versionLine(information), "line");
    }

    void showsTheProgram()
    {
        const AboutTabView view(BundleInformation::standard(), {});
        QVERIFY(has(view, QStringLiteral("Tovek")));
        QVERIFY(has(view, QStringLiteral("Version %1 (").arg(BundleInformation::version())));
        const AboutTabView unnamed({}, {});
        QVERIFY(has(unnamed, QStringLiteral("Unknown")));
    }

    void opensTheWebsite()
    {
        QUrl opened;
        const AboutTabView view({}, [&](const QUrl &url) { opened = url; });
        auto *button = view.findChild<QPushButton *>();
        QCOMPARE(button->text(), QStringLiteral("Website"));
        button->click();
        QCOMPARE(opened, AboutTabView::website());
        QCOMPARE(opened.scheme(), QStringLiteral("https"));
    }

private:
    static bool has(const QWidget &view, const QString &text)
    {
        for (const auto *label : view.findChildren<QLabel *>()) {
            if (label->text().startsWith(text))
                return true;
        }
        return false;
    }
};

QTEST_MAIN(TestAboutTabView)
#include "tst_AboutTabView.moc"
