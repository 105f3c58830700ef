// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "ProcessFigures.h"

#include <QDir>
#include <QFile>

#include <ctime>

namespace tovek::bench {

namespace {

QList<QByteArray> linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
}

QList<QByteArray> mapsOf(pid_t process)
{
    return linesOf(QStringLiteral("/proc/%1/smaps").arg(process));
}

/// The first line of a mapping begins with its addresses; those of its figures with their names.
bool isHead(const QByteArray &line)
{
    return !line.isEmpty() && !(line[0] >= 'A' && line[0] <= 'Z');
}

QByteArray fileOf(const QByteArray &head)
{
    const qsizetype at = head.indexOf('/');
    return at < 0 ? QByteArray() : head.mid(at);
}

double megabytes(const QByteArray &line)
{
    return line.simplified().split(' ').value(1).toDouble() / 1024;
}

} // namespace

qint64 cpuNanoseconds(pid_t process)
{
    clockid_t clock;
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return 0;
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

qint64 mainThreadNanoseconds(pid_t process)
{
    const auto lines = linesOf(QStringLiteral("/proc/%1/task/%1/schedstat").arg(process));
    return lines.value(0).split(' ').value(0).toLongLong();
}

Switches switchesOf(pid_t process)
{
    const QString folder = QStringLiteral("/proc/%1/task").arg(process);
    Switches switches;
    for (const QString &thread : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QByteArray &line : linesOf(folder + '/' + thread + "/status")) {
            if (line.contains("ctxt_switches:"))
                switches[thread] += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return switches;
}

qint64 switchesBetween(const Switches &before, const Switches &after)
{
    qint64 sum = 0;
    for (const auto &[thread, count] : after) {
        const auto earlier = before.find(thread);
        sum += count - (earlier == before.end() ? 0 : earlier->second);
    }
    return sum;
}

std::set<QByteArray> mappedFiles(pid_t process)
{
    std::set<QByteArray> files;
    for (const QByteArray &line : mapsOf(process)) {
        if (isHead(line))
            files.insert(fileOf(line));
    }
    return files;
}

Memory memoryOf(pid_t process, const std::set<QByteArray> &filesOfOthers)
{
    Memory memory;
    bool isShared = false;
    for (const QByteArray &line : mapsOf(process)) {
        if (isHead(line)) {
            const QByteArray file = fileOf(line);
            isShared = !file.isEmpty() && filesOfOthers.contains(file);
        } else if (line.startsWith("Rss:")) {
            memory.rss += megabytes(line);
            memory.alone += isShared ? 0 : megabytes(line);
        } else if (line.startsWith("Pss:")) {
            memory.pss += megabytes(line);
            memory.alone += isShared ? megabytes(line) : 0;
        } else if (line.startsWith("Private_Dirty:")) {
            memory.privateDirty += megabytes(line);
        }
    }
    return memory;
}

} // namespace tovek::bench
