// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClock.h"
#include "overlay/OverlayAnimations.h"

#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

class TestOverlayAnimations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fadesTheVeilInWithinTwelveFrames()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        int frames = 0;
        animations.onFrame = [&] { ++frames; };
        QCOMPARE(animations.dimmingOpacity(), 0.0);
        animations.startDimming();
        clock.advance(199ms);
        QCOMPARE(frames, 11);
        QVERIFY(animations.dimmingOpacity() < 0.5);
        clock.advance(1ms);
        QCOMPARE(frames, 12);
        QCOMPARE(animations.dimmingOpacity(), 0.5);
        QCOMPARE(clock.pendingCalls(), size_t(0));
    }

    void neverFadesTheVeilTwice()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        animations.startDimming();
        clock.advance(100ms);
        animations.startDimming();
        clock.advance(100ms);
        QCOMPARE(animations.dimmingOpacity(), 0.5);
        animations.startDimming();
        QCOMPARE(clock.pendingCalls(), size_t(0));
    }

    void animatesCornersOnly()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        animations.setHovered(ResizeHandle::left, true);
        animations.setHovered(std::nullopt, true);
        QCOMPARE(clock.pendingCalls(), size_t(0));
        animations.setHovered(ResizeHandle::topLeft, true);
        clock.advance(200ms);
        QCOMPARE(animations.handleOpacity(ResizeHandle::topLeft), 1.0);
        QCOMPARE(animations.handleOpacity(ResizeHandle::topRight), 0.2);
    }

    void animatesTwoCornersIndependently()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        animations.setHovered(ResizeHandle::topLeft, true);
        clock.advance(100ms);
        animations.setHovered(ResizeHandle::topLeft, false);
        animations.setHovered(ResizeHandle::bottomRight, true);
        clock.advance(200ms);
        QCOMPARE(animations.handleOpacity(ResizeHandle::topLeft), 0.2);
        QCOMPARE(animations.handleOpacity(ResizeHandle::bottomRight), 1.0);
    }

    void restartsAFadeFromWhereItIs()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        animations.setHovered(ResizeHandle::topLeft, true);
        clock.advance(100ms);
        const double middle = animations.handleOpacity(ResizeHandle::topLeft);
        QVERIFY(middle > 0.5 && middle < 0.7);
        animations.setHovered(ResizeHandle::topLeft, false);
        clock.advance(17ms);
        const double next = animations.handleOpacity(ResizeHandle::topLeft);
        QVERIFY(qAbs(next - (middle - (middle - 0.2) / 12)) < 1e-9);
        animations.setHovered(ResizeHandle::topLeft, true);
        clock.advance(200ms);
        QCOMPARE(animations.handleOpacity(ResizeHandle::topLeft), 1.0);
    }

    void leavesAHandleDimThatThePointerOnlyPassed()
    {
        FakeClock clock;
        OverlayAnimations animations(clock);
        animations.setHovered(ResizeHandle::topLeft, true);
        animations.setHovered(ResizeHandle::topLeft, false); // before its first frame
        clock.advance(1s);
        QCOMPARE(animations.handleOpacity(ResizeHandle::topLeft), 0.2);
        QCOMPARE(clock.pendingCalls(), size_t(0));
    }

    void stopsWithItsOwner()
    {
        FakeClock clock;
        int frames = 0;
        {
            OverlayAnimations animations(clock);
            animations.onFrame = [&] { ++frames; };
            animations.startDimming();
        }
        clock.advance(1s);
        QCOMPARE(frames, 0);
    }
};

QTEST_APPLESS_MAIN(TestOverlayAnimations)
#include "tst_OverlayAnimations.moc"
