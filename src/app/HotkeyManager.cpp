// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/HotkeyManager.h"

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "app/ProgramCommand.h"
#include "foundation/MainThread.h"

#include <QRegularExpression>

namespace tovek {

namespace {

struct Start
{
    const char *id, *title, *option;
};

const Start &startOf(CaptureMode mode)
{
    static constexpr Start normal{"start-capture", "Start Capture", "capture"};
    static constexpr Start image{"capture-image", "Capture Image", "capture-image"};
    static constexpr Start text{"capture-text", "Capture Text", "capture-text"};
    switch (mode) {
    case CaptureMode::normal:
        return normal;
    case CaptureMode::copyImage:
        return image;
    case CaptureMode::copyText:
        return text;
    }
    Q_UNREACHABLE();
}

QString forShell(QString program)
{
    static const QRegularExpression special(QStringLiteral("[^A-Za-z0-9_./-]"));
    if (!program.contains(special))
        return program;
    program.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + program + QLatin1Char('\'');
}

} // namespace

void HotkeyManager::registerShortcuts()
{
    Q_ASSERT(isMainThread());
    auto &service = KeyboardShortcuts::ShortcutService::shared();
    service.onPrepare = [this] {
        if (onPrepare)
            onPrepare();
    };
    for (const auto &[name, mode] : AppShortcuts::bindings()) {
        service.onKeyUp(name, [this, captureMode = mode] {
            if (onCapture)
                onCapture(captureMode);
        });
    }
}

std::optional<HotKeyPurpose> HotkeyManager::purposeOf(KeyCombo combo)
{
    const auto &service = KeyboardShortcuts::ShortcutService::shared();
    for (const auto &[name, mode] : AppShortcuts::bindings()) {
        const auto shortcut = service.shortcut(name);
        if (!shortcut || quint32(shortcut->carbonKeyCode) != combo.keyCode
            || quint32(shortcut->carbonModifiers) != combo.modifiers)
            continue;
        const Start &start = startOf(mode);
        return HotKeyPurpose{
            QString::fromLatin1(start.id), QString::fromLatin1(start.title),
            QStringLiteral("%1 --%2").arg(forShell(programCommand()), QLatin1String(start.option))};
    }
    return std::nullopt;
}

} // namespace tovek
