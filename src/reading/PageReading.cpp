// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReading.h"

#include "reading/GlyphNet.h"
#include "reading/Hyphens.h"
#include "reading/Icons.h"
#include "reading/InkSegments.h"
#include "reading/LookAlikes.h"
#include "reading/Panels.h"
#include "reading/PictureGlyphs.h"
#include "reading/PictureShapes.h"
#include "reading/Plausibility.h"
#include "reading/Scripts.h"
#include "reading/SharedReadings.h"
#include "reading/SpeckField.h"
#include "reading/Underlines.h"
#include "reading/WordBreaks.h"

#include <QImage>

#include <algorithm>
#include <numeric>

namespace tovek {

namespace {

double usualCap(const std::vector<PageRun> &runs)
{
    std::vector<double> heights;
    for (const PageRun &run : runs) {
        if (run.metrics.isCertain)
            heights.push_back(run.metrics.capHeight);
    }
    if (heights.empty())
        return 0;
    const auto middle = heights.begin() + std::ptrdiff_t(heights.size() / 2);
    std::nth_element(heights.begin(), middle, heights.end());
    return *middle;
}

/// The run in patches of its strokes alone: in small text the soft edges join letters.
TextRun strokesOf(const InkMap &even, const TextRun &run)
{
    TextRun strokes{run.box, inkPatches(even, strokeInk)};
    for (InkPatch &patch : strokes.patches)
        patch.box.translate(run.box.topLeft());
    return strokes.patches.empty() ? run : strokes;
}

void add(Page &page, TextRun run)
{
    if (run.patches.empty() || isSpecks(run))
        return;
    LetterMetrics rough;
    rough.capHeight = run.box.height();
    const InkMap even = evenInk(page.ink, run, rough);
    const TextRun strokes = strokesOf(even, run);
    if (const auto label = labelAfterIcon(even, strokes)) {
        // Where soft edges join the two, nothing can be divided.
        auto [icon, rest] = dividedAt(run, *label);
        if (!icon.patches.empty())
            return add(page, std::move(rest));
    }
    page.runs.push_back({std::move(run), letterMetrics(strokes)});
}

/// What all pieces of a picture that were read letter by letter tell about each other.
void compareReadings(std::vector<std::vector<ReadPiece>> &readings)
{
    std::vector<ReadPiece> pieces;
    for (std::vector<ReadPiece> &ofRun : readings)
        std::move(ofRun.begin(), ofRun.end(), std::back_inserter(pieces));
    shareReadings(pieces);
    countHyphens(pieces);
    breakAllWords(pieces);
    auto next = pieces.begin();
    for (std::vector<ReadPiece> &ofRun : readings) {
        for (ReadPiece &piece : ofRun)
            piece = std::move(*next++);
    }
}

/// The words of a piece, without what is no text.
std::vector<ReadWord> wordsOf(ReadPiece &piece, PictureGlyphs &pictures)
{
    if (!piece.words.empty())
        return std::move(piece.words);
    erasePictures(piece.symbols, piece.metrics);
    pictures.erase(piece.symbols, piece.metrics);
    settleLookAlikes(piece.symbols, piece.metrics);
    std::vector<ReadWord> words = readWords(piece.symbols);
    for (ReadWord &word : words)
        word.text = inOneScript(word.text);
    dropPictures(words, piece.metrics);
    if (piece.isInRightToLeft && words.size() == 1)
        words.front().text = withMarksBehind(words.front().text);
    return words;
}

} // namespace

Page pageOf(const QImage &image)
{
    Page page;
    page.ink = inkMapOf(image);
    eraseUnderlines(page.ink);
    const std::vector<InkPatch> all = inkPatches(page.ink, faintestInk);
    const SpeckField specks(all, page.ink.size);
    for (const auto &patches : byPanel(all, page.ink.panels)) {
        for (TextRun &run : textRuns(patches)) {
            if (!specks.covers(run))
                add(page, std::move(run));
        }
    }
    settleMetrics(page.runs);
    page.widestFirst.resize(page.runs.size());
    std::iota(page.widestFirst.begin(), page.widestFirst.end(), std::size_t(0));
    std::sort(page.widestFirst.begin(), page.widestFirst.end(), [&](std::size_t a, std::size_t b) {
        return page.runs[a].text.box.width() > page.runs[b].text.box.width();
    });
    return page;
}

std::vector<std::vector<ReadWord>> linesOf(const Page &page,
                                           std::vector<std::vector<ReadPiece>> readings)
{
    compareReadings(readings);
    const double cap = usualCap(page.runs);
    PictureGlyphs pictures(GlyphNet::trained());
    std::vector<std::vector<ReadWord>> lines;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto &[text, metrics] = page.runs[i];
        std::vector<ReadWord> line;
        for (ReadPiece &piece : readings[i]) {
            std::vector<ReadWord> words = wordsOf(piece, pictures);
            line.insert(line.end(), words.begin(), words.end());
        }
        if (line.empty() || isPictureRun(text, line, metrics, cap))
            continue;
        makeLineHigh(line, metrics, page.ink.size);
        lines.push_back(std::move(line));
    }
    dropCrowded(lines);
    return lines;
}

} // namespace tovek
