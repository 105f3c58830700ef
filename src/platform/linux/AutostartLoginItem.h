// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/LoginItem.h"

#include <memory>

class QFileSystemWatcher;

namespace tovek {

/// An XDG autostart entry, which starts the program without its window. An entry that is hidden,
/// that the desktop's own settings switched off, or that starts another program, counts as off.
class AutostartLoginItem : public LoginItem
{
public:
    /// The folder of autostart entries, which need not exist, and the program to start.
    AutostartLoginItem(QString folder, QString program);
    ~AutostartLoginItem() override;

    bool isEnabled() const override;
    [[nodiscard]] std::optional<QString> setEnabled(bool isEnabled) override;
    [[nodiscard]] std::optional<QString> mend() override;
    void setWatching(bool isOn) override;

    /// $XDG_CONFIG_HOME/autostart, with the usual fallback to ~/.config.
    static QString standardFolder();
    /// What stays when this process ends: the AppImage, where it runs from one.
    static QString standardProgram();

private:
    /// The program that the desktop would start; absent when it would start none.
    std::optional<QString> startedProgram() const;
    QString path() const;
    void watch();

    QString m_folder;
    QString m_program;
    std::unique_ptr<QFileSystemWatcher> m_watcher;
};

} // namespace tovek
