// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Eye.h"
#include "support/Hand.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"

namespace tovek {

inline QList<SeenWindow> windowsTitled(const Eye &eye, const QString &title)
{
    QList<SeenWindow> found;
    for (const SeenWindow &window : eye.windows()) {
        if (window.title == title && window.windowClass.compare("tovek", Qt::CaseInsensitive) == 0)
            found.append(window);
    }
    return found;
}

/// The program as a person starts it, with its window.
struct Launched
{
    bool startDesktop(const DesktopPlan &plan = {})
    {
        desktop = std::make_unique<TestDesktop>(plan);
        if (!desktop->start())
            return false;
        eye = std::make_unique<Eye>(desktop->displayName());
        hand = std::make_unique<Hand>(desktop->displayName());
        return true;
    }
    bool start(const DesktopPlan &plan = {})
    {
        if (!startDesktop(plan))
            return false;
        program = launch();
        return program && isOpen("General");
    }
    Program *launch(const QStringList &arguments = {})
    {
        return desktop->run(path, arguments, variables);
    }
    bool isOpen(const char *title)
    {
        return waitUntil([&] { return windowsTitled(*eye, title).size() == 1; },
                         std::chrono::seconds(20));
    }
    /// Whether the window comes and gets the keyboard.
    bool isInFront(const char *title)
    {
        return waitUntil([&] { return eye->activeTitle() == QString::fromUtf8(title); },
                         std::chrono::seconds(20));
    }
    bool isClosed()
    {
        return waitUntil([&] {
            return windowsTitled(*eye, "General").isEmpty()
                && windowsTitled(*eye, "About").isEmpty();
        });
    }
    /// A method of the program's object on the session bus.
    bool call(const QStringList &call)
    {
        QStringList arguments{"call",          "--session",        "--dest",  "org.tovek.Tovek",
                              "--object-path", "/org/tovek/Tovek", "--method"};
        Program *gdbus = desktop->run("/usr/bin/gdbus", arguments + call);
        return gdbus && gdbus->waitForExit() == 0;
    }
    /// Whether it comes to answer commands. Without a window nothing else shows that it has
    /// started, and another start before that would be the first.
    bool answers()
    {
        return waitUntil([&] { return call({"org.freedesktop.DBus.Peer.Ping"}); },
                         std::chrono::seconds(20));
    }
    bool activateAction(const QString &action)
    {
        return call({"org.freedesktop.Application.ActivateAction", action, "[]", "{}"});
    }

    /// The one window of this title; empty when it does not come.
    SeenWindow window(const char *title)
    {
        return isOpen(title) ? windowsTitled(*eye, title).first() : SeenWindow();
    }

    QString path = qEnvironmentVariable("TOVEK_PROGRAM");
    std::map<QString, QString> variables;
    std::unique_ptr<TestDesktop> desktop;
    std::unique_ptr<Eye> eye;
    std::unique_ptr<Hand> hand;
    Program *program = nullptr;
};

} // namespace tovek
