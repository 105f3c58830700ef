// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/clipboard/FocusedSelection.h"

#include "platform/wayland/SharedPixels.h"
#include "xdg-shell-client.h"

#include <unistd.h>
#include <utility>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto keyboardPatience = 2s;
constexpr QSize windowSize(1, 1);
constexpr char ownerName[] = "org.tovek.Tovek"; // of its desktop file

} // namespace

struct FocusedSelection::Globals
{
    explicit Globals(std::shared_ptr<WaylandConnection> from)
        : connection(std::move(from))
        , compositor(connection->bind<wl_compositor>(wl_compositor_interface, 4))
        , shm(connection->bind<wl_shm>(wl_shm_interface, 1))
        , seat(connection->bind<wl_seat>(wl_seat_interface, 1))
        , windows(connection->bind<xdg_wm_base>(xdg_wm_base_interface, 1))
        , manager(connection->bind<wl_data_device_manager>(wl_data_device_manager_interface, 1))
    {
    }
    bool isComplete() const { return compositor && shm && seat && windows && manager; }

    std::shared_ptr<WaylandConnection> connection; ///< ends after all the rest
    WaylandPtr<wl_compositor, wl_compositor_destroy> compositor;
    WaylandPtr<wl_shm, wl_shm_destroy> shm;
    WaylandPtr<wl_seat, wl_seat_destroy> seat;
    WaylandPtr<xdg_wm_base, xdg_wm_base_destroy> windows;
    WaylandPtr<wl_data_device_manager, wl_data_device_manager_destroy> manager;
    /// Made when it is first needed: from then on every copy of any program wakes this one.
    WaylandPtr<wl_data_device, wl_data_device_destroy> device;
};

/// Nothing to be seen, that may have the keyboard.
class FocusedSelection::Window
{
public:
    explicit Window(Globals &globals);

    std::function<void(uint32_t serial)> onFocused;
    std::function<void()> onLeft;

private:
    friend struct FocusedEvents;
    WaylandPtr<wl_buffer, wl_buffer_destroy> m_buffer;
    WaylandPtr<wl_surface, wl_surface_destroy> m_surface;
    WaylandPtr<wl_keyboard, wl_keyboard_destroy> m_keyboard;
    WaylandPtr<xdg_surface, xdg_surface_destroy> m_role;
    WaylandPtr<xdg_toplevel, xdg_toplevel_destroy> m_window;
};

/// What the compositor tells of the clipboard and of the window.
struct FocusedEvents
{
    using Window = FocusedSelection::Window;

    // What others copy or drag is none of ours, but each offer must be let go.
    static void offered(void *, wl_data_device *, wl_data_offer *) { }
    static void entered(void *, wl_data_device *, uint32_t, wl_surface *, wl_fixed_t, wl_fixed_t,
                        wl_data_offer *offer)
    {
        if (offer)
            wl_data_offer_destroy(offer);
    }
    static void left(void *, wl_data_device *) { }
    static void moved(void *, wl_data_device *, uint32_t, wl_fixed_t, wl_fixed_t) { }
    static void selected(void *, wl_data_device *, wl_data_offer *offer)
    {
        if (offer)
            wl_data_offer_destroy(offer);
    }
    static constexpr wl_data_device_listener deviceListener{&offered, &entered, &left,
                                                            &moved,   &left,    &selected};

    static void targeted(void *, wl_data_source *, const char *) { }
    static void requested(void *data, wl_data_source *, const char *type, int descriptor)
    {
        static_cast<FocusedSelection *>(data)->send(type, descriptor);
    }
    static void cancelled(void *data, wl_data_source *source)
    {
        auto &self = *static_cast<FocusedSelection *>(data);
        if (self.m_source != source)
            return;
        if (self.m_answer)
            return self.overtaken();
        self.dropSource();
        if (self.onLost)
            self.onLost();
    }
    static constexpr wl_data_source_listener sourceListener{&targeted, &requested, &cancelled,
                                                            nullptr,   nullptr,    nullptr};

    static void capable(void *data, wl_seat *, uint32_t capabilities)
    {
        static_cast<FocusedSelection *>(data)->m_hasKeyboard =
            capabilities & WL_SEAT_CAPABILITY_KEYBOARD;
    }
    static constexpr wl_seat_listener seatListener{&capable, nullptr};

    static void keymap(void *, wl_keyboard *, uint32_t, int descriptor, uint32_t)
    {
        close(descriptor);
    }
    static void focusIn(void *data, wl_keyboard *, uint32_t serial, wl_surface *, wl_array *)
    {
        static_cast<Window *>(data)->onFocused(serial);
    }
    static void focusOut(void *data, wl_keyboard *, uint32_t, wl_surface *)
    {
        static_cast<Window *>(data)->onLeft();
    }
    static void key(void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t) { }
    static void modifiers(void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t)
    {
    }
    static constexpr wl_keyboard_listener keyboardListener{&keymap, &focusIn,   &focusOut,
                                                           &key,    &modifiers, nullptr};

    static void configured(void *data, xdg_surface *role, uint32_t serial)
    {
        auto &window = *static_cast<Window *>(data);
        xdg_surface_ack_configure(role, serial);
        wl_surface_attach(window.m_surface.get(), window.m_buffer.get(), 0, 0);
        wl_surface_commit(window.m_surface.get());
    }
    static constexpr xdg_surface_listener roleListener{&configured};
    static constexpr xdg_toplevel_listener toplevelListener{
        [](void *, xdg_toplevel *, int32_t, int32_t, wl_array *) {},
        [](void *, xdg_toplevel *) {},
    };
};

