// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/Environment.h"

#include "foundation/Log.h"

#include <QList>

#include <algorithm>

namespace tovek {

namespace {

constexpr double leastScale = 0.25;
constexpr double mostScale = 8;
constexpr int usualDotsPerInch = 96; ///< at which the toolkit's scale is 1

constexpr const char *baseFolders[] = {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                       "XDG_STATE_HOME", "XDG_RUNTIME_DIR"};

void forget(const char *name, const char *reason)
{
    logLine(QStringLiteral("%1=%2 is ignored: %3")
                .arg(QLatin1String(name), qEnvironmentVariable(name), QLatin1String(reason)));
    qunsetenv(name);
}

/// Factors separated by semicolons, each after the name of a screen or alone.
bool areAllPossible(const QByteArray &factors)
{
    const QList<QByteArray> all = factors.split(';');
    return std::all_of(all.begin(), all.end(), [](const QByteArray &factor) {
        return factor.isEmpty() || isPossibleScale(factor.mid(factor.lastIndexOf('=') + 1));
    });
}

} // namespace

bool isPossibleScale(const QByteArray &text)
{
    bool isNumber = false;
    const double scale = text.toDouble(&isNumber);
    return isNumber && scale >= leastScale && scale <= mostScale; // false for what is no number
}

bool isPossibleDensity(double dotsPerInch)
{
    if (dotsPerInch <= usualDotsPerInch * mostScale)
        return true;
    logLine(QStringLiteral("%1 dots per inch are ignored: no window can be drawn at this scale")
                .arg(dotsPerInch));
    return false;
}

void forgetImpossibleDensity(double dotsPerInch)
{
    if (!isPossibleDensity(dotsPerInch))
        qputenv("QT_FONT_DPI", QByteArray::number(usualDotsPerInch));
}

void forgetImpossibleEnvironment()
{
    for (const char *name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS"}) {
        if (!areAllPossible(qgetenv(name)))
            forget(name, "no window can be drawn at this scale");
    }
    if (qEnvironmentVariableIntValue("QT_FONT_DPI") > usualDotsPerInch * mostScale)
        forget("QT_FONT_DPI", "no window can be drawn at this scale");
    for (const char *name : baseFolders) {
        const QByteArray folder = qgetenv(name);
        if (!folder.isEmpty() && !folder.startsWith('/'))
            forget(name, "it is not an absolute path");
    }
}

} // namespace tovek
