// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

/// What the page about the architecture lists is what is built.
class TestGuide : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsTheRoomsThatThereAre()
    {
        QSet<QString> folders;
        QDirIterator files(root() + "/src", {QStringLiteral("*.h"), QStringLiteral("*.cpp")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next().mid(root().size() + 1);
            folders.insert(path.left(path.lastIndexOf('/')));
        }
        QVERIFY(folders.size() > 10);
        QCOMPARE(sorted(firstCells(QStringLiteral("Rooms"))), sorted(folders));
    }

    void listsTheProgramsThatAreInstalled()
    {
        static const QRegularExpression install(QStringLiteral("install\\(TARGETS ([\\w-]+)"));
        QSet<QString> programs;
        QString build = contents(root() + "/packaging/CMakeLists.txt");
        QDirIterator files(root() + "/src", {QStringLiteral("CMakeLists.txt")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext())
            build += contents(files.next());
        auto found = install.globalMatch(build);
        while (found.hasNext())
            programs.insert(found.next().captured(1));
        QVERIFY(programs.size() > 2);
        QCOMPARE(sorted(firstCells(QStringLiteral("Processes"))), sorted(programs));
    }

    void namesOnlyTypesAndPassesThatExist()
    {
        QString source;
        QDirIterator files(root() + "/src", {QStringLiteral("*.h")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            source += path + '\n' + contents(path);
        }
        static const QRegularExpression name(QStringLiteral("`([A-Za-z][A-Za-z0-9]+)[`:(]"));
        auto names = name.globalMatch(guide());
        int checked = 0;
        for (; names.hasNext(); ++checked) {
            const QString one = names.next().captured(1);
            QVERIFY2(one == QLatin1String("tovek") || one == QLatin1String("architecture")
                         || source.contains(QRegularExpression("\\b" + one + "\\b")),
                     qPrintable(one));
        }
        QVERIFY(checked > 20);
    }

private:
    static QString root() { return qEnvironmentVariable("TOVEK_SOURCE_DIR"); }

    static QString contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    static QString guide() { return contents(root() + "/docs/ARCHITECTURE.md"); }

    /// The names in the first column of the tables below a heading.
    static QSet<QString> firstCells(const QString &heading)
    {
        const QString section = guide().section("\n## " + heading + '\n', 1).section("\n## ", 0, 0);
        static const QRegularExpression cell(QStringLiteral("^\\| `([^`]+)`"),
                                             QRegularExpression::MultilineOption);
        QSet<QString> names;
        auto found = cell.globalMatch(section);
        while (found.hasNext())
            names.insert(found.next().captured(1));
        return names;
    }

    static QStringList sorted(const QSet<QString> &names)
    {
        QStringList list(names.begin(), names.end());
        list.sort();
        return list;
    }
};

QTEST_APPLESS_MAIN(TestGuide)
#include "tst_Guide.moc"
