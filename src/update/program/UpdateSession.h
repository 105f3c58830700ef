// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/program/Download.h"
#include "update/program/Installation.h"
#include "update/program/PackageFile.h"
#include "update/program/UpdateBuild.h"

namespace tovek {

class UpdateView;
enum class UpdateAnswer;
class UserDefaults;

/// One check, and the update that follows from it. Nothing is trusted before it has been verified,
/// and nothing is left behind unless the update is in place.
class UpdateSession : public QObject
{
    Q_OBJECT

public:
    struct Setup
    {
        UpdateBuild build;
        std::optional<Installation> installation;
        QString installedVersion;
        QString systemVersion; ///< see Installation.h
        bool isRequested = false; ///< by the user, who is told of everything; else only of offers
        /// Hands a Debian package to the desktop; calls back whether anybody took it.
        std::function<void(const QString &file, std::function<void(bool isTaken)>)> openPackage;
    };

    /// The memory keeps what checks have seen and what the user does not want to see.
    UpdateSession(Setup setup, UpdateView &view, UserDefaults &memory,
                  QNetworkAccessManager &network);
    ~UpdateSession() override;

    void start();
    void cancel();

    /// The list of versions has come, and is to be trusted.
    std::function<void()> onChecked;
    /// The user has been asked.
    std::function<void()> onOffered;
    /// The last call.
    std::function<void()> onEnded;
    /// A new version is in place; `onEnded` follows.
    std::function<void(const QString &program)> onInstalled;

private:
    UpdateSituation situation() const;
    void readFeed(const QByteArray &xml);
    void offer(const UpdateOffer &offer);
    void answered(UpdateAnswer answer);
    void download();
    bool received(const QByteArray &bytes);
    void downloaded();
    void install();
    void handOver();
    void refuse(Refusal refusal, const QString &detail = {});
    void inform(const QString &title, const QString &text);
    void end();

    Setup m_setup;
    UpdateView &m_view;
    UserDefaults &m_memory;
    QNetworkAccessManager &m_network;
    std::unique_ptr<Download> m_download;
    QByteArray m_feed;
    std::optional<UpdateOffer> m_offer;
    std::unique_ptr<PackageFile> m_package; ///< present from the download to the installation
    bool m_isSeen = false; ///< the user knows of this session
};

} // namespace tovek
