// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XServer.h"

#include <QRect>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <vector>

namespace tovek {

class XConnection;

/// What a test desktop has.
struct DesktopPlan
{
    QSize size{1280, 800};
    int depth = 24;
    QString windowManager = QStringLiteral("openbox"); ///< empty: none
    bool hasBus = true;
    bool hasCompositor = false; ///< it gives windows shadows
    bool hasFades = false; ///< the compositor lets windows come and go softly as well
    std::vector<QRect> monitors; ///< native pixels, the first is primary; empty: one, of all pixels
};

/// A desktop of a test's own: X server, window manager, session bus, and a home that nobody else
/// uses. Everything in it ends with it and leaves no file behind.
class TestDesktop
{
public:
    explicit TestDesktop(DesktopPlan plan = {});
    ~TestDesktop();

    /// The reason why this desktop cannot run on this machine; empty when it can.
    static QString missing(const DesktopPlan &plan = {});

    [[nodiscard]] bool start();
    QString error() const { return m_error; }

    XServer &server() { return m_server; }
    /// The session bus; null where there is none.
    Program *bus() const { return m_bus; }
    /// A new one in the place of one that has died.
    [[nodiscard]] bool startBus();
    QString displayName() const { return m_server.displayName(); }
    /// What programs on this desktop are started with; nothing of the test's own session.
    const QProcessEnvironment &environment() const { return m_environment; }
    QString home() const { return m_folder.filePath(QStringLiteral("home")); }
    QString configFolder() const { return home() + QStringLiteral("/.config"); }
    QString downloads() const { return home() + QStringLiteral("/Downloads"); }
    /// The only services that the bus starts by itself; none until a test puts them there.
    QString services() const { return home() + QStringLiteral("/.local/share/dbus-1/services"); }

    /// A program on this desktop; null when it cannot be started. It ends with the desktop at the
    /// latest, the last one first.
    Program *run(const QString &path, const QStringList &arguments = {},
                 const std::map<QString, QString> &variables = {});
    /// A window without a frame, with noise like a photograph's and text in it, painted when this
    /// returns. Line "invert" on its input repaints it inverted. Null when it did not come.
    Program *showPicture(QRect native, const QStringList &more = {});

    /// Adds, moves or removes a monitor while the desktop runs.
    [[nodiscard]] bool setMonitor(const QString &name, QRect native, bool isPrimary = false);
    [[nodiscard]] bool removeMonitor(const QString &name);
    /// `monitor0`, `monitor1`, ... in the order of the plan.
    static QString monitorName(int index);

private:
    bool fail(const QString &error);
    bool startWindowManager();
    bool setMonitors();

    DesktopPlan m_plan;
    QTemporaryDir m_folder;
    XServer m_server;
    QProcessEnvironment m_environment;
    QString m_error;
    /// Open to the end. Of a connection that closes, the next one gets the identifiers: the window
    /// manager then took a picture for the window that it had been tried with, and kept its size.
    std::unique_ptr<XConnection> m_watcher;
    std::vector<std::unique_ptr<Program>> m_programs;
    Program *m_bus = nullptr;
};

} // namespace tovek
