// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/FolderDialog.h"

#include "app/FolderChooser.h"
#include "foundation/ToolkitWithoutPortal.h"
#include "look/Look.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QSettings>
#include <QTimer>
#include <QWindow>

#include <unistd.h>

namespace tovek {

FolderDialog::FolderDialog(const QString &start)
    : QFileDialog(nullptr, tr("Select the folder where screenshots will be saved"), start)
{
    setFileMode(QFileDialog::Directory);
    setOption(QFileDialog::ShowDirsOnly);
    setLabelText(QFileDialog::Accept, tr("Choose"));
}

void FolderDialog::setOwner(quint64 window)
{
    winId();
    QWindow *owner = QWindow::fromWinId(WId(window));
    if (!owner)
        return;
    windowHandle()->setTransientParent(owner);
    windowHandle()->setModality(Qt::WindowModal);
    connect(this, &QObject::destroyed, owner, &QObject::deleteLater);
}

int runFolderDialog(int &argc, char **argv)
{
    QApplication application = makeApplication<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tovek"));
    QApplication::setDesktopFileName(QStringLiteral("org.tovek.Tovek"));
    const QCommandLineOption start(QStringLiteral("start"), QString(), QStringLiteral("folder"));
    const QCommandLineOption window(QStringLiteral("window"), QString(), QStringLiteral("number"));
    const QCommandLineOption dark(QStringLiteral("dark"));
    const QCommandLineOption accent(QStringLiteral("accent"), QString(), QStringLiteral("color"));
    QCommandLineParser options;
    options.addOptions({start, window, dark, accent});
    options.process(application);
    useModernLook(options.isSet(dark) ? Windows::dark : Windows::asThePalette,
                  QColor(options.value(accent)));
    // The toolkit's dialog asks for every folder that any program ever kept in its side bar before
    // it shows itself.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));

    const auto giveSign = [] { return write(STDOUT_FILENO, "", 1) == 1; };
    QTimer sign;
    sign.callOnTimeout(giveSign);
    giveSign();
    sign.start(FolderChooser::signInterval);
    FolderDialog dialog(options.value(start));
    if (const quint64 owner = options.value(window).toULongLong())
        dialog.setOwner(owner);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return 1;
    const QByteArray folder = QFile::encodeName(dialog.selectedFiles().constFirst());
    const bool isTold =
        write(STDOUT_FILENO, folder.constData(), size_t(folder.size())) == ssize_t(folder.size());
    // What the dialog's own threads wait for may never come.
    std::_Exit(isTold ? 0 : 1);
}

} // namespace tovek
