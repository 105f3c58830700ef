// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/AutostartLoginItem.h"

#include "foundation/AppImage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QProcessEnvironment>
#include <QSaveFile>
#include <QStandardPaths>

namespace tovek {

namespace {

/// An entry is a page of text; more is not read.
constexpr qint64 largestEntry = 64 * 1024;

/// An argument of an Exec line: quoted, with what is special inside quotes escaped, and once more
/// because the value of a desktop entry has escapes of its own.
QString execArgument(const QString &argument)
{
    QString quoted;
    for (const QChar character : argument) {
        if (QStringLiteral("\"`$\\").contains(character))
            quoted += QStringLiteral("\\\\");
        if (character == QLatin1Char('\\'))
            quoted += QLatin1Char('\\');
        if (character == QLatin1Char('%'))
            quoted += QLatin1Char('%');
        quoted += character;
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

/// The first word of an Exec line, as execArgument would have written it.
QString firstArgument(const QString &exec)
{
    QString word;
    const bool isQuoted = exec.startsWith(QLatin1Char('"'));
    // The value's own escapes first.
    QString line = exec.mid(isQuoted ? 1 : 0);
    line.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (isQuoted ? line[at] == QLatin1Char('"') : line[at].isSpace())
            break;
        const bool isEscape =
            (isQuoted && line[at] == QLatin1Char('\\')) || line.mid(at, 2) == QStringLiteral("%%");
        if (isEscape && at + 1 < line.size())
            ++at;
        word += line[at];
    }
    return word;
}

/// Links resolved, so that two ways to one file are one; itself where there is no such file.
QString foundFile(const QString &program)
{
    const QString path =
        program.contains(QLatin1Char('/')) ? program : QStandardPaths::findExecutable(program);
    const QString file = QFileInfo(path).canonicalFilePath();
    return file.isEmpty() ? program : file;
}

/// The value of a key in the main group; null when there is none.
QString valueOf(const QString &key, const QStringList &lines)
{
    bool isMainGroup = false;
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1Char('[')))
            isMainGroup = line.trimmed() == QStringLiteral("[Desktop Entry]");
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (isMainGroup && equals > 0 && line.left(equals).trimmed() == key)
            return line.mid(equals + 1).trimmed();
    }
    return {};
}

} // namespace

AutostartLoginItem::AutostartLoginItem(QString folder, QString program)
    : m_folder(std::move(folder))
    , m_program(std::move(program))
{
}

AutostartLoginItem::~AutostartLoginItem() = default;

std::optional<QString> AutostartLoginItem::startedProgram() const
{
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList lines = QString::fromUtf8(file.read(largestEntry)).split(QLatin1Char('\n'));
    const QString program = firstArgument(valueOf(QStringLiteral("Exec"), lines));
    const bool isOff = program.isEmpty()
        || valueOf(QStringLiteral("Hidden"), lines) == QStringLiteral("true")
        || valueOf(QStringLiteral("X-GNOME-Autostart-enabled"), lines) == QStringLiteral("false");
    return isOff ? std::nullopt : std::optional(program);
}

bool AutostartLoginItem::isEnabled() const
{
    const auto program = startedProgram();
    return program && foundFile(*program) == foundFile(m_program);
}

std::optional<QString> AutostartLoginItem::mend()
{
    const auto program = startedProgram();
    const bool isGone = program && !QFileInfo::exists(foundFile(*program));
    return isGone ? setEnabled(true) : std::nullopt;
}

std::optional<QString> AutostartLoginItem::setEnabled(bool isEnabled)
{
    if (!isEnabled) {
        QFile file(path());
        // A link to nowhere does not exist, and is in the way all the same.
        if ((file.exists() || QFileInfo(path()).isSymLink()) && !file.remove())
            return file.errorString();
        return std::nullopt;
    }
    if (!QDir().mkpath(m_folder))
        return QStringLiteral("The folder %1 cannot be created").arg(m_folder);
    QSaveFile file(path());
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    const QString entry = QStringLiteral("[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=Tovek\n"
                                         "Comment=Freeze the screen and copy or save a part of it\n"
                                         "Exec=%1 --background\n"
                                         "Icon=org.tovek.Tovek\n"
                                         "Terminal=false\n"
                                         "X-GNOME-Autostart-enabled=true\n")
                              .arg(execArgument(m_program));
    file.write(entry.toUtf8());
    // Committing alone takes no notice of what its own flush could not write (Qt 6.4.2).
    if (!file.flush() || !file.commit())
        return file.errorString();
    return std::nullopt;
}

void AutostartLoginItem::setWatching(bool isOn)
{
    if (!isOn) {
        m_watcher.reset();
        return;
    }
    m_watcher = std::make_unique<QFileSystemWatcher>();
    const auto changed = [this] {
        watch();
        if (onChanged)
            onChanged();
    };
    QObject::connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, m_watcher.get(),
                     changed);
    QObject::connect(m_watcher.get(), &QFileSystemWatcher::fileChanged, m_watcher.get(), changed);
    watch();
}

void AutostartLoginItem::watch()
{
    // The folder above tells when the folder comes; a file that was replaced is a new one.
    for (const QString &place : {QFileInfo(m_folder).path(), m_folder, path()}) {
        const bool isWatched =
            m_watcher->files().contains(place) || m_watcher->directories().contains(place);
        if (!isWatched && QFileInfo::exists(place))
            m_watcher->addPath(place);
    }
}

QString AutostartLoginItem::path() const
{
    return m_folder + QStringLiteral("/org.tovek.Tovek.desktop");
}

QString AutostartLoginItem::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/autostart");
}

QString AutostartLoginItem::standardProgram()
{
    const QString program = QCoreApplication::applicationFilePath();
    return appImageOf(program, QProcessEnvironment::systemEnvironment()).value_or(program);
}

} // namespace tovek
