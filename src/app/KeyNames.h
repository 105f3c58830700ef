// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QTranslator>

namespace tovek {

/// Has menus call the key Super by the name that it has on this desktop; the toolkit says Meta.
class KeyNames : public QTranslator
{
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, "QShortcut") == 0 && qstrcmp(source, "Meta") == 0
            ? QStringLiteral("Super")
            : QString();
    }
};

} // namespace tovek
