// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QString>

#include <compare>
#include <optional>

namespace tovek {

/// "1.10.2" or "1.10.2-beta3". Missing numbers are zeros, so that 1.0 is 1.0.0; what follows a
/// hyphen comes before the release itself, ordered part by part, numbers as numbers.
class Version
{
public:
    /// Absent for anything else, and for more than six numbers, or one of more than nine digits.
    static std::optional<Version> fromString(const QString &text);

    std::strong_ordering operator<=>(const Version &other) const;
    bool operator==(const Version &other) const { return (*this <=> other) == 0; }

private:
    struct Part
    {
        int number = 0;
        QString word; ///< not empty where the part is no number
    };

    static std::strong_ordering compare(const Part &one, const Part &other);
    static QList<Part> partsOf(const QString &suffix);

    QList<int> m_numbers; ///< without zeros at the end
    QList<Part> m_suffix; ///< empty for a release
};

} // namespace tovek
