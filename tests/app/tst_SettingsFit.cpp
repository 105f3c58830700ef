// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AboutTabView.h"
#include "app/AppShortcuts.h"
#include "app/BundleInformation.h"
#include "app/GeneralTabView.h"
#include "app/SettingsWindow.h"
#include "app/ShortcutsTabView.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "look/Look.h"
#include "update/UpdaterManager.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace KeyboardShortcuts;

namespace {

QString nameOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->text();
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    return button && !button->text().isEmpty() ? button->text() : widget.accessibleName();
}

/// What the widget itself says that it needs.
QSize needOf(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    if (label && label->wordWrap())
        return {widget.minimumSizeHint().width(), label->heightForWidth(label->width())};
    return widget.minimumSizeHint().expandedTo(label ? label->sizeHint() : QSize());
}

QRect placeIn(const QWidget &window, const QWidget &widget)
{
    return {widget.mapTo(&window, QPoint()), widget.size()};
}

/// Every text and control of the window that is cut, reaches out of it or lies over another one.
QStringList misfits(const QWidget &window)
{
    QStringList found;
    QList<const QWidget *> shown;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        const bool isLeaf = qobject_cast<const QLabel *>(widget)
            || qobject_cast<const QAbstractButton *>(widget)
            || qobject_cast<const QLineEdit *>(widget);
        if (isLeaf && widget->isVisible() && !qobject_cast<QLineEdit *>(widget->parentWidget()))
            shown.append(widget);
    }
    for (const QWidget *widget : shown) {
        const QSize need = needOf(*widget);
        if (need.width() > widget->width() || need.height() > widget->height())
            found << QStringLiteral("%1 needs %2x%3 and has %4x%5")
                         .arg(nameOf(*widget))
                         .arg(need.width())
                         .arg(need.height())
                         .arg(widget->width())
                         .arg(widget->height());
        if (!window.rect().contains(placeIn(window, *widget)))
            found << nameOf(*widget) + QStringLiteral(" reaches out of the window");
        for (const QWidget *other : shown) {
            if (other != widget && placeIn(window, *other).intersects(placeIn(window, *widget)))
                found << nameOf(*widget) + QStringLiteral(" lies over ") + nameOf(*other);
        }
    }
    return found;
}

} // namespace

