// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace tovek::bench {

/// Ends the process with the reason on standard error.
[[noreturn]] inline void giveUp(const QString &reason)
{
    std::fflush(stdout);
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, qPrintable(reason));
    std::exit(1);
}

/// Of a table of Markdown, with what its figures are.
inline void printHead(const char *title, const char *figures, const QStringList &columns)
{
    const QString line = columns.join(QStringLiteral(" | "));
    std::printf("\n## %s (%s)\n\n| %s |\n%s|\n", title, figures, qPrintable(line),
                qPrintable(QStringLiteral("|---").repeated(columns.size())));
}

/// Milliseconds that one call takes.
template <typename Call>
double millisecondsOf(const Call &call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

enum class Subject { tovek, floor };
inline constexpr Subject subjects[]{Subject::floor, Subject::tovek};

/// The figures of program and floor for one row of a table.
struct Pair
{
    std::vector<double> tovek, floor;

    void add(Subject subject, double value)
    {
        (subject == Subject::floor ? floor : tovek).push_back(value);
    }
};

/// Milliseconds of so many openings on a stage, after one that does not count.
template <typename Stage>
Pair timesOfOpening(Stage &stage, int runs)
{
    Pair times;
    for (int run = -1; run < runs; ++run) {
        for (const Subject subject : subjects) {
            const double time = stage.open(subject);
            stage.close();
            if (run >= 0)
                times.add(subject, time);
        }
    }
    return times;
}

} // namespace tovek::bench
