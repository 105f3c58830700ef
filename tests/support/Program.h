// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace tovek {

/// A program run by a test, with what it prints kept in files, so that it never waits for a
/// reader. It ends with this object, and with the test's process should that die.
class Program
{
public:
    /// Output goes to `<log>.out` and `<log>.err`; no log: it is dropped.
    explicit Program(const QString &log = {});
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    [[nodiscard]] bool start(const QString &path, const QStringList &arguments,
                             const QProcessEnvironment &environment);
    qint64 pid() const { return m_process.processId(); }
    bool isRunning() const;
    /// The complete lines of standard output so far.
    QStringList lines() const { return linesOf(QStringLiteral(".out")); }
    QStringList errorLines() const { return linesOf(QStringLiteral(".err")); }
    /// Waits for a line of standard output that begins with the text, from line number `first` on.
    [[nodiscard]] bool waitForLine(const QString &text,
                                   std::chrono::milliseconds deadline = std::chrono::seconds(10),
                                   qsizetype first = 0) const;
    void writeLine(const QByteArray &line);
    /// The exit code; 128 + the signal when one ended it; absent when it runs on.
    std::optional<int> waitForExit(std::chrono::milliseconds deadline = std::chrono::seconds(10));
    /// Asks it to end, by force after a while. The exit code as above.
    int stop();
    /// Passes this file descriptor on to the program under the same number.
    void passOn(int descriptor) { m_passedOn = descriptor; }

private:
    QStringList linesOf(const QString &suffix) const;

    QProcess m_process;
    QString m_log;
    int m_passedOn = -1;
};

} // namespace tovek
