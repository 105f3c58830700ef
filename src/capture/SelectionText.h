// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "platform/TextRecognizer.h"
#include "text/TextRegion.h"

#include <QFuture>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace tovek {

/// What one text was misread without. Shared, because some of it becomes known when the text has
/// been copied, and the capture is over.
struct MissingModels
{
    std::vector<MissingModel> known;
    std::function<void()> onMore; ///< called only if set
};

/// Recognises the words of a selection as soon as its pixels are there. The next selection, and
/// `stop`, end what still runs, and drop its result. Main thread.
class SelectionText : public QObject
{
public:
    using Use = std::function<void(const std::vector<TextRegion> &)>;
    /// Cancelling the future stops the work; see OCRService. Unset: nothing is ever told.
    using TellMissing = std::function<void(const MissingModel &)>;
    using Recognize = std::function<QFuture<std::vector<TextRegion>>(
        const Image &, const Use &tellPart, const TellMissing &)>;
    explicit SelectionText(Recognize recognize);

    struct Request
    {
        QFuture<QImage> pixels;
        /// The selection's part of the pixels; absent when it has none.
        std::function<std::optional<Image>(const QImage &)> crop;
        std::function<void()> onNoImage;
        /// Words of a large selection, while others are still being read; may be unset.
        Use onPart;
        Use onRead;
    };
    void start(const Request &request);
    void stop();
    /// Of the last request's text.
    const std::shared_ptr<MissingModels> &missingModels() const { return m_missing; }

private:
    const Recognize m_recognize;
    QFuture<std::vector<TextRegion>> m_recognition;
    std::shared_ptr<MissingModels> m_missing = std::make_shared<MissingModels>();
    quint64 m_serial = 0; ///< of the request; results of an earlier one are dropped
};

} // namespace tovek
