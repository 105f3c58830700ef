// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandHelp.h"
#include "command/CommandTable.h"

#include <QStringList>

namespace tovek {

namespace {

const auto head = QStringLiteral("# SPDX-FileCopyrightText: 2026 The Tovek developers\n"
                                 "# SPDX-License-Identifier: MIT\n");

QStringList namesOf(const OptionInfo &option)
{
    QStringList names;
    for (const char *name : {option.shortName, option.name}) {
        if (*name)
            names += tableText(name);
    }
    return names;
}

QList<OptionInfo> optionsOf(const QString &command)
{
    QList<OptionInfo> options;
    for (const OptionInfo &option : allOptions()) {
        if (command == QLatin1String(option.command))
            options += option;
    }
    return options;
}

QStringList commandNames()
{
    QStringList names;
    for (const CommandInfo &info : allCommands())
        names += tableText(info.name);
    return names;
}

/// What bash offers for the value of an option; empty: nothing.
QString bashValues(const OptionInfo &option)
{
    switch (option.kind) {
    case ValueKind::screen:
        return QStringLiteral("COMPREPLY=($(compgen -W \"$(xrandr --listactivemonitors 2>/dev/null"
                              " | awk 'NR > 1 {print $NF}')\" -- \"$cur\"))");
    case ValueKind::window:
        return QStringLiteral("COMPREPLY=($(compgen -W '%1' -- \"$cur\"))")
            .arg(tableText(option.value));
    case ValueKind::file:
        return QStringLiteral("compopt -o filenames; COMPREPLY=($(compgen -f -- \"$cur\"))");
    case ValueKind::none:
    case ValueKind::number:
    case ValueKind::text:
        break;
    }
    return QStringLiteral("COMPREPLY=()");
}

/// The action of zsh for the value of an option.
QString zshValues(const OptionInfo &option)
{
    switch (option.kind) {
    case ValueKind::screen:
        return QStringLiteral("(${(f)\"$(xrandr --listactivemonitors 2>/dev/null"
                              " | awk 'NR > 1 {print $NF}')\"})");
    case ValueKind::window:
        return QStringLiteral("(%1)").arg(tableText(option.value));
    case ValueKind::file:
        return QStringLiteral("_files");
    case ValueKind::none:
    case ValueKind::number:
    case ValueKind::text:
        break;
    }
    return QStringLiteral(" ");
}

QString zshSpec(const OptionInfo &option)
{
    const QStringList names = namesOf(option);
    const QString name = names.size() > 1
        ? QStringLiteral("'(%1)'{%2}").arg(names.join(' '), names.join(','))
        : names.first();
    QString spec = '[' + tableText(option.help).replace(']', QLatin1String("\\]")) + ']';
    if (option.kind != ValueKind::none)
        spec += ':' + tableText(option.value).replace(':', QLatin1String("\\:")) + ':'
            + zshValues(option);
    return name + shellWord(spec);
}

QString zshOptions(const QString &command)
{
    QStringList specs;
    for (const OptionInfo &option : optionsOf(command))
        specs += zshSpec(option);
    return specs.join(QStringLiteral(" \\\n            "));
}

QString fishLine(const OptionInfo &option, const QString &condition)
{
    QString line = QStringLiteral("complete -c tovek -n '%1'").arg(condition);
    for (const QString &name : namesOf(option))
        line += name.startsWith(QLatin1String("--")) ? QStringLiteral(" -l ") + name.mid(2)
                                                     : QStringLiteral(" -s ") + name.mid(1);
    if (option.kind == ValueKind::file)
        line += QStringLiteral(" -r -F");
    else if (option.kind == ValueKind::window)
        line += QStringLiteral(" -x -a %1").arg(tableText(option.value));
    else if (option.kind == ValueKind::screen)
        line += QStringLiteral(" -x -a '(xrandr --listactivemonitors 2>/dev/null"
                               " | string match -r \"\\S+\\$\")'");
    else if (option.kind != ValueKind::none)
        line += QStringLiteral(" -x");
    return line + QStringLiteral(" -d %1\n").arg(fishWord(tableText(option.help)));
}

} // namespace

QString shellWord(QString text)
{
    return '\'' + text.replace('\'', QLatin1String("'\\''")) + '\'';
}

QString fishWord(QString text)
{
    text.replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'"));
    return '\'' + text + '\'';
}

QString bashCompletion()
{
    QString cases, words;
    for (const QString &command : QStringList{QString()} + commandNames()) {
        QStringList names;
        for (const OptionInfo &option : optionsOf(command)) {
            names += namesOf(option);
            if (option.kind == ValueKind::none)
                continue;
            QStringList patterns;
            for (const QString &name : namesOf(option))
                patterns += command + ',' + name;
            cases += QStringLiteral("    %1) %2; return ;;\n")
                         .arg(patterns.join('|'), bashValues(option));
        }
        words += QStringLiteral("    %1) words='%2' ;;\n")
                     .arg(command.isEmpty() ? QStringLiteral("''") : command, names.join(' '));
    }
    return head
        + QStringLiteral(
              "_tovek()\n"
              "{\n"
              "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
              "    local command= words=\n"
              "    if [ \"$COMP_CWORD\" -gt 1 ]; then\n"
              "        case ${COMP_WORDS[1]} in %1) command=${COMP_WORDS[1]} ;; esac\n"
              "    fi\n"
              "    case $command,$prev in\n%2    esac\n"
              "    case $command in\n%3    esac\n"
              "    [ \"$COMP_CWORD\" -gt 1 ] || words=\"$words %4\"\n"
              "    COMPREPLY=($(compgen -W \"$words\" -- \"$cur\"))\n"
              "    if [ \"$command\" = words ] && [[ $cur != -* ]]; then\n"
              "        compopt -o filenames; COMPREPLY=($(compgen -f -- \"$cur\"))\n"
              "    fi\n"
              "}\n"
              "complete -F _tovek tovek\n")
              .arg(commandNames().join('|'), cases, words, commandNames().join(' '));
}

QString zshCompletion()
{
    QString commands, cases;
    for (const CommandInfo &info : allCommands()) {
        const QString name = tableText(info.name);
        commands += ' ' + shellWord(name + ':' + tableText(info.help));
        cases += QStringLiteral("    %1)\n        shift words; (( CURRENT-- ))\n"
                                "        _arguments -s \\\n            %2%3 ;;\n")
                     .arg(name, zshOptions(name),
                          *info.arguments ? QStringLiteral(" \\\n            '1:picture:_files'")
                                          : QString());
    }
    return QStringLiteral("#compdef tovek\n") + head
        + QStringLiteral("_tovek()\n"
                         "{\n"
                         "    local -a commands=(%1)\n"
                         "    case $words[2] in\n%2"
                         "    *)\n"
                         "        (( CURRENT == 2 )) && _describe command commands\n"
                         "        _arguments -s \\\n            %3 ;;\n"
                         "    esac\n"
                         "}\n"
                         "_tovek \"$@\"\n")
              .arg(commands.trimmed(), cases, zshOptions(QString()));
}

QString fishCompletion()
{
    const QString names = commandNames().join(' ');
    QString text = head + QStringLiteral("complete -c tovek -f\n");
    for (const CommandInfo &info : allCommands())
        text += QStringLiteral("complete -c tovek -n __fish_use_subcommand -a %1 -d %2\n")
                    .arg(tableText(info.name), fishWord(tableText(info.help)));
    for (const OptionInfo &option : optionsOf(QString()))
        text += fishLine(option, QStringLiteral("not __fish_seen_subcommand_from ") + names);
    for (const CommandInfo &info : allCommands()) {
        const QString isCommand =
            QStringLiteral("__fish_seen_subcommand_from ") + tableText(info.name);
        if (*info.arguments)
            text += QStringLiteral("complete -c tovek -n '%1' -F\n").arg(isCommand);
        for (const OptionInfo &option : optionsOf(tableText(info.name)))
            text += fishLine(option, isCommand);
    }
    return text;
}

QString manualOptions(const QString &command)
{
    QString text = QStringLiteral(".Bl -tag -width Ds\n");
    for (const OptionInfo &option : optionsOf(command)) {
        QStringList forms;
        for (const QString &name : namesOf(option)) {
            QString form = QStringLiteral("Fl ") + name.mid(1);
            if (*option.value)
                form += (option.kind == ValueKind::window ? QStringLiteral(" Cm ")
                                                          : QStringLiteral(" Ar "))
                    + tableText(option.value);
            forms += form;
        }
        text += QStringLiteral(".It ") + forms.join(QStringLiteral(" , ")) + '\n'
            + tableText(option.help) + QStringLiteral(".\n");
    }
    return text + QStringLiteral(".El\n");
}

} // namespace tovek
