// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateFeed.h"

namespace tovek {

/// What a check starts from.
struct UpdateSituation
{
    Version installed;
    Version system; ///< of the C library
    PackageKind kind = PackageKind::appImage; ///< how the program is installed
    QString architecture; ///< of the machine
    QDateTime newestFeed; ///< date of the newest feed seen so far; invalid when none was
    std::optional<Version> skipped; ///< what the user does not want to hear of
    bool isRequested = false; ///< by the user, who then is told of a skipped version, too
};

/// A version to offer, with the one package that fits.
struct UpdateOffer
{
    UpdateItem item;
    UpdatePackage package;
};

enum class NoOffer { upToDate, needsNewerSystem, notForThisInstallation, oldFeed };

/// The newest version that is greater than the installed one and runs here. A feed older than one
/// already seen is not looked at: somebody may be hiding a version that mends something.
std::variant<UpdateOffer, NoOffer> chooseUpdate(const UpdateFeed &feed,
                                                const UpdateSituation &situation);

} // namespace tovek
