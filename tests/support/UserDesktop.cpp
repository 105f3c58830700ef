// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/UserDesktop.h"

#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

namespace tovek {

namespace {

const char busConfiguration[] = R"(<busconfig><type>%1</type><listen>unix:path=%2</listen>
<auth>EXTERNAL</auth>%3<policy context="default"><allow user="*"/>
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>)";

bool isRoot()
{
    return geteuid() == 0;
}

/// Known to the machine by a name: XWayland trusts nobody else.
const passwd *userWithoutRights()
{
    static const passwd *const user = getpwnam("nobody");
    return user;
}

} // namespace

QString UserDesktop::missing(const QStringList &programs)
{
    for (const QString &name : programs + QStringList{QStringLiteral("setpriv")}) {
        if (QStandardPaths::findExecutable(name).isEmpty())
            return name + QStringLiteral(" is not installed");
    }
    return isRoot() && !userWithoutRights() ? QStringLiteral("there is no user \"nobody\"")
                                            : QString();
}

bool UserDesktop::fail(const QString &error)
{
    m_error = error;
    return false;
}

void UserDesktop::giveAway(const QString &path)
{
    if (isRoot() && userWithoutRights())
        (void)!chown(QFile::encodeName(path).constData(), userWithoutRights()->pw_uid,
                     userWithoutRights()->pw_gid);
}

bool UserDesktop::makeHome(const QStringList &folders, const std::map<QString, QString> &more)
{
    if (!m_folder.isValid())
        return fail(m_folder.errorString());
    giveAway(m_folder.path());
    const QStringList all =
        QStringList{"home",        "home/.config",   "home/.local", "home/.local/share",
                    "home/.cache", "home/Downloads", "run",         "log"}
        + folders;
    for (const QString &name : all) {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        giveAway(path);
    }
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (own.contains(QLatin1String(name)))
            m_environment.insert(QLatin1String(name), own.value(QLatin1String(name)));
    }
    const std::map<const char *, QString> values{
        {"HOME", home()},
        {"XDG_RUNTIME_DIR", m_folder.filePath(QStringLiteral("run"))},
        {"XDG_CONFIG_HOME", configFolder()},
        {"XDG_DATA_HOME", home() + QStringLiteral("/.local/share")},
        {"XDG_CACHE_HOME", home() + QStringLiteral("/.cache")},
        {"XDG_SESSION_TYPE", QStringLiteral("wayland")},
        {"LANG", QStringLiteral("C.UTF-8")},
        {"LIBGL_ALWAYS_SOFTWARE", QStringLiteral("1")},
    };
    for (const auto &[name, value] : values)
        m_environment.insert(QLatin1String(name), value);
    for (const auto &[name, value] : more)
        m_environment.insert(name, value);
    return true;
}

bool UserDesktop::startBus(const QString &name, const QString &type, const QString &services)
{
    const QString socket = m_folder.filePath(QStringLiteral("run/") + name);
    const QString file = home() + QStringLiteral("/%1.conf").arg(name);
    const QString text = QString::fromLatin1(busConfiguration).arg(type, socket, services);
    if (!writeFile(file, text.toUtf8()))
        return fail(QStringLiteral("cannot write ") + file);
    if (!run(QStringLiteral("dbus-daemon"),
             {QStringLiteral("--config-file=") + file, QStringLiteral("--nofork"),
              QStringLiteral("--nopidfile")}))
        return false;
    return waitUntil([&] { return QFile::exists(socket); })
        || fail(QStringLiteral("dbus-daemon did not get ready"));
}

void UserDesktop::endPrograms()
{
    while (!m_programs.empty())
        m_programs.pop_back();
}

QStringList UserDesktop::asUser(const QString &path, const QStringList &arguments)
{
    QStringList command{path};
    if (isRoot())
        command = QStringList{QStringLiteral("setpriv"),
                              QStringLiteral("--reuid=%1").arg(userWithoutRights()->pw_uid),
                              QStringLiteral("--regid=%1").arg(userWithoutRights()->pw_gid),
                              QStringLiteral("--clear-groups"),
                              QStringLiteral("--pdeathsig=SIGTERM"),
                              path};
    return command + arguments;
}

Program *UserDesktop::run(const QString &path, const QStringList &arguments,
                          const std::map<QString, QString> &variables)
{
    QProcessEnvironment environment = m_environment;
    for (const auto &[name, value] : variables)
        environment.insert(name, value);
    auto program = std::make_unique<Program>(
        m_folder.filePath(QStringLiteral("log/%1").arg(m_programs.size())));
    QStringList command = asUser(path, arguments);
    const QString first = command.takeFirst();
    if (!program->start(first, command, environment)) {
        fail(path + QStringLiteral(" cannot be started"));
        return nullptr;
    }
    m_programs.push_back(std::move(program));
    return m_programs.back().get();
}

QByteArray UserDesktop::output(const QString &path, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    QStringList command = asUser(path, arguments);
    const QString first = command.takeFirst();
    process.start(first, command);
    if (!process.waitForFinished(20000) || process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

bool UserDesktop::writeFile(const QString &path, const QByteArray &bytes) const
{
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    giveAway(path);
    return isWritten;
}

} // namespace tovek
