// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/WaylandHand.h"

#include "fake-input-client.h"
#include "virtual-keyboard-unstable-v1-client.h"
#include "wlr-virtual-pointer-unstable-v1-client.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace tovek {

namespace {

constexpr uint32_t leftButton = 0x110; // of the kernel
constexpr int windowSystemKeyOffset = 8;
constexpr uint32_t fakeInputVersion = 4; // the first with keys
constexpr uint32_t subpixels = 64; // the place is told in whole parts of the extent

struct Link
{
    int socket = -1;
    pid_t owner = 0; ///< of the process that connected it; 0: this one
};

/// KWin looks at the program at the other end, which it may not for one of root's: there a process
/// of the desktop's user makes the connection, and stays while it is used.
Link connectAsUser(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    const auto *where = reinterpret_cast<const sockaddr *>(&address);
    Link link{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    const passwd *const user = geteuid() == 0 ? getpwnam("nobody") : nullptr;
    if (!user)
        return connect(link.socket, where, sizeof address) == 0 ? link : Link{};
    int done[2];
    if (pipe2(done, O_CLOEXEC) != 0)
        return {};
    link.owner = fork();
    if (link.owner == 0) {
        // Nothing but system calls in here: the parent may have threads.
        const bool isConnected = setresgid(user->pw_gid, user->pw_gid, user->pw_gid) == 0
            && setresuid(user->pw_uid, user->pw_uid, user->pw_uid) == 0
            && prctl(PR_SET_DUMPABLE, 1) == 0 && prctl(PR_SET_PDEATHSIG, SIGKILL) == 0
            && connect(link.socket, where, sizeof address) == 0;
        (void)!write(done[1], isConnected ? "y" : "n", 1);
        while (isConnected)
            pause();
        _exit(1);
    }
    close(done[1]);
    char answer = 'n';
    (void)!read(done[0], &answer, 1);
    close(done[0]);
    return answer == 'y' ? link : Link{};
}

} // namespace

struct WaylandHand::Devices
{
    Link link;
    wl_display *display = nullptr;
    wl_seat *seat = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointers = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboards = nullptr;
    org_kde_kwin_fake_input *fake = nullptr; ///< KWin's way for both
    zwlr_virtual_pointer_v1 *pointer = nullptr;
    zwp_virtual_keyboard_v1 *keyboard = nullptr;
    xkb_context *context = nullptr;
    xkb_keymap *keymap = nullptr;
    xkb_state *state = nullptr;
    QSize extent;
    QElapsedTimer clock;

    uint32_t now() const { return uint32_t(clock.elapsed()); }
    void connect(const QString &socket);
    void makeKeyboard();
    void makeKeymap();
    void button(uint32_t state);
    void moveTo(QPointF at);
    void key(uint32_t code, bool isDown);
    std::optional<uint32_t> keyCode(const QString &name) const;
    static void global(void *data, wl_registry *registry, uint32_t name, const char *interface,
                       uint32_t version);
    static void globalGone(void *, wl_registry *, uint32_t) { }
};

void WaylandHand::Devices::global(void *data, wl_registry *registry, uint32_t name,
                                  const char *interface, uint32_t)
{
    auto &self = *static_cast<Devices *>(data);
    const auto bind = [&](const wl_interface &wanted, uint32_t version = 1) -> void * {
        return std::strcmp(interface, wanted.name) == 0
            ? wl_registry_bind(registry, name, &wanted, version)
            : nullptr;
    };
    if (void *seat = bind(wl_seat_interface))
        self.seat = static_cast<wl_seat *>(seat);
    else if (void *pointers = bind(zwlr_virtual_pointer_manager_v1_interface))
        self.pointers = static_cast<zwlr_virtual_pointer_manager_v1 *>(pointers);
    else if (void *keyboards = bind(zwp_virtual_keyboard_manager_v1_interface))
        self.keyboards = static_cast<zwp_virtual_keyboard_manager_v1 *>(keyboards);
    else if (void *fake = bind(org_kde_kwin_fake_input_interface, fakeInputVersion))
        self.fake = static_cast<org_kde_kwin_fake_input *>(fake);
}

void WaylandHand::Devices::connect(const QString &socket)
{
    link = connectAsUser(QFile::encodeName(socket));
    display = link.socket >= 0 ? wl_display_connect_to_fd(link.socket) : nullptr;
    if (!display)
        return;
    static constexpr wl_registry_listener listener{&global, &globalGone};
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display);
    wl_registry_destroy(registry);
    if (fake) {
        org_kde_kwin_fake_input_authenticate(fake, "a test", "it is tested");
        makeKeymap();
    }
    if (!seat || !pointers || !keyboards)
        return;
    pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
    keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, seat);
    makeKeyboard();
    wl_display_roundtrip(display);
}

void WaylandHand::Devices::makeKeymap()
{
    context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    xkb_rule_names names{};
    names.layout = "us";
    keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    state = xkb_state_new(keymap);
}

