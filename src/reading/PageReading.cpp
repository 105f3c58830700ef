// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PageReading.h"

#include "reading/Hyphens.h"
#include "reading/Icons.h"
#include "reading/InkSegments.h"
#include "reading/LookAlikes.h"
#include "reading/PictureShapes.h"
#include "reading/Plausibility.h"
#include "reading/SharedReadings.h"
#include "reading/WordBreaks.h"

#include <QImage>

#include <algorithm>
#include <numeric>

namespace tovek {

namespace {

double usualCap(const std::vector<LetterMetrics> &metrics)
{
    std::vector<double> heights;
    for (const LetterMetrics &one : metrics) {
        if (one.isCertain)
            heights.push_back(one.capHeight);
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
    if (run.patches.empty())
        return;
    LetterMetrics rough;
    rough.capHeight = run.box.height();
    const InkMap even = evenInk(page.ink, run, rough);
    const TextRun strokes = strokesOf(even, run);
    if (const auto label = labelAfterIcon(even, strokes))
        return add(page, dividedAt(run, *label).second);
    page.metrics.push_back(letterMetrics(strokes));
    page.runs.push_back(std::move(run));
}

} // namespace

Page pageOf(const QImage &image)
{
    Page page;
    page.ink = inkMapOf(image);
    for (TextRun &run : textRuns(inkPatches(page.ink, faintestInk)))
        add(page, std::move(run));
    settleMetrics(page.runs, page.metrics);
    page.widestFirst.resize(page.runs.size());
    std::iota(page.widestFirst.begin(), page.widestFirst.end(), std::size_t(0));
    std::sort(page.widestFirst.begin(), page.widestFirst.end(), [&](std::size_t a, std::size_t b) {
        return page.runs[a].box.width() > page.runs[b].box.width();
    });
    return page;
}

std::vector<InkSymbol> symbolsOf(const Page &page, std::size_t run, const InkMap &ink,
                                 const LineStrip &strip, const std::vector<EngineSymbol> &read)
{
    std::vector<InkSymbol> symbols =
        alignedSymbols(read, strip, inkSegments(ink, page.runs[run]), page.metrics[run]);
    nameTildes(symbols, ink, page.runs[run], page.metrics[run]);
    takeGlyphs(symbols, ink, page.runs[run]);
    return symbols;
}

std::vector<std::vector<ReadWord>> linesOf(const Page &page,
                                           std::vector<std::vector<InkSymbol>> readings)
{
    shareReadings(readings, page.metrics);
    countHyphens(readings, page.metrics);
    breakAllWords(readings, page.metrics);
    const double cap = usualCap(page.metrics);
    std::vector<std::vector<ReadWord>> lines;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        erasePictures(readings[i], page.metrics[i]);
        settleLookAlikes(readings[i], page.metrics[i]);
        std::vector<ReadWord> words = readWords(readings[i]);
        dropPictures(words, page.metrics[i]);
        if (words.empty() || isPictureRun(page.runs[i], words, page.metrics[i], cap))
            continue;
        makeLineHigh(words, page.metrics[i], page.ink.size);
        lines.push_back(std::move(words));
    }
    return lines;
}

} // namespace tovek
