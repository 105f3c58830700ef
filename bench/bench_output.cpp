// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a user waits for between the choice and the result, beside a floor that does the same for
// the same pixels. Prints Markdown. The two sides take turns, so that a busy machine hits both.

#include "FloorPng.h"
#include "Measure.h"
#include "Pictures.h"
#include "capture/Deflater.h"
#include "capture/PngEncoder.h"

#include <QGuiApplication>

#include <cstdio>

using namespace tovek;
using namespace tovek::bench;

namespace {

constexpr int runs = 15;

struct Case
{
    const char *name;
    QImage image;
};

std::vector<Case> cases()
{
    const QSize fullHd(1920, 1080);
    const QSize ultraHd(3840, 2160);
    return {{"noise 1920x1080", photographicNoise(fullHd)},
            {"noise 3840x2160", photographicNoise(ultraHd)},
            {"windows 1920x1080", windowsWithText(fullHd)},
            {"windows 3840x2160", windowsWithText(ultraHd)}};
}

void compareEncoders(const std::vector<Case> &all)
{
    std::printf("## Encoding (%s)\n\n"
                "| picture | ms | floor ms | time ratio | bytes | floor bytes | size ratio |\n"
                "|---|---|---|---|---|---|---|\n",
                fastestDeflater().name);
    for (const Case &one : all) {
        std::vector<double> ours;
        std::vector<double> floors;
        qsizetype bytes = 0;
        qsizetype floorBytes = 0;
        for (int run = 0; run < runs; ++run) {
            ours.push_back(millisecondsOf([&] { bytes = encodePng(one.image).size(); }));
            floors.push_back(millisecondsOf([&] { floorBytes = floorPng(one.image).size(); }));
        }
        std::printf("| %s | %.1f | %.1f | %.2f | %lld | %lld | %.3f |\n", one.name, median(ours),
                    median(floors), median(ours) / median(floors), qlonglong(bytes),
                    qlonglong(floorBytes), double(bytes) / double(floorBytes));
    }
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const auto all = cases();
    compareEncoders(all);
    return 0;
}
