// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QTest>

#include <memory>
#include <vector>

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

/// An implementation beside the fake, and why it cannot be had; empty when it can.
struct RealImplementation
{
    const char *name;
    QString missing;
};

/// The same where there are several real ones, told apart by `QFETCH_GLOBAL(QString,
/// implementation)`.
inline void addImplementations(const std::vector<RealImplementation> &real)
{
    QTest::addColumn<QString>("implementation");
    QTest::newRow("fake") << QStringLiteral("fake");
    for (const RealImplementation &one : real) {
        if (one.missing.isEmpty())
            QTest::newRow(one.name) << QString::fromLatin1(one.name);
        else
            qInfo("%s is left out: %s", one.name, qPrintable(one.missing));
    }
}

} // namespace tovek
