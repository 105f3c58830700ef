// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// The page of promises names the tests that prove them.
class TestSecurityPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void namesTestsThatExist()
    {
        const QDir source(qEnvironmentVariable("TOVEK_SOURCE_DIR"));
        const QString page = this->page();
        int named = 0;
        for (auto match = name.globalMatch(page); match.hasNext(); ++named) {
            const QRegularExpressionMatch test = match.next();
            const QString text = read(source.filePath(
                QStringLiteral("tests/%1/tst_%2.cpp").arg(test.captured(1), test.captured(2))));
            QVERIFY2(text.contains(QStringLiteral("void %1()").arg(test.captured(3))),
                     qPrintable(test.captured()));
        }
        QVERIFY(named > 20);
    }

    void provesEveryPromise()
    {
        const QString end = QStringLiteral("## What is tried beyond that");
        QVERIFY(page().contains(end));
        // Each is an item of a list.
        const QStringList items =
            page().section(end, 0, 0).split(QRegularExpression(QStringLiteral("\n- ")));
        QVERIFY(items.size() > 10);
        for (const QString &promise : items.mid(1))
            QVERIFY2(promise.contains(name), qPrintable(promise));
    }

private:
    const QRegularExpression name{QStringLiteral("`([\\w/]+)/(\\w+)::(\\w+)`")};

    static QString page()
    {
        return read(QDir(qEnvironmentVariable("TOVEK_SOURCE_DIR"))
                        .filePath(QStringLiteral("docs/security.md")));
    }
    static QString read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
};

QTEST_APPLESS_MAIN(TestSecurityPage)
#include "tst_SecurityPage.moc"
