// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/UpdateProgram.h"

#include "foundation/Log.h"
#include "foundation/ToolkitWithoutPortal.h"
#include "foundation/UserDefaults.h"
#include "look/Look.h"
#include "update/program/PackageOpener.h"
#include "update/program/UpdateSession.h"
#include "update/program/UpdateWindows.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QProcessEnvironment>
#include <QSocketNotifier>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

bool isPipe(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Calls back for each line that somebody writes into the pipe, and when its other end has closed.
void watchInput(QObject &context, std::function<void(const QByteArray &)> told,
                std::function<void()> closed)
{
    if (!isPipe(STDIN_FILENO))
        return;
    auto *notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &context);
    QObject::connect(notifier, &QSocketNotifier::activated, &context,
                     [notifier, told = std::move(told), closed = std::move(closed)] {
                         // Lines are short, and come in one piece.
                         char bytes[64];
                         const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
                         for (const QByteArray &line :
                              QByteArray(bytes, std::max<ssize_t>(count, 0)).split('\n')) {
                             if (!line.isEmpty())
                                 told(line);
                         }
                         if (count > 0)
                             return;
                         notifier->setEnabled(false);
                         closed();
                     });
}

QString memoryPath()
{
    return QFileInfo(UserDefaults::standardPath()).path() + QStringLiteral("/update-memory.json");
}

} // namespace

int runUpdateProgram(int &argc, char **argv, const UpdateBuild &build)
{
    QApplication application = makeApplication<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tovek"));
    QApplication::setDesktopFileName(QStringLiteral("org.tovek.Tovek"));
    // A window makes way for the next one; the session decides when it is over.
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    options.addOption({QStringLiteral("installed-version"), QString(), QStringLiteral("version")});
    options.addOption({QStringLiteral("quiet"), QString()});
    options.process(application);
    useModernLook();

    UpdateSession::Setup setup;
    setup.build = build;
    setup.installation = findInstallation(QApplication::applicationFilePath(),
                                          QProcessEnvironment::systemEnvironment());
    setup.installedVersion = options.value(QStringLiteral("installed-version"));
    setup.systemVersion = systemVersion();
    setup.isRequested = !options.isSet(QStringLiteral("quiet"));
    PackageOpener opener;
    setup.openPackage = [&opener](const QString &file, std::function<void(bool)> done) {
        opener.open(file, std::move(done));
    };
    UpdateWindows windows(setup.isRequested ? UpdateWindows::Arrival::inFront
                                            : UpdateWindows::Arrival::modest);
    UserDefaults memory(memoryPath());
    QNetworkAccessManager network;
    UpdateSession session(setup, windows, memory, network);
    QString successor;
    session.onInstalled = [&successor](const QString &program) { successor = program; };
    session.onEnded = [] { QCoreApplication::quit(); };
    session.onChecked = [] { logLine(QStringLiteral("checked")); };
    session.onOffered = [] { logLine(QStringLiteral("offered")); };
    const auto obey = [&windows](const QByteArray &line) {
        const QList<QByteArray> words = line.split(' ');
        const QColor accent(QString::fromLatin1(words.value(1)));
        if (words.first() == "dark" || words.first() == "light")
            useModernLook(words.first() == "dark" ? Windows::dark : Windows::asThePalette, accent);
        else
            windows.bringForward();
    };
    watchInput(session, obey, [&session] { session.cancel(); });
    // From the main loop, which alone can be quit.
    QMetaObject::invokeMethod(&session, &UpdateSession::start, Qt::QueuedConnection);
    QApplication::exec();
    if (!successor.isEmpty())
        logLine(QStringLiteral("relaunch ") + successor);
    return 0;
}

} // namespace tovek
