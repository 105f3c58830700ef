// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Draws the settings window's tabs, its alerts, the window that asks for permission and a toast
// into PNG files, for people to look at: settings_pictures FOLDER light|dark. The scale comes from
// QT_SCALE_FACTOR; -reverse mirrors them, and TOVEK_TEST_FONT="Noto Sans 14" gives their font.

#include "KeyboardShortcuts/AlertSheet.h"
#include "KeyboardShortcuts/Localization.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AboutTabView.h"
#include "app/AppShortcuts.h"
#include "app/BundleInformation.h"
#include "app/GeneralTabView.h"
#include "app/ShortcutsTabView.h"
#include "capture/PermissionManager.h"
#include "capture/PermissionWindowController.h"
#include "fakes/FakeCapturePermission.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFrontmostApp.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "fakes/FakeLoginItem.h"
#include "foundation/Symbol.h"
#include "foundation/UserDefaults.h"
#include "look/ModernStyle.h"
#include "update/UpdaterManager.h"

#include <QApplication>
#include <QDir>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>

using namespace tovek;
using namespace KeyboardShortcuts;

namespace {

QPalette darkPalette()
{
    QPalette palette(QColor(0x2b, 0x2b, 0x2e), QColor(0x26, 0x26, 0x28));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, QColor(0xf2, 0xf2, 0xf4));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    palette.setColor(QPalette::PlaceholderText, QColor(0xf2, 0xf2, 0xf4, 0x80));
    palette.setColor(QPalette::Highlight, QColor(0x0a, 0x84, 0xff));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QIcon symbolIcon(const char *name, const QPalette &palette)
{
    const auto symbol = Symbol::named(QLatin1String(name));
    return symbol ? QIcon(QPixmap::fromImage(
               symbol->image(15, qApp->devicePixelRatio(), palette.color(QPalette::WindowText))))
                  : QIcon();
}

class Pictures
{
public:
    Pictures(const QString &folder, const QString &look)
        : m_suffix(QStringLiteral("-%1@%2.png").arg(look).arg(qApp->devicePixelRatio()))
        , m_folder(folder)
    {
        m_layout.characters = {{34, QStringLiteral("i")}};
        qputenv("HOME", m_home.path().toUtf8());
        QDir().mkpath(m_home.filePath(QStringLiteral("Downloads")));
        ShortcutService::setShared(
            std::make_unique<ShortcutService>(m_defaults, m_hotKeys, m_layout));
    }
    ~Pictures() { ShortcutService::setShared(nullptr); }

    void take()
    {
        tabs(QStringLiteral("first-start"));
        m_loginItem.isOn = true;
        auto &service = ShortcutService::shared();
        service.setShortcut(AppShortcuts::captureScreenshot(), Shortcut{105, 0});
        service.setShortcut(AppShortcuts::captureImage(), Shortcut{34, 0x300});
        m_defaults.setString(QStringLiteral("saveFolderPath"),
                             m_home.filePath(QStringLiteral("Pictures/Screenshots of 2026")));
        tabs(QStringLiteral("in-use"));
        alert(QStringLiteral("hidden"),
              {QStringLiteral("Tovek Is Now Hidden"),
               QStringLiteral("To open preference window in the future, click Tovek's icon in your "
                              "Launchpad when Tovek is running."),
               {QStringLiteral("OK")}});
        const QString menuItem = localized(QStringLiteral("keyboard_shortcut_used_by_menu_item"));
        const QString ok = localized(QStringLiteral("ok"));
        alert(QStringLiteral("menu"),
              {menuItem.arg(QStringLiteral("Quit")), {}, {ok}, AlertSheet::Style::warning});
        alert(QStringLiteral("disallowed"),
              {localized(QStringLiteral("keyboard_shortcut_disallowed")),
               {},
               {ok},
               AlertSheet::Style::warning});
        alert(QStringLiteral("system"),
              {localized(QStringLiteral("keyboard_shortcut_used_by_system")),
               localized(QStringLiteral("keyboard_shortcuts_can_be_changed")),
               {ok, localized(QStringLiteral("force_use_shortcut"))},
               AlertSheet::Style::warning});
        permission();
    }

private:
    void tabs(const QString &state)
    {
        UpdaterManager manager({QStringLiteral("/bin/true"), QStringLiteral("1")}, m_updates,
                               m_clock);
        QWidget window;
        auto *tabs = new QTabWidget(&window);
        tabs->setDocumentMode(true);
        const QPalette palette = QApplication::palette();
        tabs->addTab(new GeneralTabView({m_defaults, m_loginItem, manager, {}}, tabs),
                     symbolIcon("gearshape", palette), QStringLiteral("General"));
        tabs->addTab(new ShortcutsTabView(ShortcutService::shared(), {}, tabs),
                     symbolIcon("command", palette), QStringLiteral("Shortcuts"));
        tabs->addTab(new AboutTabView(BundleInformation::standard(), {}, tabs),
                     symbolIcon("info.circle", palette), QStringLiteral("About"));
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 6, 0, 0);
        layout->addWidget(tabs);
        window.setFixedSize(QSize(450, 260).expandedTo(layout->totalMinimumSize()));
        window.show();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            QApplication::processEvents();
            save(window, tabs->tabText(tab).toLower() + QLatin1Char('-') + state);
        }
    }
    void alert(const QString &name, const AlertSheet::Content &content)
    {
        QWidget owner;
        owner.show();
        auto *sheet = new AlertSheet(content, owner);
        sheet->show();
        QApplication::processEvents();
        save(*sheet, QStringLiteral("alert-") + name);
    }
    void permission()
    {
        FakeCapturePermission permission;
        PermissionManager manager(permission);
        FakeFrontmostApp frontmost;
        PermissionWindowController controller(manager, frontmost, &symbolImage);
        controller.show();
        QApplication::processEvents();
        save(*controller.window(), QStringLiteral("permission"));
    }
    void save(QWidget &widget, const QString &name)
    {
        widget.grab().save(m_folder + QLatin1Char('/') + name + m_suffix);
    }

    QString m_suffix;
    QString m_folder;
    QTemporaryDir m_home;
    UserDefaults m_defaults{m_home.filePath(QStringLiteral("d.json"))};
    UserDefaults m_updates{m_home.filePath(QStringLiteral("u.json"))};
    FakeLoginItem m_loginItem;
    FakeClock m_clock;
    FakeHotKeys m_hotKeys;
    FakeKeyboardLayout m_layout;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Tovek"));
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    QApplication::setStyle(new ModernStyle); // owned by the application
    if (arguments[2] == QStringLiteral("dark"))
        QApplication::setPalette(darkPalette());
    if (const auto icon = Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg")))
        QApplication::setWindowIcon(QPixmap::fromImage(icon->image(128, 1, Qt::black)));
    const QString font = qEnvironmentVariable("TOVEK_TEST_FONT");
    if (!font.isEmpty())
        QApplication::setFont(QFont(font.section(QLatin1Char(' '), 0, -2),
                                    font.section(QLatin1Char(' '), -1).toInt()));
    Pictures(arguments[1], arguments[2]).take();
    return 0;
}
