// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QTest>

#include <memory>

namespace tovek {

/// For initTestCase_data of a test whose claims hold for a port's fake and for the real thing: all
/// of it runs once with each. `missing` is why the real one cannot be had, empty when it can.
inline void addImplementations(const QString &missing)
{
    QTest::addColumn<bool>("isReal");
    QTest::newRow("fake") << false;
    if (missing.isEmpty())
        QTest::newRow("x11") << true;
    else
        qInfo("The X11 ones are left out: %s", qPrintable(missing));
}

/// For init of such a test: the surroundings of the implementation whose turn it is.
template <typename Desk, typename FakeDesk, typename RealDesk>
std::unique_ptr<Desk> makeDesk()
{
    QFETCH_GLOBAL(bool, isReal);
    if (isReal)
        return std::make_unique<RealDesk>();
    return std::make_unique<FakeDesk>();
}

} // namespace tovek
