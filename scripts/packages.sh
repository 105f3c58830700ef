# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
# The one list of packages, read by ./run, ./test and .ci/run: those of Debian 12, which are
# installed, and for other systems the names that a person is told.

# To build and run the program.
build_packages=(
    ccache cmake g++ ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-base-private-dev
    libcanberra-dev libdeflate-dev libfontconfig-dev libfreetype-dev libisal-dev libpipewire-0.3-dev libsodium-dev libtesseract-dev libxkbcommon-dev libxkbcommon-x11-dev zlib1g-dev
    libxcb1-dev libxcb-icccm4-dev libxcb-image0-dev libxcb-keysyms1-dev libxcb-randr0-dev
    libxcb-render0-dev libxcb-screensaver0-dev libxcb-shape0-dev libxcb-shm0-dev libxcb-xfixes0-dev libxcb-xinput-dev
    libxcb-xkb-dev libxcb-xtest0-dev
    libwayland-dev libwayland-bin qt6-wayland
    fonts-dejavu-core tesseract-ocr-eng tesseract-ocr-osd libcanberra-pulse
)
# For the virtual desktops of the tests and of the tour.
desktop_packages=(
    appstream dbus dbus-bin dbus-x11 desktop-file-utils fish fonts-cantarell fonts-noto-core grim
    i3lock kwin-wayland libglib2.0-bin mandoc mold openbox openssl picom pulseaudio pulseaudio-utils sway swaybg
    tesseract-ocr-rus thunar trayer wl-clipboard wtype x11-xkb-utils x11-xserver-utils xauth xclip xfonts-base xfonts-terminus xscreensaver xterm xvfb
    xwayland zsh
)
# For the tests on GNOME and with the portals of other desktops, which skip without them: some hundred
# megabytes, which only scripts/systems installs by itself.
gnome_packages=(gnome-settings-daemon gnome-shell pipewire procps wireplumber xdg-desktop-portal
    xdg-desktop-portal-gnome xdg-desktop-portal-wlr)
# For bench/run, which installs nothing: a notification server is not for everybody's desktop.
bench_packages=(dunst)
# For scripts/train-glyphs: what it draws (resources/reading/README.md).
glyph_packages=(
    fonts-cantarell fonts-dejavu-extra fonts-firacode fonts-hack fonts-jetbrains-mono
    fonts-noto-core fonts-urw-base35 libqt6svg6
    adwaita-icon-theme breeze-icon-theme elementary-xfce-icon-theme gnome-icon-theme
    mate-icon-theme oxygen-icon-theme tango-icon-theme
)
# For continuous integration alone.
ci_packages=(clang clang-format clang-tidy git)

# Fedora and openSUSE know libraries by the names of their pkg-config files.
library_modules=(
    Qt6Core Qt6Gui Qt6Widgets Qt6DBus Qt6Network Qt6Test
    fontconfig freetype2 libcanberra libdeflate libisal libpipewire-0.3 libsodium tesseract wayland-client wayland-scanner wayland-server xkbcommon
    xkbcommon-x11 zlib xcb xcb-icccm xcb-image xcb-keysyms xcb-randr xcb-render xcb-screensaver
    xcb-shape xcb-shm xcb-xfixes xcb-xinput xcb-xkb xcb-xtest
)
rpm_libraries() { printf 'pkgconfig(%s)\n' "${library_modules[@]}"; }

# No sound server: on these systems it would take the place of the one that every desktop has. No
# trayer: none of them has it any more. The tests that want either skip.
fedora_build=(ccache cmake gcc-c++ ninja-build pkgconf-pkg-config qt6-qtbase-private-devel
    qt6-qtwayland dejavu-sans-fonts tesseract-langpack-eng tesseract-osd)
fedora_desktop=(appstream dbus-daemon desktop-file-utils fish glib2 grim i3lock mandoc mold openbox
    openssl picom sway swaybg Thunar wl-clipboard wtype xkbcomp xrandr xset xorg-x11-xauth xclip
    xscreensaver xterm xorg-x11-server-Xvfb xorg-x11-server-Xwayland zsh)