FocusedSelection::Window::Window(Globals &globals)
    : m_surface(wl_compositor_create_surface(globals.compositor.get()))
    , m_keyboard(wl_seat_get_keyboard(globals.seat.get()))
    , m_role(xdg_wm_base_get_xdg_surface(globals.windows.get(), m_surface.get()))
    , m_window(xdg_surface_get_toplevel(m_role.get()))
{
    if (const auto nothing = SharedPixels::create(windowSize))
        m_buffer.reset(nothing->makeBuffer(globals.shm.get(), WL_SHM_FORMAT_ARGB8888));
    wl_keyboard_add_listener(m_keyboard.get(), &FocusedEvents::keyboardListener, this);
    xdg_surface_add_listener(m_role.get(), &FocusedEvents::roleListener, this);
    xdg_toplevel_add_listener(m_window.get(), &FocusedEvents::toplevelListener, this);
    xdg_toplevel_set_app_id(m_window.get(), ownerName);
    wl_region *nowhere = wl_compositor_create_region(globals.compositor.get());
    wl_surface_set_input_region(m_surface.get(), nowhere);
    wl_region_destroy(nowhere);
    wl_surface_commit(m_surface.get());
}

FocusedSelection::FocusedSelection(std::unique_ptr<Globals> globals) : m_globals(std::move(globals))
{
    static constexpr xdg_wm_base_listener listener{
        [](void *, xdg_wm_base *asked, uint32_t serial) { xdg_wm_base_pong(asked, serial); }};
    xdg_wm_base_add_listener(m_globals->windows.get(), &listener, nullptr);
    m_limit.setSingleShot(true);
    m_limit.setInterval(keyboardPatience);
    m_limit.callOnTimeout([this] { giveUp(); });
    wl_seat_add_listener(m_globals->seat.get(), &FocusedEvents::seatListener, this);
    // The first answer tells whether there is a keyboard; it must not be asked for without one.
    m_globals->connection->roundtrip();
}

void FocusedSelection::giveUp()
{
    m_window.reset();
    m_answer.reset();
    const bool wasTaking = m_source != nullptr;
    dropSource();
    setContent({}, Readiness::ready);
    if (wasTaking && onRefused)
        onRefused();
}

FocusedSelection::~FocusedSelection()
{
    dropSource();
}

std::unique_ptr<FocusedSelection>
FocusedSelection::create(const std::shared_ptr<WaylandConnection> &connection)
{
    auto globals = std::make_unique<Globals>(connection);
    if (!globals->isComplete())
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<FocusedSelection>(new FocusedSelection(std::move(globals)));
}

bool FocusedSelection::take(SelectionContent content, Readiness readiness)
{
    dropSource();
    if (!m_hasKeyboard)
        return false;
    m_types.clear();
    for (const SelectionTarget &target : content)
        m_types.push_back(target.name);
    makeSource();
    setContent(std::move(content), readiness);
    ask();
    return !m_globals->connection->isLost();
}

void FocusedSelection::clear()
{
    m_types.clear();
    dropSource();
    setContent({}, Readiness::ready);
    ask();
}

void FocusedSelection::makeSource()
{
    dropSource();
    if (m_types.empty())
        return;
    m_source = wl_data_device_manager_create_data_source(m_globals->manager.get());
    wl_data_source_add_listener(m_source, &FocusedEvents::sourceListener, this);
    for (const std::string &type : m_types)
        wl_data_source_offer(m_source, type.c_str());
}

void FocusedSelection::dropSource()
{
    if (m_source)
        wl_data_source_destroy(std::exchange(m_source, nullptr));
}

void FocusedSelection::ask()
{
    if (!m_hasKeyboard)
        return;
    if (!m_globals->device) {
        m_globals->device.reset(wl_data_device_manager_get_data_device(m_globals->manager.get(),
                                                                       m_globals->seat.get()));
        wl_data_device_add_listener(m_globals->device.get(), &FocusedEvents::deviceListener, this);
    }
    m_answer.reset();
    openWindow();
    m_limit.start();
    m_globals->connection->flush();
}

void FocusedSelection::openWindow()
{
    m_window = std::make_unique<Window>(*m_globals);
    m_window->onFocused = [this](uint32_t serial) { claim(serial); };
    m_window->onLeft = [this] { overtaken(); };
}

void FocusedSelection::claim(uint32_t serial)
{
    wl_data_device_set_selection(m_globals->device.get(), m_source, serial);
    static constexpr wl_callback_listener listener{[](void *data, wl_callback *, uint32_t) {
        static_cast<FocusedSelection *>(data)->claimed();
    }};
    m_answer.reset(wl_display_sync(m_globals->connection->display()));
    wl_callback_add_listener(m_answer.get(), &listener, this);
    m_globals->connection->flush();
}

void FocusedSelection::claimed()
{
    m_answer.reset();
    m_limit.stop();
    m_window.reset();
    m_globals->connection->flush();
}

/// Had the keyboard left before the compositor heard of the copy, nothing was copied: mutter 43
/// does not even say so, newer ones end the source. A window that opens at this moment is enough
/// for it.
void FocusedSelection::overtaken()
{
    if (!m_answer)
        return;
    m_answer.reset();
    makeSource();
    // The window is what called us.
    QTimer::singleShot(0, &m_limit, [this] {
        if (!m_limit.isActive())
            return;
        openWindow();
        m_globals->connection->flush();
    });
}

} // namespace tovek
