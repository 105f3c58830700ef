// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Program.h"

#include <QTemporaryDir>

#include <map>
#include <memory>
#include <vector>

namespace tovek {

/// What desktops of a test's own share that do not run as root: a home and a bus that nobody else
/// uses, and programs on them. A test that runs as root runs all of it as a user without rights.
class UserDesktop
{
public:
    QString error() const { return m_error; }
    const QProcessEnvironment &environment() const { return m_environment; }
    QString home() const { return m_folder.filePath(QStringLiteral("home")); }
    QString configFolder() const { return home() + QStringLiteral("/.config"); }
    QString downloads() const { return home() + QStringLiteral("/Downloads"); }

    /// A program on this desktop; null when it cannot be started. It ends with the desktop at the
    /// latest, the last one first.
    Program *run(const QString &path, const QStringList &arguments = {},
                 const std::map<QString, QString> &variables = {});
    /// What a program on this desktop prints until it ends; null when it fails.
    QByteArray output(const QString &path, const QStringList &arguments);
    /// A file of the home, owned by the desktop's user.
    bool writeFile(const QString &path, const QByteArray &bytes) const;

protected:
    UserDesktop() = default;
    ~UserDesktop() { endPrograms(); }

    /// Why there is no user to run as, or one of the programs is not installed; empty when all are.
    static QString missing(const QStringList &programs);
    bool fail(const QString &error);
    /// Of the temporary folder: home, run, log and the others; the variables that tell programs of
    /// them; and `more`.
    bool makeHome(const QStringList &folders, const std::map<QString, QString> &more);
    /// A message bus of this type ("session", "system") at run/NAME.
    bool startBus(const QString &name, const QString &type, const QString &services = {});
    /// To the desktop's user.
    static void giveAway(const QString &path);
    void endPrograms();

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;

private:
    static QStringList asUser(const QString &path, const QStringList &arguments);

    QString m_error;
    std::vector<std::unique_ptr<Program>> m_programs;
};

} // namespace tovek
