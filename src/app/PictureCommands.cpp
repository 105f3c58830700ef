// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/PictureCommands.h"

#include "app/PlatformFactory.h"
#include "capture/FileWriter.h"
#include "capture/PngEncoder.h"
#include "capture/SaveLocation.h"
#include "command/NewFile.h"
#include "command/PictureWords.h"
#include "command/ScreenShot.h"
#include "foundation/Log.h"
#include "foundation/ToolkitWithoutPortal.h"
#include "foundation/UserDefaults.h"
#include "platform/CapturePermission.h"
#include "platform/FrontmostApp.h"
#include "platform/ScreenGrabber.h"
#include "platform/TextRecognizer.h"

#include <QBuffer>
#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>

#include <unistd.h>

namespace tovek {

namespace {

const auto standardStream = QStringLiteral("-");

/// The reason when it could not be written, otherwise an empty text.
QString write(const QByteArray &png, const ShotCommand &command)
{
    if (command.output == standardStream)
        return writeTo(STDOUT_FILENO, png).value_or(QString());
    QString path = command.output;
    if (path.isEmpty())
        path = fileAt(saveLocationAt(QDateTime::currentDateTime(),
                                     UserDefaults(UserDefaults::standardPath())));
    if (!command.mayReplace && QFileInfo(path).isFile())
        return QStringLiteral("%1 exists already; --force replaces it").arg(path);
    const bool isReplaced = command.mayReplace && QFileInfo::exists(path);
    if (const auto error = isReplaced ? writeFile(path, png) : writeNewFile(path, png))
        return QStringLiteral("%1: %2").arg(path, *error);
    // Nobody knows the name but us.
    if (command.output.isEmpty())
        return writeTo(STDOUT_FILENO, path.toUtf8() + '\n').value_or(QString());
    return {};
}

} // namespace

QString runShot(const ShotCommand &command, int &argc, char **argv)
{
    logToStandardError();
    if (command.output == standardStream && isatty(STDOUT_FILENO))
        return QStringLiteral("a picture is nothing for a terminal; send it to a file");
    EarlyPlatform early;
    chooseToolkit(early);
    const QGuiApplication application = makeApplication<QGuiApplication>(argc, argv);
    const Platform platform = makeCapturePlatform(early);
    if (const CapturePermission *permission = platform.capturePermission.get();
        permission && !permission->hasAccess()) {
        const auto advice = permission->advice();
        return advice && advice->hasSettings
            ? QStringLiteral("the desktop was told to permit no screenshots; tovek --capture asks "
                             "again")
            : QStringLiteral("this session cannot be captured");
    }
    const Shot shot =
        takeShot(command, {*platform.screens, *platform.grabber, *platform.frontmostApp});
    if (!shot.error.isEmpty())
        return shot.error;
    PngOptions options;
    options.dotsPerInch = dotsPerInch(shot.image);
    const QByteArray png = encodePng(shot.image.bitmap, options);
    return png.isEmpty() ? QStringLiteral("there is not enough memory for the picture")
                         : write(png, command);
}

QString runWords(const WordsCommand &command, int &argc, char **argv)
{
    logToStandardError();
    const QCoreApplication application(argc, argv);
    QFile file(command.file);
    const bool isOpen = command.file == standardStream ? file.open(stdin, QIODevice::ReadOnly)
                                                       : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        return QStringLiteral("%1: %2").arg(command.file, file.errorString());
    QBuffer bytes; // a pipe cannot be looked at twice
    bytes.setData(file.readAll());
    QString error;
    const QImage picture = bytes.open(QIODevice::ReadOnly) ? readPicture(bytes, error) : QImage();
    if (picture.isNull())
        return QStringLiteral("%1: %2").arg(command.file, error);
    const auto recognizer = makeTextRecognizer();
    if (!recognizer)
        return QStringLiteral("this build recognises no text");
    const WordLines lines = recognizeWords(picture, *recognizer, error);
    if (!error.isEmpty())
        return error;
    const QByteArray text = wordsText(lines, picture.size(), command.format).toUtf8();
    return writeTo(STDOUT_FILENO, text).value_or(QString());
}

} // namespace tovek
