// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/BundleInformation.h"
#include "app/Commands.h"
#include "app/Environment.h"
#include "app/HotkeyManager.h"
#include "app/KeyNames.h"
#include "app/PlatformFactory.h"
#include "app/QuitSignals.h"
#include "app/Relaunch.h"
#include "app/StartMessages.h"
#include "app/ToolkitThreads.h"
#include "app/ToolkitWatch.h"
#include "app/TovekApp.h"
#include "capture/SaveQueue.h"
#include "foundation/AppImage.h"
#include "foundation/HelperProgram.h"
#include "foundation/Log.h"
#include "foundation/Memory.h"
#include "foundation/ToolkitWithoutPortal.h"
#include "foundation/Unfinished.h"
#include "foundation/UserDefaults.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"
#include "platform/SingleInstance.h"

#include <QApplication>
#include <QProcessEnvironment>

#include <cstdlib>

namespace tovek {

namespace {

/// Without a program in builds that do not update themselves.
UpdateConfiguration updateConfiguration()
{
    using namespace std::chrono;
    const QString name = QStringLiteral(TOVEK_UPDATER);
    if (name.isEmpty())
        return {};
    return {helperProgram(name), BundleInformation::version(), hours(TOVEK_UPDATE_INTERVAL)};
}

/// False with the reason told, also to whoever asked for something.
bool hasDisplay(const Wish &wish)
{
    const QString reason = missingDisplay();
    if (reason.isEmpty())
        return true;
    logLine(reason);
    if (!wish.action.action.isEmpty())
        complain(reason);
    return false;
}

/// What the toolkit tells the desktop of the program, and when it ends.
void introduce()
{
    QApplication::setApplicationName(QStringLiteral("tovek"));
    QApplication::setApplicationVersion(BundleInformation::version());
    QApplication::setDesktopFileName(QStringLiteral("org.tovek.Tovek"));
    QApplication::setQuitOnLastWindowClosed(false);
}

/// Has the program start anew where the monitors come to need another window system.
void watchToolkit(ToolkitWatch &watch, EarlyPlatform &early, TovekApp &app)
{
    watch.isIdle = [&app] { return app.isIdle(); };
    watch.isOutdated = [&early] { return isToolkitOutdated(early); };
    watch.onOutdated = [&app] {
        logLine(QStringLiteral("The monitors have changed: starting anew for them"));
        const QString program = QCoreApplication::applicationFilePath();
        app.makeWayFor(
            appImageOf(program, QProcessEnvironment::systemEnvironment()).value_or(program));
    };
}

/// The program's life. `successor` becomes the program to run in place of this one, if any.
int run(int &argc, char **argv, const Wish &wish, QString &successor)
{
    EarlyPlatform early = makeEarlyPlatform();
    if (const auto status = leaveToTheFirst(*early.singleInstance, wish))
        return *status;
    if (!hasDisplay(wish))
        return 1;
    chooseToolkit(early);

    // The keys come first: everything after this takes longer than a user may wait.
    openKeyboard(early);
    UserDefaults defaults(UserDefaults::standardPath());
    KeyboardShortcuts::ShortcutService::setShared(
        std::make_unique<KeyboardShortcuts::ShortcutService>(defaults, *early.hotKeys,
                                                             *early.keyboardLayout));
    early.hotKeys->purposeOf = &HotkeyManager::purposeOf;
    HotkeyManager hotkeyManager;
    hotkeyManager.registerShortcuts();

    forgetImpossibleDensity(statedDotsPerInch(early));
    auto startMessages = std::make_unique<StartMessages>();
    QApplication application = makeApplication<QApplication>(argc, argv);
    startMessages.reset();
    keepToolkitThreads();
    introduce();
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
        ToolkitWatch toolkitWatch;
        watchToolkit(toolkitWatch, early, app);
        early.singleInstance->onReopen = [&] { delegate.applicationShouldHandleReopen(false); };
        early.singleInstance->onAction = [&](const QString &action, int delaySeconds) {
            delegate.performAction(action, delaySeconds);
        };
        delegate.applicationDidFinishLaunching(wish.inBackground ? AppDelegate::Launch::inBackground
                                                                 : AppDelegate::Launch::byUser,
                                               hotkeyManager);
        if (!wish.action.action.isEmpty())
            platform.clock->after(std::chrono::seconds(0), &app, [&] {
                delegate.performAction(wish.action.action, wish.action.delaySeconds);
            });
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
    forgetToolkit(early);
    return 0;
}

} // namespace

} // namespace tovek

int main(int argc, char **argv)
{
    tovek::shareHeap();
    const tovek::Command command = tovek::commandOf(argc, argv);
    const std::optional<tovek::Wish> wish = tovek::wishOf(command);
    if (!wish)
        return tovek::runCommand(command, argc, argv);
    tovek::survivePeopleWhoDoNotRead();
    tovek::forgetImpossibleEnvironment();
    QString successor;
    const int status = tovek::run(argc, argv, *wish, successor);
    if (!successor.isEmpty())
        tovek::becomeProgram(successor);
    // A save that was given up must not meet the end of what is global.
    if (!tovek::Unfinished::waitForAll(std::chrono::milliseconds(0)))
        std::_Exit(status);
    return status;
}
