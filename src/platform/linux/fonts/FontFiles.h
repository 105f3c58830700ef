// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/GlyphSource.h"

#include <QByteArray>

namespace tovek {

/// One face in a file.
struct FaceFile
{
    QByteArray path; ///< empty when there is no such face
    int index = 0; ///< of the face in the file, as the font library counts

    bool operator==(const FaceFile &) const = default;
};

/// An installed fixed-pitch font and the files of its faces.
struct FontFiles
{
    FixedFont font; ///< the advance of a scalable one is not known without opening it
    FaceFile own, bold, italic;
};

/// The scalable fonts that the desktop's configuration names as fixed, its own choice for
/// "monospace" first, and fixed bitmap fonts where it allows them.
std::vector<FontFiles> configuredFonts();

/// The X server's own bitmap fonts, from the indexes ("fonts.dir") in the desktop's font folders:
/// terminals of the X server's age use them, and the desktop's configuration leaves them out.
std::vector<FontFiles> coreFonts();

/// Those named in the text of one such index; the files lie in `folder`. A font that is there in
/// several encodings is taken in the largest.
std::vector<FontFiles> coreFontsIn(const QByteArray &index, const QByteArray &folder);

} // namespace tovek
