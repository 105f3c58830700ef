// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateChoice.h"

#include <algorithm>

namespace tovek {

namespace {

const UpdatePackage *packageFor(const UpdateItem &item, const UpdateSituation &situation)
{
    const auto found =
        std::find_if(item.packages.begin(), item.packages.end(), [&](const UpdatePackage &package) {
            return package.kind == situation.kind && package.architecture == situation.architecture;
        });
    return found == item.packages.end() ? nullptr : &*found;
}

bool isSkipped(const UpdateItem &item, const UpdateSituation &situation)
{
    return !situation.isRequested && situation.skipped && item.version <= *situation.skipped;
}

} // namespace

std::variant<UpdateOffer, NoOffer> chooseUpdate(const UpdateFeed &feed,
                                                const UpdateSituation &situation)
{
    if (situation.newestFeed.isValid() && feed.date < situation.newestFeed)
        return NoOffer::oldFeed;
    const UpdateItem *best = nullptr;
    NoOffer reason = NoOffer::upToDate;
    for (const UpdateItem &item : feed.items) {
        if (item.version <= situation.installed || isSkipped(item, situation))
            continue;
        if (!packageFor(item, situation))
            reason = NoOffer::notForThisInstallation;
        else if (item.minimumSystem && *item.minimumSystem > situation.system)
            reason = NoOffer::needsNewerSystem;
        else if (!best || item.version > best->version)
            best = &item;
    }
    if (!best)
        return reason;
    return UpdateOffer{*best, *packageFor(*best, situation)};
}

} // namespace tovek
