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
/// By then it has come to rest, and the programs below have painted what the overlays covered.
constexpr auto settled = 400ms;
/// Within which the window system shows a new window.
constexpr auto takingOver = 80ms;

std::chrono::milliseconds durationOf(const QString &message)
{
    const auto more = std::max<qsizetype>(message.size() - readAtAGlance, 0) * perCharacter;
    return std::min<std::chrono::milliseconds>(shownFor + more, shownAtMost);
}

bool isPaletteDark()
{
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
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
    struct Place
    {
        std::optional<Screen> screen; ///< absent: there is none
        Size content;
        double scale = 1;
        QRect native;
        ToastAppearance appearance = ToastAppearance::light;
    };

    Panel(Clock &clock, ToastView view, Place place)
        : m_clock(clock)
        , m_view(std::move(view))
        , m_place(std::move(place))
        , m_native(m_place.native)
        , m_opened(m_clock.now())
    {
    }

    QRect native() const { return m_native; }
    const ToastView &view() const { return m_view; }
    const std::optional<Screen> &screen() const { return m_place.screen; }
    std::chrono::milliseconds age() const
    {
        return std::chrono::milliseconds(m_opened.msecsTo(m_clock.now()));
    }
    bool isLeaving() const { return m_started.isValid() && !m_view.isVisible; }

    /// Opens with the motion of a toast that is on the screen, which it will cover.
    void openOver(const Panel &before, ToastShell &shell, const SymbolSource &symbols)
    {
        m_opened = before.m_opened;
        m_view.isVisible = before.m_view.isVisible;
        m_from = before.m_from;
        m_started = before.m_started;
        m_picture.presence = before.m_picture.presence;
        open(shell, symbols, around(before, shell.pixelsBelow(m_native)));
        step();
    }

    /// A null image below: what the screen shows.
    void open(ToastShell &shell, const SymbolSource &symbols, const QImage &known)
    {
        // The unused byte of captured pixels need not be 255: without the conversion it would be
        // taken for alpha.
        m_below = known.isNull() ? shell.pixelsBelow(m_native)
                                 : known.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        const double presence = m_picture.presence;
        m_picture = makeToastPicture(m_view, m_place.content, m_place.scale, m_place.appearance,
                                     QGuiApplication::font(), symbols, m_below);
        m_picture.presence = presence;
        m_needsBelow = !shell.blends();
        if (m_needsBelow)
            m_picture.below = m_below;
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
    /// What lies below both: where the other toast is, the screen shows that.
    QImage around(const Panel &other, QImage shown) const
    {
        if (other.m_below.isNull())
            return {};
        if (shown.isNull())
            return other.m_below.scaled(m_native.size());
        QPainter painter(&shown);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(other.m_native.topLeft() - m_native.topLeft(), other.m_below);
        painter.end();
        return shown;
    }

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
    Place m_place;
    QRect m_native;
    QImage m_below; ///< null where the window system does not tell
    ToastPicture m_picture;
    bool m_needsBelow = false;
    std::unique_ptr<ToastWindow> m_window;
    QDateTime m_opened;
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

std::unique_ptr<Toast::Panel> Toast::makePanel(const QString &message, const QString &icon,
                                               const std::optional<Screen> &target)
{
    const ToastView view{message, icon, false};
    Panel::Place place{target,
                       {},
                       target ? target->scale : 1,
                       {},
                       isDesktopDark || isPaletteDark() ? ToastAppearance::dark
                                                        : ToastAppearance::light};
    place.content = ToastGeometry::contentSize(toastIntrinsicSize(view, QGuiApplication::font()));
    if (target) {
        place.content.width = std::min(place.content.width,
                                       std::max(ToastGeometry::shortestWidth,
                                                target->frame.width - 2 * ToastGeometry::margin));
        place.native = nativeRect(ToastGeometry::panelFrame(place.content, target->frame), *target);
    } else {
        const Size panel = ToastGeometry::panelSize(place.content);
        place.native = QRect(0, 0, qRound(panel.width), qRound(panel.height));
    }
    return std::make_unique<Panel>(m_clock, view, place);
}

void Toast::show(const QString &message, const QString &icon, const std::optional<Screen> &screen)
{
    Q_ASSERT(isMainThread());
    m_window.reset();
    m_extended.reset();
    m_window = makePanel(message, icon, screen ? screen : m_screens.main());
    Panel *panel = m_window.get();
    panel->open(m_shell, m_symbols, frozenPixels ? frozenPixels(panel->native()) : QImage());
    // The panel is the context of all that follows: what a replaced toast had coming dies with it.
    m_clock.after(0ms, panel, [panel] { panel->setVisible(true); });
    goAfterReading(message);
}

bool Toast::extend(const QString &message, const QString &longer)
{
    Q_ASSERT(isMainThread());
    if (!m_window || m_window->view().message != message || m_window->isLeaving())
        return false;
    if (const auto age = m_window->age(); age < settled) {
        m_clock.after(settled - age, m_window.get(),
                      [this, message, longer] { (void)extend(message, longer); });
        return true;
    }
    m_extended = std::move(m_window);
    m_window = makePanel(longer, m_extended->view().icon, m_extended->screen());
    Panel *panel = m_window.get();
    panel->openOver(*m_extended, m_shell, m_symbols);
    m_clock.after(takingOver, panel, [this] { m_extended.reset(); });
    goAfterReading(longer);
    return true;
}

void Toast::goAfterReading(const QString &message)
{
    Panel *panel = m_window.get();
    m_clock.after(durationOf(message), panel, [this, panel] {
        panel->setVisible(false);
        m_clock.after(hidingFor, panel, [this] { m_window.reset(); });
    });
}

void Toast::hideForCapture()
{
    for (std::unique_ptr<Panel> *panel : {&m_window, &m_extended}) {
        if (*panel)
            (*panel)->vanish();
        panel->reset();
    }
}

} // namespace tovek
