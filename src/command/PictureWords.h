// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "command/WordsText.h"

class QImage;
class QIODevice;

namespace tovek {

class TextRecognizer;

/// The picture of a file as the recogniser takes it; a null image with the reason in `error` where
/// it is none. What is transparent becomes white.
QImage readPicture(QIODevice &device, QString &error);

/// Waits in an event loop for the recogniser. Main thread.
WordLines recognizeWords(const QImage &picture, TextRecognizer &recognizer, QString &error);

} // namespace tovek
