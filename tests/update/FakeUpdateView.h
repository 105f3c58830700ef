// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateChoice.h"
#include "update/program/UpdateView.h"

#include <QStringList>

#include <optional>

namespace tovek {

/// Shows nothing, and remembers what it would have shown.
class FakeUpdateView : public UpdateView
{
public:
    void showChecking() override { shown.append(QStringLiteral("checking")); }
    void showOffer(const UpdateOffer &offered, const QString &) override
    {
        shown.append(QStringLiteral("offer ") + offered.item.versionText);
        offer = offered;
    }
    void showDownload(qint64 received, qint64 total) override
    {
        if (!shown.contains(QStringLiteral("download")))
            shown.append(QStringLiteral("download"));
        downloaded = received;
        whole = total;
        if (onShownDownload)
            onShownDownload();
    }
    void showInstalling() override { shown.append(QStringLiteral("installing")); }
    void showMessage(MessageKind kind, const QString &title, const QString &text) override
    {
        shown.append(kind == MessageKind::warning ? QStringLiteral("warning")
                                                  : QStringLiteral("information"));
        messageTitle = title;
        message = text;
    }
    void hide() override { ++hides; }

    QStringList shown;
    std::optional<UpdateOffer> offer;
    QString messageTitle;
    QString message;
    qint64 downloaded = 0;
    qint64 whole = 0;
    int hides = 0;
    std::function<void()> onShownDownload;
};

} // namespace tovek
