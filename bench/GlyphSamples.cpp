// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "GlyphSamples.h"

#include "reading/GlyphView.h"
#include "reading/InkSegments.h"
#include "reading/PageReading.h"

#include <QDirIterator>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tovek {

namespace {

constexpr QSize pictureSize(460, 150);
/// How much of a glyph's width a character must take to be what it shows, and how much makes it
/// one of several.
constexpr double wholeShare = 0.75;
constexpr double partShare = 0.3;
constexpr int skip = -1;

bool isForText(const QString &family)
{
    if (QFontDatabase::isPrivateFamily(family))
        return false;
    static const QStringList others{QStringLiteral("Emoji"),    QStringLiteral("Symbol"),
                                    QStringLiteral("Dingbats"), QStringLiteral("Icons"),
                                    QStringLiteral("Awesome"),  QStringLiteral("Math")};
    return std::none_of(others.begin(), others.end(),
                        [&](const QString &other) { return family.contains(other); })
        && QFontDatabase::writingSystems(family).contains(QFontDatabase::Latin);
}

int kindOf(char32_t character)
{
    switch (character) {
    case U'\u201C':
    case U'\u201D':
        return '"' - '!';
    case U'\u2018':
    case U'\u2019':
        return '\'' - '!';
    case U'\u2013':
    case U'\u2014':
        return '-' - '!';
    default:
        return character > U' ' && character <= U'~' ? int(character) - '!' : GlyphNet::otherLetter;
    }
}

/// What a glyph between two columns shows.
int kindAt(const QRect &box, const std::vector<std::pair<QRectF, int>> &items)
{
    int kind = skip;
    int parts = 0;
    bool isPicture = false;
    for (const auto &[item, itemKind] : items) {
        const double both =
            std::min(item.right(), box.right() + 1.0) - std::max(item.left(), double(box.left()));
        if (both <= 0 || item.bottom() < box.top() || item.top() > box.bottom())
            continue;
        if (itemKind == GlyphNet::picture) {
            isPicture = true;
            continue;
        }
        if (both < std::max(1.0, item.width() * partShare))
            continue;
        ++parts;
        const bool isWhole =
            both >= item.width() * wholeShare && both >= box.width() * wholeShare - 1;
        kind = isWhole ? itemKind : skip;
    }
    if (isPicture)
        return parts > 0 ? skip : GlyphNet::picture;
    return parts > 1 ? GlyphNet::severalLetters : kind;
}

} // namespace

