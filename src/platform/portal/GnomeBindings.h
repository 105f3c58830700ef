// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tovek {

/// A key that GNOME's settings daemon runs a command for, as its settings keep it.
struct GnomeBinding
{
    QString slot; ///< the last part of its place in the settings
    QString name;
    QString command;
    QString accelerator;

    bool operator==(const GnomeBinding &) const = default;
};

/// The custom shortcuts in GNOME's settings, by the command that is installed with them. Any
/// thread; each call takes a few hundredths of a second.
namespace GnomeBindings {

/// Whether the settings exist and can be changed.
bool areAvailable();
/// Ours become these, in what is not ours nothing changes. The reason when it did not work,
/// otherwise an empty text.
QString set(const QList<GnomeBinding> &bindings);
/// The accelerators of the custom shortcuts that are not ours.
QStringList accelerators();

/// The texts in a list as the settings print it.
QStringList listOf(const QString &printed);
/// A text, or a list of them, as the settings read it.
QString quoted(const QString &text);
QString quoted(const QStringList &texts);

} // namespace GnomeBindings

} // namespace tovek
