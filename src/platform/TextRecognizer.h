// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFuture>
#include <QImage>
#include <QRectF>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tovek {

/// One word's place in an observation's text.
struct RecognizedRange
{
    qsizetype from = 0;
    qsizetype length = 0;
    QRectF box; ///< pixels of the image, y down

    bool operator==(const RecognizedRange &) const = default;
};

/// One line of text as it was recognised.
struct TextObservation
{
    QString text;
    std::vector<RecognizedRange> ranges; ///< in the order of the text

    /// The box of the characters from `from` on, or nothing where the recogniser knows none.
    std::optional<QRectF> boxOf(qsizetype from, qsizetype length) const;

    bool operator==(const TextObservation &) const = default;
};

/// What came of one recognition: the lines, or the reason why there are none.
struct RecognitionResult
{
    std::vector<TextObservation> observations;
    QString error; ///< empty when the recogniser ran, also when it found no text
};

/// A language package without which text is read with the letters of another script or language.
struct MissingModel
{
    QString package;
    QString reads; ///< as in "your language" or "Arabic"

    bool operator==(const MissingModel &) const = default;
};

/// Finds the text in pictures. Called on the main thread, works on threads of its own.
class TextRecognizer
{
public:
    /// Gets lines of a picture that takes long while others are still being read, each word once.
    /// The result, which always comes, has the last say about them. Main thread; never after the
    /// future has finished or was cancelled.
    using TellPart = std::function<void(const std::vector<TextObservation> &)>;
    /// Gets what should be installed to read the picture, for the desktop's languages before the
    /// result, and for text in another script when that is recognised: often some time after the
    /// future has finished. Main thread.
    using TellMissing = std::function<void(const MissingModel &)>;

    virtual ~TextRecognizer() = default;
    /// A recognition is likely soon: what takes long to load is loaded in the background.
    virtual void prepare() = 0;
    /// The image is native pixels (Format_RGB32), `scale` of them a point. The future gets one
    /// result; when it is cancelled the work stops soon and there is none. Several recognitions
    /// may be under way at once; a recogniser that dies cancels them. What tells may be unset.
    [[nodiscard]] virtual QFuture<RecognitionResult>
    recognize(const QImage &image, double scale, TellPart tellPart, TellMissing tellMissing) = 0;
    [[nodiscard]] QFuture<RecognitionResult> recognize(const QImage &image, double scale,
                                                       TellPart tellPart = {})
    {
        return recognize(image, scale, std::move(tellPart), {});
    }
};

} // namespace tovek
