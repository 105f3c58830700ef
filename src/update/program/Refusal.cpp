// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/Refusal.h"

#include <QCoreApplication>

namespace tovek {

namespace {

struct Text
{
    Refusal refusal;
    const char *text;
};

constexpr Text texts[]{
    {Refusal::notInstalled,
     QT_TRANSLATE_NOOP("Refusal",
                       "This copy of Tovek comes neither from an AppImage nor from a Debian "
                       "package, so there is no package to put in its place.")},
    {Refusal::unreachable,
     QT_TRANSLATE_NOOP("Refusal", "The update server could not be reached: %1")},
    {Refusal::insecure,
     QT_TRANSLATE_NOOP("Refusal",
                       "The update server led to an unencrypted address. Tovek did not go there.")},
    {Refusal::badAnswer,
     QT_TRANSLATE_NOOP("Refusal", "The update server answered with the error %1.")},
    {Refusal::silent,
     QT_TRANSLATE_NOOP("Refusal", "The update server stopped answering. Please try again later.")},
    {Refusal::cutOff,
     QT_TRANSLATE_NOOP(
         "Refusal",
         "The update server broke off in the middle of its answer. Please try again later.")},
    {Refusal::tooLong,
     QT_TRANSLATE_NOOP("Refusal",
                       "The update server sent more than there should be. Tovek threw it away.")},
    {Refusal::noFeed,
     QT_TRANSLATE_NOOP("Refusal", "What the update server sent is no list of versions.")},
    {Refusal::oldFeed,
     QT_TRANSLATE_NOOP("Refusal",
                       "The update server sent an older list of versions than before. Tovek does "
                       "not trust it, since it may hide a newer version.")},
    {Refusal::unsignedFeed,
     QT_TRANSLATE_NOOP(
         "Refusal",
         "The list of versions is not signed by the makers of Tovek. Tovek does not trust it.")},
    {Refusal::wrongLength,
     QT_TRANSLATE_NOOP(
         "Refusal",
         "The downloaded file does not have the length that was announced. Tovek threw it away.")},
    {Refusal::badSignature,
     QT_TRANSLATE_NOOP(
         "Refusal",
         "The downloaded file is not signed by the makers of Tovek. Tovek threw it away.")},
    {Refusal::wrongMachine,
     QT_TRANSLATE_NOOP("Refusal",
                       "The downloaded file is no program for this machine. Tovek threw it away.")},
    {Refusal::noRoom, QT_TRANSLATE_NOOP("Refusal", "There is not enough room for the update: %1.")},
    {Refusal::notWritten, QT_TRANSLATE_NOOP("Refusal", "The update could not be written: %1.")},
    {Refusal::noInstaller,
     QT_TRANSLATE_NOOP("Refusal",
                       "No program on this desktop installs packages. The verified update is %1.")},
};

} // namespace

QString explain(Refusal refusal, const QString &detail)
{
    for (const Text &text : texts) {
        if (text.refusal != refusal)
            continue;
        QString result = QCoreApplication::translate("Refusal", text.text);
        return result.replace(QLatin1String("%1"), detail);
    }
    Q_UNREACHABLE();
}

QString explain(NoOffer reason, const QString &installedVersion)
{
    switch (reason) {
    case NoOffer::upToDate:
        return QCoreApplication::translate("Refusal", "Tovek %1 is the newest version.")
            .arg(installedVersion);
    case NoOffer::needsNewerSystem:
        return QCoreApplication::translate(
            "Refusal", "There is a newer version of Tovek, but it needs a newer system than this.");
    case NoOffer::notForThisInstallation:
        return QCoreApplication::translate(
            "Refusal",
            "There is a newer version of Tovek, but not for this machine as the kind of "
            "package that this one was installed from.");
    case NoOffer::oldFeed:
        return explain(Refusal::oldFeed);
    }
    Q_UNREACHABLE();
}

} // namespace tovek