GlyphSamples::GlyphSamples(unsigned seed, const QString &iconFolder) : m_random(seed)
{
    for (const QString &family : QFontDatabase::families()) {
        if (isForText(family))
            m_families.append(family);
    }
    QDirIterator files(iconFolder, {QStringLiteral("*.png"), QStringLiteral("*.svg")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        // Letters on icons for the format of text are no pictures, and flags need no reader.
        static const QStringList others{QStringLiteral("format-text"), QStringLiteral("/emblem"),
                                        QStringLiteral("font"),        QStringLiteral("/intl"),
                                        QStringLiteral("flag"),        QStringLiteral("/512")};
        if (std::none_of(others.begin(), others.end(),
                         [&](const QString &other) { return path.contains(other); }))
            m_icons.append(path);
    }
    m_icons.sort();
}

int GlyphSamples::number(int below)
{
    return int(m_random() % unsigned(below));
}

bool GlyphSamples::chance(double share)
{
    return number(10000) < share * 10000;
}

QFont GlyphSamples::font()
{
    QFont font(m_families.at(number(int(m_families.size()))));
    font.setPixelSize(chance(0.75) ? 9 + number(9) : 18 + number(16));
    font.setBold(chance(0.2));
    font.setItalic(chance(0.1));
    static constexpr std::array hintings{QFont::PreferNoHinting, QFont::PreferVerticalHinting,
                                         QFont::PreferFullHinting, QFont::PreferDefaultHinting};
    font.setHintingPreference(hintings[std::size_t(number(4))]);
    if (chance(0.1))
        font.setStyleStrategy(QFont::NoAntialias);
    return font;
}

char32_t GlyphSamples::character()
{
    const int kind = number(100);
    if (kind < 48)
        return U'a' + char32_t(number(26));
    if (kind < 66)
        return U'A' + char32_t(number(26));
    if (kind < 78)
        return U'0' + char32_t(number(10));
    if (kind < 92)
        return U'!' + char32_t(number(94));
    static constexpr std::u32string_view dashes = U"\u201C\u201D\u2018\u2019\u2013\u2014";
    if (kind < 94)
        return dashes[std::size_t(number(6))];
    static constexpr std::array<std::pair<char32_t, char32_t>, 4> others{
        {{0xC0, 0xFF}, {0x100, 0x17F}, {0x391, 0x3C9}, {0x410, 0x44F}}};
    const auto [from, to] = others[std::size_t(number(4))];
    return from + char32_t(number(int(to - from + 1)));
}

QImage GlyphSamples::icon(int size)
{
    for (int attempt = 0; attempt < 20; ++attempt) {
        QImage image(m_icons.at(number(int(m_icons.size()))));
        if (image.isNull() || image.width() > 256)
            continue;
        return image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
            .scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    return {};
}

/// Arrows, check boxes and grips as tool kits draw them.
QImage GlyphSamples::control(int size, QColor color)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, chance(0.7));
    const double part = size / 8.0;
    painter.setPen(QPen(color, std::max(1.0, part * (0.5 + number(3) * 0.4))));
    const QRectF box(part, part, size - 2 * part, size - 2 * part);
    switch (number(7)) {
    case 0: // a chevron or a triangle
    case 1: {
        painter.translate(size / 2.0, size / 2.0);
        painter.rotate(90 * number(4));
        QPolygonF arrow{{-2.5 * part, -1.2 * part}, {0, 1.4 * part}, {2.5 * part, -1.2 * part}};
        if (chance(0.5)) {
            painter.setBrush(color);
            painter.drawPolygon(arrow);
        } else {
            painter.drawPolyline(arrow);
        }
        break;
    }
    case 2: // a box, perhaps with a tick or a cross
        painter.drawRoundedRect(box, part * number(2), part * number(2));
        if (chance(0.4))
            painter.drawPolyline(QPolygonF{
                {2.4 * part, 4 * part}, {3.6 * part, 5.4 * part}, {5.8 * part, 2.4 * part}});
        else if (chance(0.4)) {
            painter.drawLine(QPointF(3 * part, 3 * part), QPointF(5 * part, 5 * part));
            painter.drawLine(QPointF(3 * part, 5 * part), QPointF(5 * part, 3 * part));
        }
        break;
    case 3: // a round button, chosen or not
        painter.drawEllipse(box);
        if (chance(0.5)) {
            painter.setBrush(color);
            painter.drawEllipse(box.center(), 1.5 * part, 1.5 * part);
        }
        break;
    case 4: // a grip
        for (int i = 0; i < 9; ++i) {
            if (i % 3 >= i / 3)
                painter.fillRect(QRectF(2 * part * (i % 3 + 1), 2 * part * (3 - i / 3), part, part),
                                 color);
        }
        break;
    case 5: // a menu
        for (int i = 0; i < 3; ++i)
            painter.fillRect(QRectF(part, part * (2 + 2 * i), 6 * part, std::max(1.0, part * 0.8)),
                             color);
        break;
    default: // two sheets
        painter.drawRect(QRectF(part, 2.5 * part, 4 * part, 4 * part));
        painter.drawRect(QRectF(3 * part, part, 4 * part, 4 * part));
    }
    return image;
}

