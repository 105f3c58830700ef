// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "app/FolderChooser.h"
#include "app/SaveFolder.h"
#include "foundation/HelperProgram.h"

#include <QFuture>
#include <QWidget>

#include <functional>

class QPushButton;

namespace tovek {

class FormRow;
class FrontmostApp;
class LoginItem;
class SwitchControl;
class UpdaterManager;
class UserDefaults;

/// The tab of the settings that are not shortcuts. Every change acts at once.
class GeneralTabView : public QWidget
{
    Q_OBJECT

public:
    struct Services
    {
        UserDefaults &defaults;
        LoginItem &loginItem;
        UpdaterManager &updaterManager;
        std::function<void(bool isVisible)> setStatusItemVisible;
        const FrontmostApp *frontmostApp = nullptr; ///< may be missing
        QString folderDialog = helperProgram(QStringLiteral("tovek-folder"));
    };

    /// The services must outlive the view.
    explicit GeneralTabView(const Services &services, QWidget *parent = nullptr);
    ~GeneralTabView() override;

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    SwitchControl *addSwitch(FormRow *row, bool isOn);
    void addFolderRow(FormRow *row);
    void addUpdatesRow(FormRow *row);
    /// Shows what is really there now, which others may have changed.
    void refresh();
    void askFolder();
    void showFolder(const FolderReport &report);
    /// Beside the folder until the next choice.
    void showChooserNote(const QString &note);
    void setLaunchAtLogin(bool isOn);
    void setShownInMenuBar(bool isOn);
    void chooseFolder();

    Services m_services;
    FolderReport m_folder;
    QString m_askedFolder; ///< as it is stored
    QString m_chooserNote; ///< of the last choice; mostly empty
    QFuture<FolderReport> m_answer;
    FolderChooser m_chooser;
    FormRow *m_loginRow = nullptr;
    SwitchControl *m_launchAtLogin = nullptr;
    FormRow *m_folderRow = nullptr;
    QPushButton *m_folderButton = nullptr;
    class ElidedLabel;
    ElidedLabel *m_folderPath = nullptr;
};

} // namespace tovek
