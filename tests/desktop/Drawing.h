// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/Session.h"

#include <cstdlib>

namespace tovek {

/// A box around the pixels of about this colour.
inline QRect boxOf(const QImage &image, QRgb color)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (std::abs(qRed(pixel) - qRed(color)) < 8
                && std::abs(qGreen(pixel) - qGreen(color)) < 8
                && std::abs(qBlue(pixel) - qBlue(color)) < 8)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

/// Alike up to the two pixels that anti-aliasing may take.
inline bool isNear(const QRect &actual, const QRect &expected)
{
    const auto near = [](int a, int b) { return std::abs(a - b) <= 2; };
    return near(actual.left(), expected.left()) && near(actual.top(), expected.top())
        && near(actual.right(), expected.right()) && near(actual.bottom(), expected.bottom());
}

inline QString toText(const QRect &rect)
{
    return QStringLiteral("%1,%2 %3x%4")
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height());
}

/// The drawing colours; the picture below holds none of them.
namespace Ink {
inline constexpr QRgb red = 0xffff3b30;
inline constexpr QRgb green = 0xff34c759;
} // namespace Ink

/// A selection on a frozen screen, ready to be drawn on. Places for drawing are native pixels from
/// the selection's top left corner, y down.
struct Drawing : Session
{
    explicit Drawing(double screenScale = 1, DesktopPlan desktopPlan = {})
        : Session(std::move(desktopPlan), screenScale)
    {
    }

    [[nodiscard]] bool begin() { return start() && again(); }
    [[nodiscard]] bool begin(QRect native)
    {
        selection = native;
        return begin();
    }
    /// A selection on a newly frozen screen.
    [[nodiscard]] bool again()
    {
        if (!open())
            return fail(QStringLiteral("no overlay came"));
        select(selection.topLeft(),
               selection.topLeft() + QPoint(selection.width(), selection.height()));
        return waitUntil([&] { return !(firstButton = activeButton()).isEmpty(); })
            || fail(QStringLiteral("no toolbar came"));
    }
    /// The keyboard's layout from now on, in arguments of setxkbmap.
    [[nodiscard]] bool setLayout(const QStringList &arguments)
    {
        Program *setter = desktop.run(QStringLiteral("setxkbmap"), arguments);
        return (setter && setter->waitForExit() == 0) || fail(QStringLiteral("no such layout"));
    }

    void drag(QPoint a, QPoint b) { tovek->hand().drag(at(a), at(b)); }
    void click(QPoint a) { tovek->hand().click(at(a)); }
    void doubleClick(QPoint a) { tovek->hand().doubleClick(at(a)); }
    QImage copied() { return tap("Return") ? QImage::fromData(pasted()) : QImage(); }
    QImage untouched() const { return before.copy(selection); }
    QPoint at(QPoint inSelection) const { return selection.topLeft() + inSelection; }

    /// Where the plate of the button of the active tool is seen; empty when it is not.
    QRect activeButton() const { return plateIn(tovek->eye().look()); }
    [[nodiscard]] bool waitForActiveButton(int index)
    {
        return waitUntil([&] { return isNear(activeButton(), button(index)); });
    }
    /// The button's place on the screen, reckoned from where the pointer's was seen at first.
    QRect button(int index) const { return firstButton.translated(native(index * buttonStep), 0); }
    /// The pointer does not stay, since it makes the button lighter.
    void clickButton(int index)
    {
        tovek->hand().click(button(index).center());
        tovek->hand().move({2, 2});
    }
    /// The middle of a swatch of the open colours, which lie in two rows of four: below the colour
    /// button, centred on it.
    QPoint swatch(int index) const
    {
        const QPoint middle = button(colorButton).center();
        return middle
            + QPoint(native((index % 4 - 1.5) * buttonStep),
                     native(14 + 20 + 12 + 14 + index / 4 * buttonStep));
    }
    [[nodiscard]] bool hold(const char *key) { return tovek->hand().hold(QLatin1String(key)); }
    [[nodiscard]] bool letGo(const char *key) { return tovek->hand().letGo(QLatin1String(key)); }
    /// Native pixels of a length in points.
    int native(double points) const { return qRound(points * scale); }

    static constexpr int pointerButton = 0;
    static constexpr int rectangleButton = 1;
    static constexpr int lineButton = 2;
    static constexpr int arrowButton = 3;
    static constexpr int textButton = 4;
    static constexpr int colorButton = 5;
    static constexpr int copyButton = 6;
    static constexpr int closeButton = 7;
    static constexpr int buttonStep = 32; ///< points

    QRect selection{200, 150, 500, 350}; ///< native pixels of the screen
    QRect firstButton; ///< the pointer's, once the selection is accepted

private:
    /// The box of all pixels of the active colour whose neighbours have it too; grain has none.
    static QRect plateIn(const QImage &screen)
    {
        constexpr QRgb active = 0xff0a7bff;
        QRect box;
        for (int y = 1; y + 1 < screen.height(); ++y) {
            const auto *above = reinterpret_cast<const QRgb *>(screen.constScanLine(y - 1));
            const auto *row = reinterpret_cast<const QRgb *>(screen.constScanLine(y));
            for (int x = 1; x + 1 < screen.width(); ++x) {
                if (row[x] == active && row[x - 1] == active && above[x] == active)
                    box |= QRect(x - 1, y - 1, 2, 2);
            }
        }
        return box;
    }
};

} // namespace tovek
