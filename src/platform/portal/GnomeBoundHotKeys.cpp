// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/GnomeBoundHotKeys.h"

#include "foundation/AskAside.h"
#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "platform/linux/Accelerator.h"
#include "platform/linux/DesktopShortcuts.h"
#include "platform/linux/GSettingsTool.h"
#include "platform/portal/GnomeBindings.h"
#include "platform/portal/HostAppId.h"

#include <algorithm>
#include <utility>

namespace tovek {

namespace {

constexpr int bindingPatienceMs = 2000;

/// Of the desktop itself, and of other programs.
QStringList usedAccelerators()
{
    QStringList used = GnomeBindings::accelerators();
    const auto printed = askGSettings({QStringLiteral("list-recursively")}, bindingPatienceMs);
    const auto entries = DesktopShortcuts::fromGSettings(printed.value_or(QString()));
    for (const DesktopShortcuts::Entry &entry : entries)
        used << entry.accelerator;
    return used;
}

} // namespace

std::unique_ptr<GnomeBoundHotKeys> GnomeBoundHotKeys::create(const KeyboardLayout &layout)
{
    if (isInSandbox() || !GnomeBindings::areAvailable())
        return nullptr;
    return std::unique_ptr<GnomeBoundHotKeys>(new GnomeBoundHotKeys(layout));
}

void GnomeBoundHotKeys::ask()
{
    if (std::exchange(m_isWriting, true)) {
        m_isOutdated = true;
        return;
    }
    m_isOutdated = false;
    whenFinished(askAside<QStringList>(&usedAccelerators), this,
                 [this](const QStringList &accelerators) { write(accelerators); });
}

void GnomeBoundHotKeys::write(const QStringList &accelerators)
{
    QList<KeyCombo> held;
    QList<GnomeBinding> bindings;
    for (const auto &[id, combo] : wanted()) {
        const auto purpose = purposeOf ? purposeOf(combo) : std::nullopt;
        if (isHeldByDesktop(combo, accelerators))
            held << combo;
        else if (purpose)
            bindings << GnomeBinding{purpose->id, QStringLiteral("Tovek: ") + purpose->title,
                                     purpose->command, acceleratorOf(combo, layout())};
    }
    whenFinished(askAside<QString>([bindings] { return GnomeBindings::set(bindings); }), this,
                 [this](const QString &error) {
                     if (!error.isEmpty())
                         logLine(QStringLiteral("Failed to set the shortcuts: ") + error);
                     m_isWriting = false;
                     if (m_isOutdated)
                         ask();
                 });
    for (const KeyCombo combo : std::as_const(held))
        refuse(combo);
}

bool GnomeBoundHotKeys::isHeldByDesktop(KeyCombo combo, const QStringList &accelerators) const
{
    return std::any_of(accelerators.begin(), accelerators.end(), [&](const QString &accelerator) {
        return isAccelerator(accelerator, combo, layout());
    });
}

} // namespace tovek
