// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/Toast.h"

#include "feedback/ToastGeometry.h"
#include "feedback/ToastView.h"
#include "foundation/MainThread.h"
#include "foundation/Spring.h"
#include "platform/Clock.h"
#include "platform/ToastWindow.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr Spring spring{0.25, 0.6};
constexpr auto shownFor = 1500ms;
/// Who did not expect more than a confirmation reads about fifteen characters a second.
constexpr qsizetype readAtAGlance = 48;
constexpr auto perCharacter = 70ms;
constexpr auto shownAtMost = 6000ms;
constexpr auto hidingFor = 300ms;
constexpr auto frame = 16ms;

std::chrono::milliseconds durationOf(const QString &message)
{
    const auto more = std::max<qsizetype>(message.size() - readAtAGlance, 0) * perCharacter;
    return std::min<std::chrono::milliseconds>(shownFor + more, shownAtMost);
}

ToastAppearance systemAppearance()
{
    const QColor window = QGuiApplication::palette().color(QPalette::Window);
    return window.lightness() < 128 ? ToastAppearance::dark : ToastAppearance::light;
}

/// The panel's place in native pixels, of a whole number of them.
QRect nativeRect(const Rect &panel, const Screen &screen)
{
    const Rect onScreen{panel.x - screen.frame.x, panel.y - screen.frame.y, panel.width,
                        panel.height};
    const QRectF pixels = screen.space().pixelsFromRect(onScreen);
    return {screen.native.topLeft() + pixels.topLeft().toPoint(), pixels.size().toSize()};
}

} // namespace

/// One toast on the screen: its window, and the motion of its content.
class Toast::Panel : public QObject
{
public:
    Panel(Clock &clock, ToastView view, QRect native)
        : m_clock(clock)
        , m_view(std::move(view))
        , m_native(native)
    {
    }

    void open(ToastShell &shell, Size content, double scale, const SymbolSource &symbols,
              const QImage &frozen)
    {
        // The unused byte of captured pixels need not be 255: without the conversion it would be
        // taken for alpha.
        const QImage below = frozen.isNull()
            ? shell.pixelsBelow(m_native)
            : frozen.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        m_picture = makeToastPicture(m_view, content, scale, systemAppearance(),
                                     QGuiApplication::font(), symbols, below);
        m_needsBelow = !shell.blends();
        if (m_needsBelow)
            m_picture.below = below;
        m_window = shell.create(m_native, m_view.message);
        m_window->present(render());
        m_window->orderFront();
    }

    void setVisible(bool isVisible)
    {
        m_view.isVisible = isVisible;
        m_from = m_picture.presence;
        m_started = m_clock.now();
        step();
    }

    void vanish()
    {
        m_picture.presence = 0;
        m_window->vanish(render());
    }

private:
    void step()
    {
        const double seconds = double(m_started.msecsTo(m_clock.now())) / 1000;
        const double to = m_view.isVisible ? 1 : 0;
        const bool isMoving = seconds < spring.settleTime();
        m_picture.presence = isMoving ? m_from + (to - m_from) * spring.progress(seconds) : to;
        m_window->present(render());
        // A second chain of frames would start with every change, were the old one not told apart.
        if (isMoving)
            m_clock.after(frame, this, [this, started = m_started] {
                if (started == m_started)
                    step();
            });
    }

    QImage render() const
    {
        QImage image(m_native.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(m_needsBelow ? Qt::black : Qt::transparent);
        QPainter painter(&image);
        paint(painter, m_picture);
        return image;
    }

    Clock &m_clock;
    ToastView m_view;
    QRect m_native;
    ToastPicture m_picture;
    bool m_needsBelow = false;
    std::unique_ptr<ToastWindow> m_window;
    double m_from = 0;
    QDateTime m_started;
};

Toast::Toast(Clock &clock, Screens &screens, ToastShell &shell, SymbolSource symbols)
    : m_clock(clock)
    , m_screens(screens)
    , m_shell(shell)
    , m_symbols(std::move(symbols))
{
}

Toast::~Toast() = default;

void Toast::show(const QString &message, const QString &icon, const std::optional<Screen> &screen)
{
    Q_ASSERT(isMainThread());
    m_window.reset();
    const ToastView view{message, icon, false};
    const std::optional<Screen> target = screen ? screen : m_screens.main();
    const double scale = target ? target->scale : 1;
    Size content = ToastGeometry::contentSize(toastIntrinsicSize(view, QGuiApplication::font()));
    Rect place{0, 0, ToastGeometry::panelSize(content).width,
               ToastGeometry::panelSize(content).height};
    QRect native(0, 0, qRound(place.width * scale), qRound(place.height * scale));
    if (target) {
        content.width = std::min(content.width,
                                 std::max(ToastGeometry::shortestWidth,
                                          target->frame.width - 2 * ToastGeometry::margin));
        native = nativeRect(ToastGeometry::panelFrame(content, target->frame), *target);
    }

    m_window = std::make_unique<Panel>(m_clock, view, native);
    Panel *panel = m_window.get();
    panel->open(m_shell, content, scale, m_symbols, frozenPixels ? frozenPixels(native) : QImage());
    // The panel is the context of all that follows: what a replaced toast had coming dies with it.
    m_clock.after(0ms, panel, [panel] { panel->setVisible(true); });
    m_clock.after(durationOf(message), panel, [this, panel] {
        panel->setVisible(false);
        m_clock.after(hidingFor, panel, [this] { m_window.reset(); });
    });
}

void Toast::hideForCapture()
{
    if (!m_window)
        return;
    m_window->vanish();
    m_window.reset();
}

} // namespace tovek