/// The windows with the fonts and the directions of reading that desktops have.
class TestSettingsFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("HOME", m_dir.path().toUtf8());
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("Downloads"))));
        ShortcutService::setShared(
            std::make_unique<ShortcutService>(m_defaults, m_hotKeys, m_layout));
        useModernLook();
    }
    void cleanupTestCase() { ShortcutService::setShared(nullptr); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
        QFETCH(QString, family);
        QFETCH(int, points);
        QFETCH(Qt::LayoutDirection, direction);
        if (!QFontDatabase::families().contains(family))
            QSKIP(qPrintable(family + QStringLiteral(" is not installed")));
        QApplication::setFont(QFont(family, points));
        QApplication::setLayoutDirection(direction);
    }

    void showsAllOfEveryTab_data() { addRows(); }
    void showsAllOfEveryTab()
    {
        AppState state;
        UpdaterManager manager({QStringLiteral("/bin/true"), QStringLiteral("1")}, m_updates,
                               m_clock);
        m_defaults.setString(QStringLiteral("saveFolderPath"),
                             m_dir.filePath(QStringLiteral("A folder that is far away/and deep")));
        SettingsWindow window(state, content(manager));
        window.show();
        auto *tabs = window.findChild<QTabWidget *>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            QApplication::processEvents();
            QTRY_COMPARE_WITH_TIMEOUT(misfits(window).join(QStringLiteral("; ")), QString(), 500);
            const QRect bar = tabs->tabBar()->tabRect(tab);
            const int text = tabs->tabBar()->fontMetrics().horizontalAdvance(tabs->tabText(tab));
            QVERIFY(tabs->tabBar()->rect().contains(bar));
            QVERIFY(bar.width() >= text + 15 && bar.height() >= tabs->fontMetrics().height());
        }
    }

    void showsAllOfARefusal_data() { addRows(); }
    void showsAllOfARefusal()
    {
        AppState state;
        state.setSelectedSettingsTab(SettingsTab::shortcuts);
        UpdaterManager manager({}, m_updates, m_clock);
        m_hotKeys.foreign = {{49, 0x1F00}, {105, 0}};
        m_hotKeys.holder = QStringLiteral("a window manager of a long name");
        auto &service = ShortcutService::shared();
        auto ignored = std::make_unique<LogCapture>();
        service.setShortcut(AppShortcuts::captureScreenshot(), Shortcut{49, 0x1F00});
        SettingsWindow window(state, content(manager));
        window.show();
        service.setShortcut(AppShortcuts::captureImage(), Shortcut{105, 0});
        ignored.reset();
        QApplication::processEvents();
        QTRY_COMPARE_WITH_TIMEOUT(misfits(window).join(QStringLiteral("; ")), QString(), 500);
        for (const auto *recorder : window.findChildren<RecorderCocoa *>()) {
            const QMargins room = recorder->textMargins();
            QVERIFY(recorder->fontMetrics().horizontalAdvance(recorder->displayText())
                    <= recorder->width() - room.left() - room.right());
        }
        service.setShortcut(AppShortcuts::captureScreenshot(), std::nullopt);
        service.setShortcut(AppShortcuts::captureImage(), std::nullopt);
        m_hotKeys.foreign.clear();
    }

    void showsAllOfAnAlert_data() { addRows(); }
    void showsAllOfAnAlert()
    {
        QWidget owner;
        AlertSheet sheet({QStringLiteral("This keyboard shortcut is already used by the desktop."),
                          QStringLiteral("Most of them can be changed in its settings."),
                          {QStringLiteral("OK"), QStringLiteral("Use Here Instead")},
                          AlertSheet::Style::warning},
                         owner);
        sheet.show();
        QApplication::processEvents();
        QTRY_COMPARE_WITH_TIMEOUT(misfits(sheet).join(QStringLiteral("; ")), QString(), 500);
    }

    void showsTheEndOfThePathAtItsEdge_data() { addRows(); }
    void showsTheEndOfThePathAtItsEdge()
    {
        UpdaterManager manager({}, m_updates, m_clock);
        GeneralTabView view({m_defaults, m_loginItem, manager, {}});
        view.show();
        QApplication::processEvents();
        // Symbols stand where reading begins, controls where it ends.
        QFETCH(Qt::LayoutDirection, direction);
        for (const auto *control : view.findChildren<QAbstractButton *>())
            QCOMPARE(control->geometry().center().x() > control->parentWidget()->width() / 2,
                     direction == Qt::LeftToRight);
    }

private:
    static void addRows()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("points");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        for (const char *family : {"DejaVu Sans", "Noto Sans", "Cantarell"}) {
            for (const int points : {10, 11, 13, 16}) {
                for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft})
                    QTest::addRow("%s %d%s", family, points,
                                  direction == Qt::LeftToRight ? "" : " right to left")
                        << QString::fromLatin1(family) << points << direction;
            }
        }
    }
    SettingsWindow::Content content(UpdaterManager &manager)
    {
        const auto make = [this, &manager](SettingsTab tab, QWidget *parent) -> QWidget * {
            if (tab == SettingsTab::general)
                return new GeneralTabView({m_defaults, m_loginItem, manager, {}}, parent);
            if (tab == SettingsTab::shortcuts)
                return new ShortcutsTabView(ShortcutService::shared(), {}, parent);
            return new AboutTabView(BundleInformation::standard(), {}, parent);
        };
        return {make, [](SettingsTab, const QWidget &) {
                    QPixmap symbol(15, 15);
                    symbol.fill(Qt::black);
                    return QIcon(symbol);
                }};
    }

    QTemporaryDir m_dir;
    UserDefaults m_defaults{m_dir.filePath(QStringLiteral("d.json"))};
    UserDefaults m_updates{m_dir.filePath(QStringLiteral("u.json"))};
    FakeClock m_clock;
    FakeHotKeys m_hotKeys;
    FakeKeyboardLayout m_layout;
    FakeLoginItem m_loginItem;
};

QTEST_MAIN(TestSettingsFit)
#include "tst_SettingsFit.moc"