void GlyphSamples::drawLine(QPainter &painter, int y, int width, const QFont &font, QColor color)
{
    const QFontMetricsF metrics(font);
    const double size = font.pixelSize();
    const bool isOnPixels = chance(0.7);
    double x = 4 + number(20);
    while (x < width - size * 3) {
        if (chance(0.3)) {
            static constexpr std::array sizes{12, 16, 16, 16, 22, 24, 32};
            const int side = int(sizes[std::size_t(number(7))] * (size > 17 ? 1.7 : 1.0));
            const QImage image =
                chance(0.7) ? icon(side) : control(std::max(8, side * 2 / 3), color);
            const int top = int(y - metrics.capHeight() / 2 - image.height() / 2.0) + number(5) - 2;
            painter.setOpacity(chance(0.25) ? 0.4 : 1);
            painter.drawImage(int(x), top, image);
            painter.setOpacity(1);
            m_items.push_back(
                {QRectF(int(x), top, image.width(), image.height()), GlyphNet::picture});
            x += image.width() + size * (chance(0.2) ? 0.12 : 0.3 + number(10) * 0.1);
            continue;
        }
        for (int letters = 1 + number(8); letters > 0 && x < width - size * 2; --letters) {
            const char32_t one = character();
            const QString text = QString::fromUcs4(&one, 1);
            if (!metrics.inFontUcs4(one))
                continue;
            const double at = isOnPixels ? std::round(x) : x;
            painter.drawText(QPointF(at, y), text);
            m_items.push_back({metrics.tightBoundingRect(text).translated(at, y), kindOf(one)});
            x += metrics.horizontalAdvance(text);
        }
        x += size * (chance(0.8) ? 0.3 : 2);
    }
}

void GlyphSamples::addSamples(const QImage &image, std::vector<GlyphSample> &samples)
{
    std::vector<std::pair<QRectF, int>> items;
    for (const Item &item : m_items)
        items.emplace_back(item.box, item.kind);
    const Page page = pageOf(image);
    for (const PageRun &run : page.runs) {
        const InkMap ink = evenInk(page.ink, run.text, run.metrics);
        std::vector<QRect> glyphs = inkSegments(ink, run.text);
        std::vector<int> kinds;
        for (std::size_t i = 0; i < glyphs.size(); ++i) {
            // The reader may take up to three pieces of an icon, or of a mark, for one character.
            const int kind = kindAt(glyphs[i], items);
            const bool isPiece = kind == skip || kind == GlyphNet::picture;
            for (int more = 0; isPiece && more < 2 && i + 1 < glyphs.size(); ++more) {
                const QRect joined = glyphs[i] | glyphs[i + 1];
                const int joinedKind = kindAt(joined, items);
                if (joinedKind == skip || joinedKind == GlyphNet::severalLetters
                    || (kind == GlyphNet::picture && (joinedKind != kind || chance(0.5))))
                    break;
                glyphs[i] = joined;
                glyphs.erase(glyphs.begin() + std::ptrdiff_t(i) + 1);
            }
            kinds.push_back(kindAt(glyphs[i], items));
        }
        for (std::size_t i = 0; i < glyphs.size(); ++i) {
            const QRect box = glyphs[i].translated(-run.text.box.topLeft());
            const bool isTooCommon = kinds[i] == GlyphNet::severalLetters && chance(0.5);
            if (kinds[i] == skip || isTooCommon || !QRect({}, ink.size).contains(box))
                continue;
            std::vector<std::uint8_t> pixels;
            for (int y = box.top(); y <= box.bottom(); ++y)
                pixels.insert(pixels.end(), ink.row(y) + box.left(), ink.row(y) + box.right() + 1);
            samples.push_back({glyphView(pixels, glyphs[i], run.metrics), kinds[i]});
        }
    }
}

std::vector<GlyphSample> GlyphSamples::take(std::size_t count)
{
    std::vector<GlyphSample> samples;
    while (samples.size() < count) {
        const int ground = number(80);
        const int ink = number(110);
        const bool isDark = chance(0.35);
        const auto shade = [&](int value) {
            const int level = isDark ? value : 255 - value;
            return QColor(std::clamp(level + number(25) - 12, 0, 255),
                          std::clamp(level + number(25) - 12, 0, 255),
                          std::clamp(level + number(25) - 12, 0, 255));
        };
        QImage image(pictureSize, QImage::Format_RGB32);
        image.fill(shade(ground));
        m_items.clear();
        QPainter painter(&image);
        for (int y = 36; y < image.height() - 12; y += 44) {
            const QFont one = font();
            painter.setFont(one);
            const QColor color = shade(255 - ink);
            painter.setPen(color);
            drawLine(painter, y, image.width(), one, color);
        }
        painter.end();
        addSamples(image, samples);
    }
    return samples;
}

} // namespace tovek
