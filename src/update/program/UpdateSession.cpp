// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/UpdateSession.h"

#include "foundation/AppImage.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "update/UpdateSignature.h"
#include "update/program/UpdateView.h"

#include <QDir>
#include <QSysInfo>

namespace tovek {

namespace {

using namespace std::chrono_literals;

const QString newestFeedKey = QStringLiteral("newestFeed");
const QString skippedKey = QStringLiteral("skippedVersion");

} // namespace

UpdateSession::UpdateSession(Setup setup, UpdateView &view, UserDefaults &memory,
                             QNetworkAccessManager &network)
    : m_setup(std::move(setup))
    , m_view(view)
    , m_memory(memory)
    , m_network(network)
    , m_isSeen(m_setup.isRequested)
{
    m_view.onAnswered = [this](UpdateAnswer answer) { answered(answer); };
    m_view.onCanceled = [this] { cancel(); };
    m_view.onMessageRead = [this] { end(); };
}

UpdateSession::~UpdateSession() = default;

void UpdateSession::start()
{
    if (!m_setup.installation)
        return refuse(Refusal::notInstalled);
    if (m_isSeen)
        m_view.showChecking();
    const UpdateBuild &build = m_setup.build;
    m_download = std::make_unique<Download>(
        m_network, Download::Plan{build.feed, largestFeed, build.silence, build.feedTime});
    m_download->onData = [this](const QByteArray &bytes) {
        m_feed += bytes;
        return true;
    };
    m_download->onDone = [this] { readFeed(m_feed); };
    m_download->onFailed = [this](Refusal refusal, const QString &detail) {
        refuse(refusal, detail);
    };
}

void UpdateSession::cancel()
{
    m_download.reset();
    m_package.reset();
    end();
}

UpdateSituation UpdateSession::situation() const
{
    UpdateSituation situation;
    situation.installed = Version::fromString(m_setup.installedVersion).value_or(Version());
    situation.system = Version::fromString(m_setup.systemVersion).value_or(Version());
    situation.kind = m_setup.installation->kind;
    situation.architecture = QSysInfo::currentCpuArchitecture();
    situation.newestFeed = QDateTime::fromString(m_memory.string(newestFeedKey).value_or(QString()),
                                                 Qt::ISODateWithMs);
    situation.skipped = Version::fromString(m_memory.string(skippedKey).value_or(QString()));
    situation.isRequested = m_setup.isRequested;
    return situation;
}

void UpdateSession::readFeed(const QByteArray &xml)
{
    const auto answer = tovek::readFeed(xml);
    const auto *published = std::get_if<UpdateFeed>(&answer);
    if (!published)
        return refuse(Refusal::noFeed);
    const UpdateFeed feed = UpdateSignature::signedPart(*published, m_setup.build.publicKey);
    if (feed.items.isEmpty())
        return refuse(Refusal::unsignedFeed);
    const auto choice = chooseUpdate(feed, situation());
    const auto *reason = std::get_if<NoOffer>(&choice);
    if (reason && *reason == NoOffer::oldFeed)
        return refuse(Refusal::oldFeed);
    // A date to come would make every honest feed of tomorrow look old.
    const QDateTime seen = std::min(feed.date, QDateTime::currentDateTimeUtc());
    m_memory.setString(newestFeedKey, seen.toString(Qt::ISODateWithMs));
    if (onChecked)
        onChecked();
    if (!reason)
        return offer(std::get<UpdateOffer>(choice));
    const QString text = explain(*reason, m_setup.installedVersion);
    if (*reason == NoOffer::upToDate)
        return inform(tr("You’re up to date!"), text);
    inform(tr("There is no update for this Tovek"), text);
}

void UpdateSession::offer(const UpdateOffer &offer)
{
    m_offer = offer;
    m_isSeen = true;
    m_view.showOffer(offer, m_setup.installedVersion);
    if (onOffered)
        onOffered();
}

void UpdateSession::answered(UpdateAnswer answer)
{
    if (answer == UpdateAnswer::install)
        return download();
    if (answer == UpdateAnswer::skip)
        m_memory.setString(skippedKey, m_offer->item.versionText);
    end();
}

void UpdateSession::download()
{
    const UpdatePackage &package = m_offer->package;
    const QString folder = m_setup.installation->downloads;
    // What an installer was given last time.
    if (m_setup.installation->kind == PackageKind::debian)
        QDir(folder).removeRecursively();
    m_package = std::make_unique<PackageFile>(folder);
    if (const auto problem = m_package->open(package.length))
        return refuse(problem->refusal, problem->detail);
    m_view.showDownload(0, package.length);
    m_download = std::make_unique<Download>(
        m_network, Download::Plan{package.url, package.length, m_setup.build.silence, 0ms});
    m_download->onData = [this](const QByteArray &bytes) { return received(bytes); };
    m_download->onDone = [this] { downloaded(); };
    m_download->onFailed = [this](Refusal refusal, const QString &detail) {
        refuse(refusal, detail);
    };
}

bool UpdateSession::received(const QByteArray &bytes)
{
    if (const auto problem = m_package->append(bytes)) {
        refuse(problem->refusal, problem->detail);
        return false;
    }
    m_view.showDownload(m_package->size(), m_offer->package.length);
    return true;
}

void UpdateSession::downloaded()
{
    m_view.showInstalling();
    if (const auto problem = m_package->verify(m_offer->package))
        return refuse(problem->refusal, problem->detail);
    install();
}

void UpdateSession::install()
{
    if (m_setup.installation->kind == PackageKind::debian)
        return handOver();
    const QString file = m_setup.installation->file;
    if (const auto problem = m_package->verifyMachine())
        return refuse(problem->refusal, problem->detail);
    keepAppImage(file);
    if (const auto problem = m_package->moveTo(file))
        return refuse(problem->refusal, problem->detail);
    m_package.reset();
    if (onInstalled)
        onInstalled(file);
    end();
}

void UpdateSession::handOver()
{
    const QString file = QStringLiteral("%1/tovek_%2.deb")
                             .arg(m_setup.installation->downloads, m_offer->item.versionText);
    if (const auto problem = m_package->moveTo(file))
        return refuse(problem->refusal, problem->detail);
    m_package.reset();
    m_setup.openPackage(file, [this, file](bool isTaken) {
        if (!isTaken)
            return refuse(Refusal::noInstaller, file);
        inform(tr("Tovek %1 is ready to be installed").arg(m_offer->item.versionText),
               tr("The package was verified and handed to the desktop’s package installer. Quit "
                  "Tovek and start it again when the installer is done."));
    });
}

void UpdateSession::refuse(Refusal refusal, const QString &detail)
{
    m_package.reset();
    const QString text = explain(refusal, detail);
    logLine(QStringLiteral("Update: ") + text);
    if (!m_isSeen)
        return end();
    m_view.showMessage(UpdateView::MessageKind::warning, tr("Tovek could not be updated"), text);
}

void UpdateSession::inform(const QString &title, const QString &text)
{
    if (!m_isSeen)
        return end();
    m_view.showMessage(UpdateView::MessageKind::information, title, text);
}

void UpdateSession::end()
{
    m_view.hide();
    if (onEnded)
        onEnded();
}

} // namespace tovek