void WaylandHand::Devices::makeKeyboard()
{
    makeKeymap();
    char *text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    const size_t size = std::strlen(text) + 1;
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    if (write(file, text, size) == ssize_t(size))
        zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                       uint32_t(size));
    close(file);
    std::free(text);
}

std::optional<uint32_t> WaylandHand::Devices::keyCode(const QString &name) const
{
    const xkb_keysym_t wanted =
        xkb_keysym_from_name(name.toUtf8().constData(), XKB_KEYSYM_NO_FLAGS);
    for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap);
         wanted != XKB_KEY_NoSymbol && code <= xkb_keymap_max_keycode(keymap); ++code) {
        const xkb_keysym_t *symbols = nullptr;
        if (xkb_keymap_key_get_syms_by_level(keymap, code, 0, 0, &symbols) > 0
            && symbols[0] == wanted)
            return code;
    }
    return std::nullopt;
}

WaylandHand::WaylandHand(const QString &socket, QSize extent)
    : m_devices(std::make_unique<Devices>())
{
    m_devices->extent = extent;
    m_devices->clock.start();
    m_devices->connect(socket);
}

WaylandHand::~WaylandHand()
{
    xkb_state_unref(m_devices->state);
    xkb_keymap_unref(m_devices->keymap);
    xkb_context_unref(m_devices->context);
    if (m_devices->display)
        wl_display_disconnect(m_devices->display);
    if (m_devices->link.owner > 0) {
        kill(m_devices->link.owner, SIGKILL);
        waitpid(m_devices->link.owner, nullptr, 0);
    }
}

bool WaylandHand::isWorking() const
{
    return m_devices->keymap && wl_display_get_error(m_devices->display) == 0;
}

void WaylandHand::Devices::moveTo(QPointF at)
{
    if (fake) {
        org_kde_kwin_fake_input_pointer_motion_absolute(fake, wl_fixed_from_double(at.x()),
                                                        wl_fixed_from_double(at.y()));
    } else {
        zwlr_virtual_pointer_v1_motion_absolute(
            pointer, now(), uint32_t(qRound(at.x() * subpixels)),
            uint32_t(qRound(at.y() * subpixels)), uint32_t(extent.width()) * subpixels,
            uint32_t(extent.height()) * subpixels);
        zwlr_virtual_pointer_v1_frame(pointer);
    }
    wl_display_roundtrip(display);
}

void WaylandHand::Devices::button(uint32_t buttonState)
{
    if (fake) {
        org_kde_kwin_fake_input_button(fake, leftButton, buttonState);
    } else {
        zwlr_virtual_pointer_v1_button(pointer, now(), leftButton, buttonState);
        zwlr_virtual_pointer_v1_frame(pointer);
    }
    wl_display_roundtrip(display);
}

void WaylandHand::Devices::key(uint32_t code, bool isDown)
{
    if (fake) {
        org_kde_kwin_fake_input_keyboard_key(fake, code - windowSystemKeyOffset, isDown ? 1 : 0);
    } else {
        zwp_virtual_keyboard_v1_key(keyboard, now(), code - windowSystemKeyOffset, isDown ? 1 : 0);
        // Who types with it tells the modifiers too.
        xkb_state_update_key(state, code, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
        const auto mods = [this](xkb_state_component component) {
            return xkb_state_serialize_mods(state, component);
        };
        zwp_virtual_keyboard_v1_modifiers(keyboard, mods(XKB_STATE_MODS_DEPRESSED),
                                          mods(XKB_STATE_MODS_LATCHED), mods(XKB_STATE_MODS_LOCKED),
                                          0);
    }
    wl_display_roundtrip(display);
}

void WaylandHand::move(QPointF to)
{
    m_devices->moveTo(to);
}

void WaylandHand::press()
{
    m_devices->button(1);
}

void WaylandHand::release()
{
    m_devices->button(0);
}

void WaylandHand::click(QPointF at)
{
    move(at);
    press();
    release();
}

void WaylandHand::dragAndHold(QPointF from, QPointF to)
{
    constexpr int steps = 15;
    move(from);
    press();
    for (int step = 1; step <= steps; ++step)
        move(from + (to - from) * step / steps);
}

void WaylandHand::drag(QPointF from, QPointF to)
{
    dragAndHold(from, to);
    release();
}

bool WaylandHand::tap(const QString &chord)
{
    return hold(chord) && letGo(chord);
}

bool WaylandHand::hold(const QString &chord)
{
    return send(chord, true);
}

bool WaylandHand::letGo(const QString &chord)
{
    return send(chord, false);
}

bool WaylandHand::send(const QString &chord, bool isDown)
{
    std::vector<uint32_t> codes;
    for (const QString &name : chord.split(QLatin1Char('+'))) {
        const auto code = m_devices->keyCode(name);
        if (!code)
            return false;
        codes.push_back(*code);
    }
    if (!isDown)
        std::reverse(codes.begin(), codes.end());
    for (const uint32_t code : codes)
        m_devices->key(code, isDown);
    return true;
}

} // namespace tovek
