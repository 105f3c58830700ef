// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fuzz/FuzzInput.h"
#include "platform/linux/ocr/LineAnswer.h"
#include "reading/EngineWords.h"

#include <cmath>

using namespace tovek;

/// Two bytes are the strip's width, one the number of pieces of ink, the rest is the memory that a
/// recogniser process sends. Whatever it says, words come out that have text and a place.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    LineStrip strip;
    strip.width = 1 + input.take<uint16_t>() % LineProtocol::widestStrip;
    strip.left = 17;
    strip.scale = 0.75;
    const int pieces = input.take<uint8_t>() % 32;
    std::vector<LineProtocol::Symbol> symbols;
    while (!input.isAtEnd())
        symbols.push_back(input.take<LineProtocol::Symbol>());
    const auto answer = lineAnswer(symbols, strip.width);
    if (!answer)
        return 0;

    std::vector<QRect> segments;
    for (int i = 0; i < pieces; ++i)
        segments.emplace_back(i * strip.width / 40 + 17, 3, strip.width / 60 + 1, 12);
    std::vector<EngineWord> words = engineWords(*answer, strip);
    takeInk(words, segments, 12);
    joinAtBlanks(words, 12);
    for (const EngineWord &word : words) {
        require(!word.text.isEmpty());
        require(std::isfinite(word.left) && std::isfinite(word.right) && word.left <= word.right);
        require(word.confidence >= 0 && word.confidence <= 100.001);
        require(word.box.isNull() || !segments.empty());
    }
    qsizetype characters = 0;
    for (const EngineSymbol &symbol : *answer)
        characters += symbol.text.size();
    for (const EngineSymbol &symbol : inVisualOrder(*answer))
        characters -= symbol.text.size();
    require(characters >= 0);
    return 0;
}
