// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Program.h"

#include <QDBusConnection>
#include <QImage>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <vector>

namespace tovek {

/// A GNOME desktop of a test's own: the shell without a screen, with two monitors, XWayland, its
/// buses and services, and a home that nobody else uses. A test that runs as root runs all of it as
/// a user without rights. Takes some seconds to start.
class GnomeDesktop
{
public:
    GnomeDesktop();
    ~GnomeDesktop();

    /// The reason why this desktop cannot run on this machine; empty when it can.
    static QString missing();
    static QList<QRect> monitors() { return {{0, 0, 1600, 1200}, {1600, 0, 1280, 800}}; }

    [[nodiscard]] bool start();
    QString error() const { return m_error; }
    QString home() const { return m_folder.filePath(QStringLiteral("home")); }
    QStringList pictures() const;

    /// A program on this desktop; null when it cannot be started.
    Program *run(const QString &path, const QStringList &arguments = {},
                 const std::map<QString, QString> &variables = {});
    /// What a program on this desktop prints until it ends; null when it fails.
    QByteArray output(const QString &path, const QStringList &arguments);

    /// What a script in the shell says.
    QString evaluate(const QString &script) const;
    QString focusedTitle() const;
    /// The windows that no window manager places, by their titles.
    QStringList unmanagedTitles() const;
    /// The whole desktop as the shell sees it.
    QImage look();
    /// As the user, in the desktop's store of answers.
    bool permitScreenshots(const QString &appId) const;
    bool act(const QString &action) const;

    void key(int evdevCode, bool isDown) const;
    void tap(int evdevCode) const;
    void moveTo(QPoint at);
    void button(bool isDown) const;

private:
    bool fail(const QString &error);
    bool makeFolders();
    bool startBus(const QString &name, const QString &type, const QString &services);
    bool startShell();
    bool startHand();
    void callHand(const QString &method, const QVariantList &arguments) const;
    QStringList asUser(const QString &path, const QStringList &arguments) const;
    bool writeFile(const QString &path, const QByteArray &bytes) const;

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    QString m_error;
    std::vector<std::unique_ptr<Program>> m_programs;
    QDBusConnection m_bus;
    QString m_hand; ///< the session of remote control
    int m_pictures = 0;
};

} // namespace tovek
