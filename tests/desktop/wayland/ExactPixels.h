// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <vector>

namespace tovek {

inline WaylandPlan onKWin(std::vector<WaylandMonitor> monitors)
{
    return {std::move(monitors), false, WaylandPlan::Compositor::kwin};
}

/// Opening and leaving the overlays changes no pixel of any output.
inline void verifyThatOpeningChangesNothing(WaylandSession &session)
{
    QVERIFY(session.open("start-capture", int(session.plan.monitors.size()) - 1));
    for (int look = 0; look < 3; ++look) {
        for (int i = 0; i < session.before.size(); ++i)
            QCOMPARE(WaylandSession::differences(session.desktop.look(i), session.before[i]), 0);
    }
    QVERIFY(session.tap("Escape"));
    for (int i = 0; i < session.before.size(); ++i)
        QTRY_COMPARE(differentPixels(session.desktop.look(i), session.before[i]), 0);
}

/// In points. All that is dragged below lies within, and each look takes all of it.
constexpr QSize roomForDrags(640, 480);

struct Drag
{
    const char *name;
    QPointF from, to; ///< pixels
};

/// In all four directions, and to each edge of an output that can be reached.
inline std::vector<Drag> dragsOn(QSize size, double scale)
{
    // The pointer moves in points; places that are whole in both at each scale are exact.
    const auto at = [&](int x, int y) { return QPointF(x, y) * scale; };
    std::vector<Drag> drags{
        {"down and right", at(200, 104), at(420, 308)},
        {"up and left", at(420, 308), at(200, 104)},
        {"up and right", at(200, 308), at(420, 104)},
        {"down and left", at(420, 104), at(200, 308)},
        {"from the left edge", at(0, 300), at(156, 424)},
        {"from the top edge", at(400, 0), at(516, 132)},
    };
    // sway 1.7 keeps the pointer a whole point away from these edges.
    if (scale == 1) {
        drags.push_back({"to the right edge", at(300, 300), {double(size.width()), 380}});
        drags.push_back({"to the bottom edge", at(300, 200), {420, double(size.height())}});
    }
    return drags;
}

/// What is copied are the pixels that were there, also when the last copy was a moment ago.
inline void verifyThatCopiesAreExact(WaylandSession &session)
{
    const int last = int(session.plan.monitors.size()) - 1;
    const QSize size = session.before[last].size();
    for (const Drag &drag : dragsOn(size, session.plan.monitors[size_t(last)].scale)) {
        QVERIFY2(session.openAgain(), drag.name);
        session.select(last, drag.from, drag.to);
        QVERIFY2(session.tap("Return"), drag.name);
        const QImage image = session.pasted();
        const QImage expected = session.expected(last, QRectF(drag.from, drag.to).normalized());
        const QString what = QStringLiteral("%1: %2 x %3 pixels for %4 x %5, %6 of them different")
                                 .arg(QLatin1String(drag.name))
                                 .arg(image.width())
                                 .arg(image.height())
                                 .arg(expected.width())
                                 .arg(expected.height())
                                 .arg(differentPixels(image, expected));
        QVERIFY2(differentPixels(image, expected) == 0, qPrintable(what));
    }
}

/// Both on one desktop, which takes longer to start than either.
inline void verifyExactness(const WaylandPlan &plan)
{
    WaylandSession session(plan);
    QVERIFY2(session.start(), qPrintable(session.error));
    verifyThatOpeningChangesNothing(session);
    if (!QTest::currentTestFailed())
        verifyThatCopiesAreExact(session);
}

} // namespace tovek
