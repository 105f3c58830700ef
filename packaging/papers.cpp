// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Prints the papers that are made of what stands elsewhere: of the table of options that the
// program parses, and of CHANGELOG.md.
//   papers bash|zsh|fish                         the completion of that shell
//   papers manual TEMPLATE CHANGELOG VERSION     the manual page
//   papers metainfo TEMPLATE CHANGELOG           what software centres show

#include "command/CommandHelp.h"

#include <QDate>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>

#include <cstdio>
#include <vector>

using namespace tovek;

namespace {

/// One version, as its section in the list of changes tells it.
struct Release
{
    QString version;
    QDate date;
    QStringList changes;
};

QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Sections with a date, newest first; what is not released yet has none.
std::vector<Release> releasesIn(const QString &changelog)
{
    static const QRegularExpression heading(
        QStringLiteral("^## (\\d+\\.\\d+\\.\\d+) \\((\\d{4}-\\d\\d-\\d\\d)\\)$"));
    std::vector<Release> releases;
    bool isRelease = false;
    for (const QString &line : changelog.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("## "))) {
            const QRegularExpressionMatch match = heading.match(line);
            isRelease = match.hasMatch();
            if (isRelease)
                releases.push_back(
                    {match.captured(1), QDate::fromString(match.captured(2), Qt::ISODate), {}});
        } else if (isRelease && line.startsWith(QLatin1String("- "))) {
            releases.back().changes += line.mid(2);
        } else if (isRelease && line.startsWith(QLatin1String("  "))
                   && !releases.back().changes.isEmpty()) {
            releases.back().changes.last() += ' ' + line.trimmed();
        }
    }
    return releases;
}

QString manual(const QStringList &arguments)
{
    QString text = textOf(arguments.value(0));
    const std::vector<Release> releases = releasesIn(textOf(arguments.value(1)));
    if (releases.empty())
        return {};
    for (const char *command : {"", "shot", "words"}) {
        const auto name = QString::fromLatin1(command);
        text.replace(QStringLiteral("@OPTIONS%1@\n").arg(name.isEmpty() ? name : ':' + name),
                     manualOptions(name));
    }
    text.replace(QLatin1String("@VERSION@"), arguments.value(2));
    return text.replace(
        QLatin1String("@DATE@"),
        QLocale::c().toString(releases.front().date, QStringLiteral("MMMM d, yyyy")));
}

QString metainfo(const QStringList &arguments)
{
    QString text = textOf(arguments.value(0));
    QString xml;
    for (const Release &release : releasesIn(textOf(arguments.value(1)))) {
        xml += QStringLiteral("    <release version=\"%1\" date=\"%2\">\n      <description>\n"
                              "        <ul>\n")
                   .arg(release.version, release.date.toString(Qt::ISODate));
        for (const QString &change : release.changes)
            xml += QStringLiteral("          <li>%1</li>\n").arg(change.toHtmlEscaped());
        xml += QStringLiteral("        </ul>\n      </description>\n    </release>\n");
    }
    return xml.isEmpty() ? QString() : text.replace(QLatin1String("@RELEASES@\n"), xml);
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    const QString kind = arguments.value(0);
    QString text;
    if (kind == QLatin1String("bash"))
        text = bashCompletion();
    else if (kind == QLatin1String("zsh"))
        text = zshCompletion();
    else if (kind == QLatin1String("fish"))
        text = fishCompletion();
    else if (kind == QLatin1String("manual"))
        text = manual(arguments.mid(1));
    else if (kind == QLatin1String("metainfo"))
        text = metainfo(arguments.mid(1));
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    return bytes.isEmpty() ? 1 : 0;
}
