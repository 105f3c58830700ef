// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/HotkeyManager.h"
#include "app/KeyNames.h"
#include "app/PlatformFactory.h"
#include "app/QuitSignals.h"
#include "app/Relaunch.h"
#include "app/StartMessages.h"
#include "app/TovekApp.h"
#include "capture/SaveQueue.h"
#include "foundation/Log.h"
#include "foundation/Memory.h"
#include "foundation/Unfinished.h"
#include "foundation/UserDefaults.h"
#include "platform/Clipboard.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"
#include "platform/SingleInstance.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdlib>
#include <cstring>

namespace tovek {

namespace {

/// True unless the toolkit would end the process for want of a display.
bool hasDisplay()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY")
        || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

/// Started by the session, not by a person.
bool isInBackground(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--background") == 0)
            return true;
    }
    return false;
}

/// What checks for updates lies beside the program, or in its libexec folder; an empty name in
/// builds that do not update themselves.
UpdateConfiguration updateConfiguration()
{
    using namespace std::chrono;
    const QString name = QStringLiteral(TOVEK_UPDATER);
    if (name.isEmpty())
        return {};
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString beside = folder.filePath(name);
    const QString installed = folder.filePath(QStringLiteral("../libexec/tovek/") + name);
    return {QFileInfo::exists(beside) ? beside : installed, QStringLiteral(TOVEK_VERSION),
            hours(TOVEK_UPDATE_INTERVAL)};
}

/// The program's life. `successor` becomes the program to run in place of this one, if any.
int run(int &argc, char **argv, QString &successor)
{
    const bool inBackground = isInBackground(argc, argv);
    EarlyPlatform early = makeEarlyPlatform();
    if (early.singleInstance->claim() == SingleInstance::Role::second) {
        // A session that starts what is running already has not asked for a window.
        if (!inBackground)
            early.singleInstance->reopenFirst();
        return 0;
    }
    if (!hasDisplay()) {
        logLine(QStringLiteral("No display: neither DISPLAY nor WAYLAND_DISPLAY is set"));
        return 1;
    }
    chooseToolkit(early);

    // The keys come first: everything after this takes longer than a user may wait.
    openKeyboard(early);
    UserDefaults defaults(UserDefaults::standardPath());
    KeyboardShortcuts::ShortcutService::setShared(
        std::make_unique<KeyboardShortcuts::ShortcutService>(defaults, *early.hotKeys,
                                                             *early.keyboardLayout));
    HotkeyManager hotkeyManager;
    hotkeyManager.registerShortcuts();

    auto startMessages = std::make_unique<StartMessages>();
    QApplication application(argc, argv);
    startMessages.reset();
    QApplication::setApplicationName(QStringLiteral("tovek"));
    QApplication::setApplicationVersion(QStringLiteral(TOVEK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("org.tovek.Tovek"));
    QApplication::setQuitOnLastWindowClosed(false);
    KeyNames keyNames;
    QApplication::installTranslator(&keyNames);
    Platform platform = makePlatform(early);
    bool isQuitting = false;
    const QuitSignals quitSignals([&] {
        if (!isQuitting) // it would end the waiting for what is not to be lost
            QCoreApplication::exit();
    });
    std::shared_ptr<SaveQueue> saves;
    {
        TovekApp app(platform, defaults, updateConfiguration());
        AppDelegate &delegate = app.appDelegate();
        early.singleInstance->onReopen = [&] { delegate.applicationShouldHandleReopen(false); };
        early.singleInstance->onAction = [&](const QString &action) {
            delegate.performAction(action);
        };
        delegate.applicationDidFinishLaunching(inBackground ? AppDelegate::Launch::inBackground
                                                            : AppDelegate::Launch::byUser,
                                               hotkeyManager);
        QApplication::exec();
        isQuitting = true;
        successor = app.successor();
        saves = delegate.saves();
        early.singleInstance->onReopen = nullptr;
        early.singleInstance->onAction = nullptr;
    }
    // Events are handled in there, and nobody is left whom a key could start.
    KeyboardShortcuts::ShortcutService::setShared(nullptr);
    platform.clipboard->handOver();
    // After the clipboard, which does not depend on a disk.
    saves.reset();
    return 0;
}

} // namespace

} // namespace tovek

int main(int argc, char **argv)
{
    tovek::shareHeap();
    QString successor;
    const int status = tovek::run(argc, argv, successor);
    if (!successor.isEmpty())
        tovek::becomeProgram(successor);
    // A save that was given up must not meet the end of what is global.
    if (!tovek::Unfinished::waitForAll(std::chrono::milliseconds(0)))
        std::_Exit(status);
    return status;
}
