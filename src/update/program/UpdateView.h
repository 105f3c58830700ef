// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <functional>

namespace tovek {

struct UpdateOffer;

enum class UpdateAnswer { skip, later, install };

/// What the user sees of a check and of an update: one thing at a time. None of the calls calls
/// back.
class UpdateView
{
public:
    enum class MessageKind { information, warning };

    virtual ~UpdateView() = default;
    virtual void showChecking() = 0;
    virtual void showOffer(const UpdateOffer &offer, const QString &installedVersion) = 0;
    virtual void showDownload(qint64 received, qint64 total) = 0;
    /// From here on there is nothing to cancel.
    virtual void showInstalling() = 0;
    virtual void showMessage(MessageKind kind, const QString &title, const QString &text) = 0;
    virtual void hide() = 0;

    std::function<void(UpdateAnswer answer)> onAnswered;
    /// The check or the download is not wanted any more.
    std::function<void()> onCanceled;
    std::function<void()> onMessageRead;
};

} // namespace tovek
