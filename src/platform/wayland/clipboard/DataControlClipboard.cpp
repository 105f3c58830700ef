// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/clipboard/DataControlClipboard.h"

#include "ext-data-control-v1-client.h"
#include "foundation/HelperProgram.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/clipboard/FocusedSelection.h"
#include "wlr-data-control-unstable-v1-client.h"

#include <algorithm>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// A reader that takes nothing for so long has hung or forgotten.
constexpr auto pipePatience = 60s;
constexpr auto stalledCheck = 10s;

} // namespace

std::unique_ptr<DataControlClipboard>
DataControlClipboard::create(std::shared_ptr<WaylandConnection> connection, const QString &holder)
{
    if (!connection)
        return nullptr;
    auto selection = DataControlSelection::create(
        {connection->display(), connection->bind<wl_seat>(wl_seat_interface, 1),
         connection->bind<ext_data_control_manager_v1>(ext_data_control_manager_v1_interface,
                                                       DataControlSelection::extVersion),
         connection->bind<zwlr_data_control_manager_v1>(zwlr_data_control_manager_v1_interface,
                                                        DataControlSelection::wlrVersion),
         connection});
    if (!selection)
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<DataControlClipboard>(
        new DataControlClipboard(std::move(connection), std::move(selection), holder));
}

std::unique_ptr<DataControlClipboard>
DataControlClipboard::createWithFocus(std::shared_ptr<WaylandConnection> connection)
{
    auto selection = FocusedSelection::create(connection);
    if (!selection)
        return nullptr;
    // Mutter, for whom this is, keeps pictures and texts of programs that have ended.
    return std::unique_ptr<DataControlClipboard>(
        new DataControlClipboard(std::move(connection), std::move(selection), {}));
}

DataControlClipboard::DataControlClipboard(std::shared_ptr<WaylandConnection> connection,
                                           std::unique_ptr<DataControlSelection> owned,
                                           const QString &holder)
    : SelectionClipboard(std::move(owned), holder)
    , m_connection(std::move(connection))
    , m_writers(static_cast<DataControlSelection &>(selection()).writers())
{
    m_writers.onChanged = [this] { watchWriters(); };
    m_stalledCheck.setInterval(stalledCheck);
    connect(&m_stalledCheck, &QTimer::timeout, this, [this] { m_writers.drop(pipePatience); });
}

DataControlClipboard::~DataControlClipboard()
{
    m_writers.onChanged = {};
}

QString DataControlClipboard::standardHolder()
{
    return helperProgram(QStringLiteral("tovek-clipboard-wayland"));
}

QList<QByteArray> DataControlClipboard::holderArguments() const
{
    return {qgetenv("WAYLAND_DISPLAY")}; // where the connection goes, too
}

void DataControlClipboard::processEvents()
{
    m_connection->waitFor([] { return false; }, 1ms);
    m_writers.write();
}

void DataControlClipboard::catchUp()
{
    m_connection->roundtrip(1s);
}

bool DataControlClipboard::isConnected() const
{
    return !m_connection->isLost();
}

void DataControlClipboard::watchWriters()
{
    const std::vector<int> &wanted = m_writers.descriptors();
    for (auto watched = m_notifiers.begin(); watched != m_notifiers.end();) {
        if (std::find(wanted.begin(), wanted.end(), watched->first) != wanted.end()) {
            ++watched;
            continue;
        }
        // It may be what called us.
        watched->second->setEnabled(false);
        watched->second.release()->deleteLater();
        watched = m_notifiers.erase(watched);
    }
    for (const int descriptor : wanted) {
        auto &notifier = m_notifiers[descriptor];
        if (notifier)
            continue;
        notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
        connect(notifier.get(), &QSocketNotifier::activated, this, [this] { m_writers.write(); });
    }
    if (wanted.empty())
        m_stalledCheck.stop();
    else if (!m_stalledCheck.isActive())
        m_stalledCheck.start();
}

} // namespace tovek
