// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/fonts/FontFiles.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <fontconfig/fontconfig.h>
#include <map>

namespace tovek {

namespace {

struct PatternDeleter
{
    void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

struct FontSetDeleter
{
    void operator()(FcFontSet *set) const { FcFontSetDestroy(set); }
};
using FontSet = std::unique_ptr<FcFontSet, FontSetDeleter>;

QByteArray textIn(const FcPattern *pattern, const char *object)
{
    FcChar8 *text = nullptr;
    if (FcPatternGetString(pattern, object, 0, &text) != FcResultMatch)
        return {};
    return reinterpret_cast<const char *>(text);
}

int numberIn(const FcPattern *pattern, const char *object, int otherwise)
{
    int number = otherwise;
    return FcPatternGetInteger(pattern, object, 0, &number) == FcResultMatch ? number : otherwise;
}

bool isTrue(const FcPattern *pattern, const char *object)
{
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

/// One face as the configuration lists it.
struct ListedFace
{
    FaceFile file;
    QByteArray family;
    int weight = 0;
    bool isSlanted = false;
    bool isBitmap = false;
};

std::vector<ListedFace> listedFaces()
{
    const Pattern all(FcPatternCreate());
    FcObjectSet *objects = FcObjectSetBuild(FC_FILE, FC_INDEX, FC_FAMILY, FC_WEIGHT, FC_SLANT,
                                            FC_SPACING, FC_SCALABLE, FC_VARIABLE, nullptr);
    const FontSet set(FcFontList(nullptr, all.get(), objects));
    FcObjectSetDestroy(objects);
    std::vector<ListedFace> faces;
    for (int i = 0; set && i < set->nfont; ++i) {
        const FcPattern *pattern = set->fonts[i];
        // A variable font is listed once more for each of its named instances.
        if (numberIn(pattern, FC_SPACING, FC_PROPORTIONAL) < FC_DUAL
            || isTrue(pattern, FC_VARIABLE))
            continue;
        faces.push_back({{textIn(pattern, FC_FILE), numberIn(pattern, FC_INDEX, 0)},
                         textIn(pattern, FC_FAMILY),
                         numberIn(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR),
                         numberIn(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN,
                         !isTrue(pattern, FC_SCALABLE)});
    }
    return faces;
}

/// The file of the desktop's own fixed font.
QByteArray monospaceFile()
{
    const Pattern wanted(FcNameParse(reinterpret_cast<const FcChar8 *>("monospace")));
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(nullptr, wanted.get(), &result));
    return found ? textIn(found.get(), FC_FILE) : QByteArray();
}

/// How far from a regular upright face.
int oddness(const ListedFace &face, const QByteArray &usual)
{
    if (face.file.path == usual)
        return -1;
    return std::abs(face.weight - FC_WEIGHT_REGULAR);
}

FaceFile companionOf(const ListedFace &face, const std::vector<ListedFace> &faces, bool isSlanted)
{
    for (const ListedFace &other : faces) {
        const bool isWanted = isSlanted
            ? other.isSlanted && other.weight == face.weight
            : !other.isSlanted && other.weight == FC_WEIGHT_BOLD && face.weight < FC_WEIGHT_BOLD;
        if (isWanted && other.family == face.family && other.isBitmap == face.isBitmap)
            return other.file;
    }
    return {};
}

/// The fields of an X font name, "-foundry-family-weight-slant-...".
enum XlfdField {
    foundry,
    family,
    weight,
    slant,
    width,
    style,
    pixels,
    points,
    xDpi,
    yDpi,
    spacing,
    averageWidth,
    registry,
    encoding,
    fieldCount
};

/// Larger for the encoding with more characters; -1 for one without Latin letters' usual places.
int encodingRank(const QList<QByteArray> &fields)
{
    const QByteArray name = fields[registry].toLower() + '-' + fields[encoding].toLower();
    return name == "iso10646-1" ? 2 : name == "iso8859-1" ? 1 : name == "iso646.1991-irv" ? 0 : -1;
}

struct CoreFile
{
    QByteArray file;
    int rank = -1;
};

QByteArray nameOf(QList<QByteArray> fields, const QByteArray &ofWeight, const QByteArray &ofSlant)
{
    fields[weight] = ofWeight;
    fields[slant] = ofSlant;
    return fields.mid(0, registry).join('-').toLower();
}

} // namespace

std::vector<FontFiles> configuredFonts()
{
    std::vector<ListedFace> faces = listedFaces();
    const QByteArray usual = monospaceFile();
    std::stable_sort(faces.begin(), faces.end(), [&](const ListedFace &a, const ListedFace &b) {
        return oddness(a, usual) < oddness(b, usual);
    });
    std::vector<FontFiles> fonts;
    for (const ListedFace &face : faces) {
        if (face.isSlanted)
            continue;
        fonts.push_back(
            {{QFile::decodeName(face.file.path) + '#' + QString::number(face.file.index),
              face.isBitmap, 0},
             face.file,
             companionOf(face, faces, false),
             companionOf(face, faces, true)});
    }
    return fonts;
}

std::vector<FontFiles> coreFonts()
{
    std::vector<FontFiles> fonts;
    FcStrList *folders = FcConfigGetFontDirs(nullptr);
    while (const FcChar8 *folder = FcStrListNext(folders)) {
        const QByteArray path(reinterpret_cast<const char *>(folder));
        QFile index(QFile::decodeName(path + "/fonts.dir"));
        if (!index.open(QIODevice::ReadOnly))
            continue;
        for (FontFiles &found : coreFontsIn(index.readAll(), path))
            fonts.push_back(std::move(found));
    }
    FcStrListDone(folders);
    return fonts;
}

std::vector<FontFiles> coreFontsIn(const QByteArray &index, const QByteArray &folder)
{
    std::map<QByteArray, CoreFile> files; // by the name without its encoding
    std::vector<QList<QByteArray>> names;
    for (const QByteArray &line : index.split('\n')) {
        const qsizetype blank = line.indexOf(' ');
        const QList<QByteArray> fields = line.mid(blank + 2).trimmed().split('-');
        if (blank <= 0 || fields.size() != fieldCount || line[blank + 1] != '-')
            continue;
        const bool isFixed = fields[spacing].toLower() == "c" || fields[spacing].toLower() == "m";
        const int rank = encodingRank(fields);
        if (!isFixed || rank < 0 || fields[averageWidth].toInt() < 10)
            continue;
        CoreFile &known = files[nameOf(fields, fields[weight], fields[slant])];
        if (known.rank < 0)
            names.push_back(fields);
        if (rank > known.rank)
            known = {folder + '/' + line.left(blank), rank};
    }
    std::vector<FontFiles> fonts;
    for (const QList<QByteArray> &fields : names) {
        const QByteArray name = nameOf(fields, fields[weight], fields[slant]);
        if (fields[slant].toLower() != "r")
            continue;
        FontFiles font{{QString::fromLatin1(name), true, fields[averageWidth].toInt() / 10.0},
                       {files[name].file, 0},
                       {},
                       {}};
        const auto other = [&](const QByteArray &ofWeight, const QByteArray &ofSlant) {
            const auto found = files.find(nameOf(fields, ofWeight, ofSlant));
            return found == files.end() ? FaceFile{} : FaceFile{found->second.file, 0};
        };
        if (fields[weight].toLower() != "bold")
            font.bold = other("bold", "r");
        font.italic = other(fields[weight], "o");
        fonts.push_back(std::move(font));
    }
    std::stable_sort(fonts.begin(), fonts.end(), [](const FontFiles &a, const FontFiles &b) {
        return a.font.name.contains("-bold-") < b.font.name.contains("-bold-");
    });
    return fonts;
}

} // namespace tovek
