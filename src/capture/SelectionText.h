// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "text/TextRegion.h"

#include <QFuture>
#include <QObject>

#include <functional>
#include <optional>

namespace tovek {

/// Recognises the words of a selection as soon as its pixels are there. The next selection, and
/// `stop`, end what still runs, and drop its result. Main thread.
class SelectionText : public QObject
{
public:
    using Use = std::function<void(const std::vector<TextRegion> &)>;
    /// Cancelling the future stops the work; see OCRService. Unset: nothing is ever told.
    using Recognize =
        std::function<QFuture<std::vector<TextRegion>>(const Image &, const Use &tellPart)>;
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

private:
    const Recognize m_recognize;
    QFuture<std::vector<TextRegion>> m_recognition;
    quint64 m_serial = 0; ///< of the request; results of an earlier one are dropped
};

} // namespace tovek
