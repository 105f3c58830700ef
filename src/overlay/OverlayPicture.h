// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/CaptureMode.h"
#include "platform/OverlaySurface.h"

#include <QColor>
#include <QFont>
#include <QHash>

#include <array>

namespace tovek {

/// Everything that decides how an overlay looks, in points with y up.
struct OverlayPicture
{
    ViewSpace space;
    CaptureMode captureMode = CaptureMode::normal;
    double dimmingOpacity = 0;
    std::optional<Rect> selection;
    /// Bottom left, bottom right, top left, top right: the order in which they are drawn.
    std::array<double, 4> handleOpacities{0.2, 0.2, 0.2, 0.2};
    bool isToolbarAtTop = false;
    /// Drawn over the border and the label, in native pixels.
    std::vector<DisplayList::Item> content;
};

/// White, system blue or system orange: the colour of the border and the handles.
QColor colorOf(CaptureMode mode);

/// Turns pictures into display lists. What recurs from one picture to the next (corners, handles,
/// digits) is drawn once and kept, so that a step of a drag draws nothing at all.
class OverlayArtist
{
public:
    /// `font`: of the size label; its size is set here.
    explicit OverlayArtist(const QFont &font);

    DisplayList draw(const OverlayPicture &picture);

    /// Loads what the first picture of a process would wait for: the font's files and tables.
    /// Takes some tens of milliseconds, for when nobody waits.
    static void warmUp(const QFont &font);

private:
    /// What a kept decal was drawn from; the meaning of the numbers is the kind's own.
    struct Key
    {
        int kind;
        std::array<double, 4> numbers;
        bool operator==(const Key &) const = default;
        friend size_t qHash(const Key &key, size_t seed)
        {
            return qHashMulti(seed, key.kind, key.numbers[0], key.numbers[1], key.numbers[2],
                              key.numbers[3]);
        }
    };
    struct Frame; ///< one picture's numbers in native pixels

    void drawBorder(const Frame &frame, DisplayList &list);
    void drawSmallBorder(const Frame &frame, DisplayList &list);
    void drawHandles(const Frame &frame, DisplayList &list);
    void drawLabel(const Frame &frame, DisplayList &list);
    template <typename Draw>
    DisplayList::Decal decal(const Key &key, QSize size, Draw draw);
    /// A digit, or the sign between the two numbers.
    const DisplayList::Decal &labelGlyph(QChar c, int width);
    void measureLabelFont(double scale);

    QFont m_font;
    QHash<Key, DisplayList::Decal> m_decals;
    std::array<DisplayList::Decal, 11> m_glyphs; ///< the digits, then the sign; null before use
    double m_scale = 0; ///< of the kept decals
    QFont m_labelFont;
    int m_digitWidth = 0; ///< native pixels; every digit takes the widest one's place
    int m_signWidth = 0;
    int m_blankWidth = 0;
    int m_textHeight = 0;
};

} // namespace tovek
