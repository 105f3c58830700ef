// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "Measure.h"
#include "ProcessFigures.h"
#include "Scene.h"
#include "support/SelectionReader.h"
#include "support/TestDesktop.h"

#include <QJsonObject>

namespace tovek::bench {

/// A desktop full of photographic noise, with the program and its floor on it, and someone who
/// uses both in the same way, with real keys and a real mouse. What cannot be measured ends the
/// whole run with a line that says why.
class Stage
{
public:
    /// The picture is the whole desktop. The settings come on top of the shortcuts.
    explicit Stage(const QImage &picture, const QJsonObject &settings = {});

    /// The milliseconds until its key was taken (the floor's: until it said so).
    double start(Subject subject);
    void stop(Subject subject);
    /// A panel, a notification server and a sound server, of which the program has dealings with
    /// every one.
    void furnish();
    /// Milliseconds from the release of the subject's key until its overlay covered the screen.
    double open(Subject subject);
    /// Closes the overlay without a result.
    void close();
    /// Drags out a part of the screen and holds the button. The fractions are of the screen.
    void drag(double from, double to, int events, std::chrono::microseconds interval);
    void press(double at);
    void release() { m_scene->button(false); }
    /// Drags out all of the screen.
    void selectEverything();
    struct Result
    {
        double milliseconds;
        qsizetype bytes;
    };
    /// From Return until another client has the whole picture.
    Result copy();
    /// From Ctrl+S until the whole file is there.
    Result save(Subject subject);

    pid_t pid(Subject subject) const;
    Memory memory(Subject subject);
    Scene &scene() { return *m_scene; }
    QString displayName() const { return m_desktop.displayName(); }
    QSize size() const { return m_size; }

private:
    QPoint at(double fraction) const;
    Program *&program(Subject subject) { return m_programs[subject == Subject::floor]; }

    QSize m_size;
    TestDesktop m_desktop;
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<SelectionReader> m_reader;
    Program *m_programs[2]{};
    bool m_hasChecked[2]{};
};

void waitFor(std::chrono::microseconds time);

} // namespace tovek::bench
