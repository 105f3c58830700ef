// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Settings.h"
#include "foundation/UserDefaults.h"
#include "fuzz/FuzzInput.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

using namespace tovek;

namespace {

/// In memory, where the system has files there.
QTemporaryDir &folder()
{
    static QTemporaryDir dir(QFile::exists("/dev/shm") ? "/dev/shm/tovek-fuzz-XXXXXX"
                                                       : QDir::tempPath() + "/tovek-fuzz-XXXXXX");
    return dir;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // The lines of the log are not what is looked at.
    return dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO) < 0;
}

/// Whatever stands in the file: what the program stores afterwards is there, so is all that it
/// does not know, and nothing that it could not read is lost.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = folder().filePath(QStringLiteral("defaults.json"));
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    const QJsonDocument before = QJsonDocument::fromJson(bytes);

    UserDefaults defaults(path);
    const bool wasShown = Settings::showInMenuBar.in(defaults);
    Settings::saveFolderPath.set(defaults, QStringLiteral("/ä"));
    UserDefaults again(path);
    require(Settings::saveFolderPath.in(again) == QStringLiteral("/ä"));
    require(Settings::showInMenuBar.in(again) == wasShown);
    if (before.isObject()) {
        QJsonObject expected = before.object();
        expected.insert(QLatin1String(Settings::saveFolderPath.key), QStringLiteral("/ä"));
        require(QJsonDocument::fromJson(contentOf(path)).object() == expected);
    } else {
        require(contentOf(path + QStringLiteral(".broken")) == bytes);
    }
    QFile::remove(path + QStringLiteral(".broken"));
    return 0;
}