opensuse_build=(ccache cmake gcc-c++ ninja pkgconf-pkg-config qt6-base-private-devel qt6-wayland
    dejavu-fonts tesseract-ocr-traineddata-english
    tesseract-ocr-traineddata-orientation_and_script_detection)
opensuse_desktop=(AppStream dbus-1 dbus-1-daemon desktop-file-utils fish glib2-tools grim i3lock
    mandoc mold openbox openssl picom sway swaybg thunar wl-clipboard wtype xkbcomp xrandr xset
    xauth xclip xscreensaver xterm xorg-x11-server-Xvfb xwayland zsh)
arch_build=(ccache cmake gcc ninja pkgconf qt6-base qt6-wayland fontconfig freetype2 isa-l
    libcanberra libdeflate libpipewire libsodium libxcb libxkbcommon libxkbcommon-x11 tesseract
    tesseract-data-eng tesseract-data-osd ttf-dejavu wayland xcb-util-image xcb-util-keysyms
    xcb-util-wm zlib)
arch_desktop=(appstream dbus desktop-file-utils fish glib2 grim i3lock mandoc mold openbox openssl
    picom sway swaybg thunar wl-clipboard wtype xorg-xkbcomp xorg-xrandr xorg-xset xorg-xauth xclip
    xscreensaver xterm xorg-server-xvfb xorg-xwayland zsh)

# system_kind: debian, fedora, opensuse, arch, or nothing. OS_RELEASE names another description of
# a system than this one's.
system_kind()
{
    local id
    for id in $(. "${OS_RELEASE:-/etc/os-release}" 2>/dev/null && echo "${ID:-} ${ID_LIKE:-}"); do
        case $id in
        debian|ubuntu) echo debian; return ;;
        fedora|rhel) echo fedora; return ;;
        opensuse*|suse) echo opensuse; return ;;
        arch) echo arch; return ;;
        esac
    done
}

# command_for KIND build|desktop...: the one line that installs what those need.
command_for()
{
    local kind=$1 packages=() what list
    shift
    for what in "$@"; do
        case $kind,$what in
        fedora,build|opensuse,build) mapfile -t -O "${#packages[@]}" packages < <(rpm_libraries | sed "s/.*/'&'/") ;;
        esac
        [ "$kind" = debian ] && list=${what}_packages || list=${kind}_$what
        local -n names=$list
        packages+=("${names[@]}")
    done
    case $kind in
    debian) echo "apt-get install ${packages[*]}" ;;
    fedora) echo "dnf install ${packages[*]}" ;;
    opensuse) echo "zypper install ${packages[*]}" ;;
    arch) echo "pacman -S --needed ${packages[*]}" ;;
    esac
}

# What this Debian does not have any more, or does not have yet, is left out. (A machine without any
# list cannot tell; a package that others still mention has an entry, but no version.)
known_here()
{
    local package
    for package in "$@"; do
        case $package in
        # The tests of the panel skip without it.
        trayer) ! compgen -G '/var/lib/apt/lists/*_Packages*' >/dev/null \
            || LC_ALL=C apt-cache policy "$package" | grep -q 'Candidate: [^(]' || continue ;;
        esac
        echo "$package"
    done
}

# need build|desktop|ci...: installs on Debian and what comes from it; elsewhere says what to do,
# once, and goes on: what is really missing the build will name.
need()
{
    local kind what all=()
    kind=$(system_kind)
    if [ "$kind" = debian ]; then
        for what in "$@"; do
            local -n list=${what}_packages
            all+=("${list[@]}")
        done
        install_missing "${all[@]}"
        return
    fi
    if [ -n "$kind" ]; then
        echo "If something is missing: sudo $(command_for "$kind" "${@/ci/build}")" >&2
    else
        echo "An unknown system: please install what corresponds to these packages of Debian:" \
            "$(command_for debian "$@" | cut -d ' ' -f 3-)" >&2
    fi
}

# install_missing PACKAGE...: asks for the administrator's password only when something is missing.
install_missing()
{
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] \
            || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    mapfile -t missing < <(known_here "${missing[@]}")
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -q
    # Now a fresh machine can tell as well.
    mapfile -t missing < <(known_here "${missing[@]}")
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}
